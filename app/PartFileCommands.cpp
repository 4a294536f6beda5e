#include "app/PartFileCommands.h"

#include "app/CTonalmancerView.h"
#include "app/FileFilters.h"
#include "app/MessageBoxes.h"
#include "app/PartSession.h"
#include "app/PresetPanel.h"
#include "app/WaitCursor.h"
#include "part/PartFile.h"

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>

#include <functional>

namespace app {

namespace {

QString toQ(const std::filesystem::path& path)
{
    return QString::fromStdString(path.string());
}

} // namespace

PartFileCommands::PartFileCommands(CTonalmancerView& view, PartSession& session,
                                   music::DataFolder dataFolder,
                                   const ActionFactory::ActionLookup& actions)
    : QObject(&view), m_view(view), m_session(session), m_dataFolder(std::move(dataFolder))
{
    setObjectName(QStringLiteral("partFileCommands"));
    const auto on = [this, &actions](const char* id, const std::function<void()>& slot) {
        if (QAction* action = actions ? actions(id) : nullptr)
            connect(action, &QAction::triggered, this, [slot] { slot(); });
    };
    on("part.new", [this] { askNewPart(); });
    on("part.load", [this] { askLoadPart(); });
    on("part.save", [this] { askSavePart(); });
    on("part.loadDefault", [this] { askLoadDefaultPart(); });
    on("part.saveAsDefault", [this] { saveAsDefaultPart(); });
    on("part.addToPresets", [this] { askAddToPresets(); });
    on("part.addToPresetsButton", [this] { askAddToPresets(); });
}

QString PartFileCommands::partTitle() const
{
    const QString name = m_session.filePath().isEmpty()
                             ? tr(kNewPartTitle)
                             : QFileInfo(m_session.filePath()).fileName();
    return m_session.isModified() ? name + QLatin1Char('*') : name;
}

QString PartFileCommands::userFolder() const
{
    return toQ(m_dataFolder.userFolder());
}

QString PartFileCommands::defaultPartPath() const
{
    return toQ(m_dataFolder.file(part::PartFile::kDefaultFileName));
}

bool PartFileCommands::report(bool ok, const QString& message)
{
    if (!ok)
        MessageBoxes::error(&m_view, message);
    return ok;
}

bool PartFileCommands::maySafelyDiscard()
{
    if (!m_session.isModified())
        return true;
    const QString name = m_session.filePath().isEmpty()
                             ? tr(kNewPartTitle)
                             : QFileInfo(m_session.filePath()).fileName();
    const QMessageBox::StandardButton answer = MessageBoxes::show(
        &m_view, tr("The part \"%1\" has unsaved changes. Save them first?").arg(name),
        QMessageBox::Question, QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    if (answer == QMessageBox::Save)
        return askSavePart();
    return answer == QMessageBox::Discard;
}

// ---- answered commands -----------------------------------------------------------------------

void PartFileCommands::newPart()
{
    m_session.newPart();
}

bool PartFileCommands::loadPartFrom(const QString& path)
{
    part::Part loaded;
    if (!loadReporting(path, loaded))
        return false;
    m_session.loadPart(std::move(loaded), path);
    return true;
}

bool PartFileCommands::savePartTo(const QString& path)
{
    music::Result result;
    {
        WaitCursor wait;
        result = part::PartFile::save(path.toStdString(), m_session.part());
    }
    if (!report(result.ok(), QString::fromStdString(result.message())))
        return false;
    m_session.markSaved(path);
    return true;
}

bool PartFileCommands::loadDefaultPart()
{
    part::Part loaded;
    {
        WaitCursor wait;
        if (!part::PartFile::loadDefault(m_dataFolder.file(part::PartFile::kDefaultFileName),
                                         loaded))
            return false;
    }
    m_session.loadPart(std::move(loaded), defaultPartPath());
    return true;
}

bool PartFileCommands::saveAsDefaultPart()
{
    return savePartTo(defaultPartPath());
}

void PartFileCommands::loadAtStart()
{
    part::Part loaded;
    WaitCursor wait;
    if (part::PartFile::loadDefault(m_dataFolder.file(part::PartFile::kDefaultFileName), loaded))
        m_session.reset(std::move(loaded), defaultPartPath());
}

bool PartFileCommands::openAtStart(const QString& path)
{
    part::Part loaded;
    if (!loadReporting(path, loaded))
        return false;
    m_session.reset(std::move(loaded), path);
    return true;
}

bool PartFileCommands::loadReporting(const QString& path, part::Part& loaded)
{
    music::Result result;
    {
        WaitCursor wait;
        result = part::PartFile::load(path.toStdString(), loaded);
    }
    return report(result.ok(), QString::fromStdString(result.message()));
}

bool PartFileCommands::addToPresetsNamed(const QString& name)
{
    return m_view.partPresetPanel()->addCurrentNamed(name);
}

bool PartFileCommands::hasCurrentPreset() const
{
    return m_view.currentPartPreset() >= 0;
}

bool PartFileCommands::replaceCurrentPreset()
{
    return hasCurrentPreset() && m_view.partPresetPanel()->replaceCurrentPreset();
}

// ---- dialog front ends -----------------------------------------------------------------------

void PartFileCommands::askNewPart()
{
    if (maySafelyDiscard())
        newPart();
}

void PartFileCommands::askLoadPart()
{
    if (!maySafelyDiscard())
        return;
    QFileDialog dialog(&m_view, tr("Load Part"), userFolder(),
                       FileFilters::fromPairs(QString::fromLatin1(part::PartFile::kFileFilter)));
    dialog.setObjectName(QStringLiteral("loadPartDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        loadPartFrom(dialog.selectedFiles().constFirst());
}

bool PartFileCommands::askSavePart()
{
    QFileDialog dialog(&m_view, tr("Save Part"), userFolder(),
                       FileFilters::fromPairs(QString::fromLatin1(part::PartFile::kFileFilter)));
    dialog.setObjectName(QStringLiteral("savePartDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("prt"));
    // A part of the user folder is offered under its name; the shipped default part is not.
    const QFileInfo current(m_session.filePath());
    if (!m_session.filePath().isEmpty() &&
        current.absolutePath() == QFileInfo(userFolder()).absoluteFilePath())
        dialog.selectFile(current.fileName());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return false;
    return savePartTo(dialog.selectedFiles().constFirst());
}

void PartFileCommands::askLoadDefaultPart()
{
    if (maySafelyDiscard())
        loadDefaultPart();
}

void PartFileCommands::askAddToPresets()
{
    m_view.partPresetPanel()->addCurrent();
}

} // namespace app
