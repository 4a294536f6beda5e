#pragma once

#include <QDialog>
#include <QStringList>

class QListWidget;

namespace app {

/** The About box: the program's fixed lines in one column as wide as the list. */
class CAboutDialog : public QDialog
{
    Q_OBJECT
public:
    explicit CAboutDialog(QWidget* parent = nullptr);

    /** The lines in the order shown. */
    static QStringList lines();

    const QListWidget* list() const { return m_list; }

private:
    QListWidget* m_list = nullptr;
};

} // namespace app
