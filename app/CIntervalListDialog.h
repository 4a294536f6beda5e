#pragma once

#include <QDialog>

class QTreeWidget;

namespace app {

/** The interval list: semitones ("HS"), symbol and name of the 22 intervals. */
class CIntervalListDialog : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kTip = "Show list of intervals with symbols used by Tonalmancer.";

    explicit CIntervalListDialog(QWidget* parent = nullptr);
    QTreeWidget* list() const { return m_list; }

private:
    QTreeWidget* m_list = nullptr;
};

} // namespace app
