#include "app/GearScanRunner.h"

#include "music/Utf8Path.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QProgressDialog>
#include <QThread>

#include <atomic>
#include <memory>

namespace app {

namespace fs = std::filesystem;

namespace {

std::function<void(QProgressDialog*)>& dialogHook()
{
    static std::function<void(QProgressDialog*)> hook;
    return hook;
}

QString tr(const char* text)
{
    return QCoreApplication::translate("app::GearScanRunner", text);
}

/** File names of a list, at most `limit` of them, one per line and indented. */
QString fileLines(const std::vector<fs::path>& files, std::size_t limit = 10)
{
    QString lines;
    for (std::size_t i = 0; i < files.size() && i < limit; ++i)
        lines += QStringLiteral("\n    ") +
                 QString::fromStdString(music::utf8FromPath(files[i].filename()));
    if (files.size() > limit)
        lines += QStringLiteral("\n    ") + tr("... and %1 more").arg(files.size() - limit);
    return lines;
}

QProgressDialog* makeDialog(QWidget* parent, const QString& title, bool cancellable)
{
    auto* dialog = new QProgressDialog(parent);
    dialog->setObjectName(QStringLiteral("gearScanProgress"));
    dialog->setAccessibleName(title);
    dialog->setWindowTitle(title);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setMinimumDuration(0);
    dialog->setAutoClose(false);
    dialog->setAutoReset(false);
    dialog->setRange(0, 0);
    if (!cancellable)
        dialog->setCancelButton(nullptr);
    return dialog;
}

} // namespace

void GearScanRunner::setDialogHook(std::function<void(QProgressDialog*)> hook)
{
    dialogHook() = std::move(hook);
}

void GearScanRunner::run(QProgressDialog& dialog, Outcome& outcome, const Work& work)
{
    auto cancelled = std::make_shared<std::atomic_bool>(false);
    QObject::connect(&dialog, &QProgressDialog::canceled, &dialog,
                     [cancelled] { cancelled->store(true); });
    dialog.show();
    if (dialogHook())
        dialogHook()(&dialog);

    std::atomic<std::size_t> done{0};
    std::atomic<std::size_t> total{0};
    const song::GearScanProgress progress = [&](std::size_t d, std::size_t t,
                                                const fs::path& next) {
        done.store(d);
        total.store(t);
        const QString name = QString::fromStdString(music::utf8FromPath(next.filename()));
        // Shown by the UI thread; dropped if the dialog is gone by then.
        QMetaObject::invokeMethod(
            &dialog,
            [&dialog, d, t, name] {
                dialog.setMaximum(static_cast<int>(t));
                dialog.setValue(static_cast<int>(d));
                dialog.setLabelText(
                    name.isEmpty() ? tr("Writing machines.ini...")
                                   : tr("Reading DLL %1 of %2: %3").arg(d + 1).arg(t).arg(name));
            },
            Qt::QueuedConnection);
        return !cancelled->load();
    };

    std::unique_ptr<QThread> thread(QThread::create([&] { work(progress); }));
    QEventLoop loop;
    QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
    thread->start();
    loop.exec();
    thread->wait();
    outcome.done = done.load();
    outcome.total = total.load();
    dialog.hide();
}

GearScanRunner::Outcome GearScanRunner::scanGearDirectory(QWidget* parent, const fs::path& dataDir,
                                                          const fs::path& gearDir)
{
    Outcome outcome;
    std::unique_ptr<QProgressDialog> dialog(makeDialog(parent, tr("Scan Gear-Directory"), true));
    dialog->setLabelText(tr("Looking for machine DLLs..."));
    run(*dialog, outcome, [&](const song::GearScanProgress& progress) {
        outcome.result =
            song::MachineScanner::scanGearDirectory(dataDir, gearDir, outcome.report, progress);
    });
    return outcome;
}

GearScanRunner::Outcome GearScanRunner::scanSingleFile(QWidget* parent, const fs::path& dataDir,
                                                       const fs::path& dllPath)
{
    Outcome outcome;
    outcome.dllName = QString::fromStdString(music::utf8FromPath(dllPath.stem()));
    std::unique_ptr<QProgressDialog> dialog(makeDialog(parent, tr("Scan Single File"), false));
    dialog->setLabelText(
        tr("Reading %1").arg(QString::fromStdString(music::utf8FromPath(dllPath.filename()))));
    run(*dialog, outcome, [&](const song::GearScanProgress&) {
        outcome.result = song::MachineScanner::scanSingleDll(dataDir, dllPath, outcome.changed);
    });
    return outcome;
}

QString GearScanRunner::gearSummary(const Outcome& outcome)
{
    const song::GearScanReport& report = outcome.report;
    if (report.cancelled) {
        return tr("The scan was cancelled after %1 of %2 DLLs; machines.ini is unchanged.")
            .arg(outcome.done)
            .arg(outcome.total);
    }
    QString text =
        QString::fromUtf8(song::MachineScanner::kScanDoneMessage.data(),
                          static_cast<qsizetype>(song::MachineScanner::kScanDoneMessage.size()));
    text += QStringLiteral("\n\n") + tr("Machines added: %1").arg(report.added.size());
    text += QStringLiteral("\n") + tr("Files skipped, no library: %1").arg(report.skipped.size());
    text += fileLines(report.skipped);
    text += QStringLiteral("\n") +
            tr("Libraries refused, no machine description: %1").arg(report.refused.size());
    text += fileLines(report.refused);
    return text;
}

QString GearScanRunner::singleSummary(const Outcome& outcome)
{
    return outcome.changed
               ? tr("%1 was added to the machine database.").arg(outcome.dllName)
               : tr("%1 was skipped: the machine database knows it already.").arg(outcome.dllName);
}

} // namespace app
