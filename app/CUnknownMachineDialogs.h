#pragma once

#include "song/UnknownMachineHandler.h"

#include <QString>

#include <functional>

class QWidget;

namespace app {

/**
 * Answers the song reader's questions about machines the machine database does not know: asks
 * whether to learn a machine from the song, or shows the reader's message and lets the user pick
 * the machine's DLL to scan.
 */
class CUnknownMachineDialogs : public song::UnknownMachineHandler
{
public:
    static constexpr const char* kDllFilter =
        "Dynamic Link Library (*.dll)|*.dll|All Files (*.*)|*.*||";

    /** Picks a file; returns an empty text to cancel. Replaceable for tests. */
    using FileChooser = std::function<QString(QWidget* parent, const QString& filter)>;

    explicit CUnknownMachineDialogs(QWidget* parent) : m_parent(parent) {}

    bool learnFromSong(const std::string& machineName, const std::string& dllName) override;
    std::optional<std::filesystem::path> chooseDllToScan(const std::string& message) override;
    void scanFailed(const music::Result& failure) override;

    /** Whether the reader's unknown-machine message was shown during the last read. */
    bool messageShown() const { return m_messageShown; }
    void resetMessageShown() { m_messageShown = false; }

    static void setFileChooser(FileChooser chooser);

private:
    QWidget* m_parent = nullptr;
    bool m_messageShown = false;
};

} // namespace app
