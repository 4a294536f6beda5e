#pragma once

#include "music/Result.h"
#include "song/MachineScanner.h"

#include <QString>

#include <filesystem>
#include <functional>

class QProgressDialog;
class QWidget;

namespace app {

/**
 * Runs the machine-database scans on a worker thread behind a progress dialog, so that the
 * window keeps drawing while DLLs are read. The full scan counts the DLLs in the dialog and can
 * be cancelled; a cancelled scan leaves machines.ini as it was. The scanner itself knows no Qt:
 * it reports through its progress callback, which this class forwards to the dialog.
 */
class GearScanRunner
{
public:
    /** What a scan came to, for the summary. */
    struct Outcome
    {
        music::Result result;
        song::GearScanReport report;
        std::size_t total = 0; // DLLs found (full scan)
        std::size_t done = 0;  // DLLs read when the scan ended or was cancelled
        bool changed = false;  // single file: whether machines.ini got the machine
        QString dllName;       // single file: the machine's DLL name
    };

    /** Rebuilds machines.ini in `dataDir` from the gear folder `gearDir`. */
    static Outcome scanGearDirectory(QWidget* parent, const std::filesystem::path& dataDir,
                                     const std::filesystem::path& gearDir);
    /** Adds one DLL to machines.ini; the dialog shows the file being read. */
    static Outcome scanSingleFile(QWidget* parent, const std::filesystem::path& dataDir,
                                  const std::filesystem::path& dllPath);

    /** "OK" and what a successful or cancelled full scan added, skipped and refused. */
    static QString gearSummary(const Outcome& outcome);
    /** What a successful single-file scan did. */
    static QString singleSummary(const Outcome& outcome);

    /** Called with each progress dialog before its scan starts (tests cancel it there). */
    static void setDialogHook(std::function<void(QProgressDialog*)> hook);

private:
    using Work = std::function<void(const song::GearScanProgress&)>;
    static void run(QProgressDialog& dialog, Outcome& outcome, const Work& work);
};

} // namespace app
