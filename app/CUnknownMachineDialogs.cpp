#include "app/CUnknownMachineDialogs.h"

#include "app/FileFilters.h"
#include "app/MessageBoxes.h"

#include <QApplication>
#include <QFileDialog>

namespace app {

namespace {

CUnknownMachineDialogs::FileChooser& fileChooser()
{
    static CUnknownMachineDialogs::FileChooser chooser;
    return chooser;
}

/** Lets the user see and use a dialog while the wait cursor of the read is up. */
class NormalCursor
{
public:
    NormalCursor() { QApplication::setOverrideCursor(Qt::ArrowCursor); }
    ~NormalCursor() { QApplication::restoreOverrideCursor(); }
    NormalCursor(const NormalCursor&) = delete;
    NormalCursor& operator=(const NormalCursor&) = delete;
};

} // namespace

bool CUnknownMachineDialogs::learnFromSong(const std::string& machineName,
                                           const std::string& dllName)
{
    const QString text =
        QObject::tr("The machine database does not know the machine\n%1\n%2\n\n"
                    "The song describes its parameters. Learn the machine from the song?\n"
                    "(No: choose the machine's DLL to scan instead.)")
            .arg(QString::fromStdString(machineName), QString::fromStdString(dllName));
    return MessageBoxes::askYesNo(m_parent, text);
}

std::optional<std::filesystem::path>
CUnknownMachineDialogs::chooseDllToScan(const std::string& message)
{
    MessageBoxes::show(m_parent, QString::fromStdString(message), QMessageBox::Warning);
    m_messageShown = true;
    const QString filter = FileFilters::fromPairs(QString::fromLatin1(kDllFilter));
    QString path;
    if (fileChooser()) {
        path = fileChooser()(m_parent, filter);
    } else {
        NormalCursor cursor;
        path =
            QFileDialog::getOpenFileName(m_parent, QObject::tr("Scan Machine"), QString(), filter);
    }
    if (path.isEmpty())
        return std::nullopt;
    return std::filesystem::path(path.toStdString());
}

void CUnknownMachineDialogs::scanFailed(const music::Result& failure)
{
    MessageBoxes::error(m_parent, QString::fromStdString(failure.message()));
}

void CUnknownMachineDialogs::setFileChooser(FileChooser chooser)
{
    fileChooser() = std::move(chooser);
}

} // namespace app
