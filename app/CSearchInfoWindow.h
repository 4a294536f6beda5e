#pragma once

#include <QDialog>
#include <QStringList>

class QListWidget;

namespace app {

/** The search info window: the scale groups the last scale search found. */
class CSearchInfoWindow : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kListTip = "List of scales, matching the search parameters.";

    explicit CSearchInfoWindow(QWidget* parent = nullptr);

    void setResults(const QStringList& names);
    QStringList results() const;
    QListWidget* list() const { return m_list; }

Q_SIGNALS:
    /** The user picked the hit at this row. */
    void hitActivated(int row);

private:
    QListWidget* m_list = nullptr;
};

} // namespace app
