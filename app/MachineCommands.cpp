#include "app/MachineCommands.h"

#include "app/CMachineChooserDialog.h"
#include "app/CMachineTransformDialog.h"
#include "app/CTonalmancerDoc.h"
#include "app/MachineListModel.h"
#include "app/MachinePanel.h"
#include "app/MessageBoxes.h"
#include "song/DataFolderMachineCatalog.h"
#include "song/MachineEdits.h"
#include "song/MachineReplacement.h"
#include "song/NoteTransforms.h"
#include "song/SongEdits.h"
#include "song/SpecDataStore.h"

#include <QMenu>

#include <functional>

namespace app {

namespace {

constexpr std::size_t kMaxLinesShown = 20;

QString fromStd(const std::string& text)
{
    return QString::fromStdString(text);
}

/** Lines of a report, at most kMaxLinesShown, each on a line of its own. */
QString listed(const std::vector<std::string>& lines)
{
    QString text;
    for (std::size_t i = 0; i < lines.size() && i < kMaxLinesShown; ++i)
        text += QStringLiteral("\n  ") + fromStd(lines[i]);
    if (lines.size() > kMaxLinesShown)
        text += QStringLiteral("\n  ") +
                MachineCommands::tr("... and %1 more").arg(lines.size() - kMaxLinesShown);
    return text;
}

/** "1 note", "3 notes". */
QString counted(std::size_t n, const QString& one, const QString& many)
{
    return QString::number(n) + QLatin1Char(' ') + (n == 1 ? one : many);
}

/** The machine database of the data folder and the per-DLL store, for new machines. */
struct Database
{
    song::MachineDatabase entries;
    song::SpecDataStore machineData;

    const song::SpecDataEntry* dataFor(const song::MachineDatabaseEntry& entry) const
    {
        return machineData.find(entry.dllName);
    }
};

music::Result loadDatabase(const CTonalmancerDoc& document, Database& database)
{
    const std::filesystem::path folder = document.dataFolder().root();
    if (music::Result loaded = database.entries.load(folder); !loaded)
        return loaded;
    database.machineData.load(folder); // optional: new machines then start without data
    return music::Result::success();
}

} // namespace

MachineCommands::MachineCommands(MachinePanel& panel) : QObject(&panel), m_panel(panel)
{
    setObjectName(QStringLiteral("machineCommands"));
    QMenu* menu = panel.contextMenu();
    const auto on = [this, menu](std::string_view id, const std::function<void()>& slot) {
        ActionFactory::onTriggered(menu, id, this, slot);
    };
    on("machine.remove", [this] { remove(); });
    on("machine.rename", [this] { m_panel.renameCurrent(); });
    on("machine.copy", [this] { copy(); });
    on("machine.paste", [this] { paste(); });
    on("machine.clone", [this] { clone(); });
    on("machine.replace", [this] { replace(); });
    on("machine.removeEmptySequences", [this] { removeEmptySequences(); });
    on("machine.removeUnusedPatterns", [this] { removeUnusedPatterns(); });
    on("machine.transpose", [this] { transpose(); });
    on("machine.invert", [this] { invert(); });
}

bool MachineCommands::report(const music::Result& result)
{
    if (!result && !result.message().empty())
        MessageBoxes::error(&m_panel, fromStd(result.message()));
    return result.ok();
}

std::optional<std::size_t> MachineCommands::destination() const
{
    const song::BuzzSong* song = m_panel.document().song();
    const auto current = m_panel.currentMachine();
    if (song == nullptr || !current || *current >= song->machineCount())
        return std::nullopt;
    const song::SongMachine& machine = song->machines()[*current];
    if (machine.isMaster() || machine.type == 2)
        return current;
    return std::nullopt;
}

std::vector<std::size_t> MachineCommands::targets()
{
    std::vector<std::size_t> machines = m_panel.selectedMachines();
    if (machines.empty()) {
        if (const auto current = m_panel.currentMachine())
            machines.push_back(*current);
    }
    if (machines.empty())
        MessageBoxes::show(&m_panel, tr("Select a machine first."), QMessageBox::Information);
    return machines;
}

// ---- Edit ------------------------------------------------------------------------------------

void MachineCommands::remove()
{
    CTonalmancerDoc& document = m_panel.document();
    const song::BuzzSong* song = document.song();
    if (song == nullptr)
        return;
    std::vector<std::string> names;
    const std::vector<std::size_t> selected = m_panel.selectedMachines();
    if (!selected.empty()) {
        if (!MessageBoxes::askYesNo(&m_panel,
                                    QStringLiteral("Remove all SELECTED machines\nAre you sure?"),
                                    QStringLiteral("Remove Machines")))
            return;
        for (const std::size_t machine : selected)
            names.push_back(song->machines()[machine].name);
    } else if (const auto current = m_panel.currentMachine();
               current && *current < song->machineCount()) {
        const QString name = fromStd(song->machines()[*current].name);
        if (!MessageBoxes::askYesNo(
                &m_panel, QStringLiteral("Remove ") + name + QStringLiteral("\nAre you sure?"),
                QStringLiteral("Remove ") + name))
            return;
        names.push_back(song->machines()[*current].name);
    } else {
        return;
    }

    // One after another by name: a name no longer in the song is skipped; the master is
    // refused by the library, and the others still go.
    std::size_t removed = 0;
    std::string refusal;
    const QString label = names.size() == 1 ? tr("Remove machine") : tr("Remove machines");
    const music::Result result = document.edit(label, [&](song::BuzzSong& s) {
        for (const std::string& name : names) {
            const std::size_t machine = s.findMachine(name);
            if (machine == song::BuzzSong::kNameNotFound)
                continue;
            if (const music::Result r = song::removeMachine(s, machine); !r)
                refusal = r.message();
            else
                ++removed;
        }
        return removed > 0 ? music::Result::success() : music::Result::failure(refusal);
    });
    if (result && !refusal.empty())
        MessageBoxes::error(&m_panel, fromStd(refusal));
    else
        report(result);
}

bool MachineCommands::rename(std::size_t machine, const QString& name)
{
    const song::BuzzSong* song = m_panel.document().song();
    if (song == nullptr || machine >= song->machineCount() ||
        fromStd(song->machines()[machine].name) == name)
        return false;
    return report(m_panel.document().edit(tr("Rename machine"), [&](song::BuzzSong& s) {
        return song::renameMachine(s, machine, name.toStdString());
    }));
}

void MachineCommands::copy()
{
    const song::BuzzSong* song = m_panel.document().song();
    const auto current = m_panel.currentMachine();
    if (song == nullptr || !current)
        return;
    song::MachineClip clip;
    if (!report(song::copyMachine(*song, *current, clip)))
        return;
    m_clip = std::move(clip);
    Q_EMIT m_panel.statusMessage(
        tr("%1 copied with its patterns.").arg(fromStd(m_clip->machine.name)));
}

void MachineCommands::paste()
{
    if (!m_clip) {
        MessageBoxes::show(&m_panel, tr("Copy a machine first."), QMessageBox::Information);
        return;
    }
    std::size_t pasted = 0;
    const std::optional<std::size_t> into = destination();
    if (report(m_panel.document().edit(tr("Paste machine"), [&](song::BuzzSong& s) {
            return song::pasteMachine(s, *m_clip, into, pasted);
        })))
        m_panel.selectMachine(pasted);
}

void MachineCommands::clone()
{
    const std::vector<std::size_t> machines = targets();
    if (machines.empty())
        return;
    std::size_t last = 0;
    if (report(m_panel.document().edit(tr("Clone machine"), [&](song::BuzzSong& s) {
            // Clones go to the end, so the originals keep their indices.
            for (const std::size_t machine : machines) {
                if (music::Result r = song::cloneMachine(s, machine, last); !r)
                    return r;
            }
            return music::Result::success();
        })))
        m_panel.selectMachine(last);
}

void MachineCommands::replace()
{
    const song::BuzzSong* song = m_panel.document().song();
    const auto current = m_panel.currentMachine();
    if (song == nullptr || !current)
        return;
    Database database;
    if (!report(loadDatabase(m_panel.document(), database)))
        return;
    const song::SongMachine& machine = song->machines()[*current];
    std::vector<std::size_t> candidates;
    for (std::size_t i = 0; i < database.entries.size(); ++i) {
        song::ReplacementPlan plan;
        const song::MachineDatabaseEntry& entry = database.entries.entry(i);
        if (entry.dllName != machine.dllName && song::planReplacement(*song, *current, entry, plan))
            candidates.push_back(i);
    }
    if (candidates.empty()) {
        MessageBoxes::show(
            &m_panel,
            tr("No machine of the machine database can replace %1: a replacement must be a "
               "generator or effect as it is, and play notes through a \"note\" parameter of "
               "the same kind (global or per track).")
                .arg(fromStd(machine.name)),
            QMessageBox::Information);
        return;
    }
    CMachineChooserDialog dialog(tr("Replace %1").arg(fromStd(machine.name)),
                                 database.entries.entries(), candidates, &m_panel);
    if (dialog.exec() != QDialog::Accepted || !dialog.chosen())
        return;
    replaceWith(*dialog.chosen());
}

bool MachineCommands::replaceWith(std::size_t databaseIndex)
{
    const song::BuzzSong* song = m_panel.document().song();
    const auto current = m_panel.currentMachine();
    Database database;
    if (song == nullptr || !current || !report(loadDatabase(m_panel.document(), database)))
        return false;
    if (databaseIndex >= database.entries.size())
        return false;
    const song::MachineDatabaseEntry& entry = database.entries.entry(databaseIndex);
    song::ReplacementPlan plan;
    if (!report(song::planReplacement(*song, *current, entry, plan)))
        return false;
    const QString name = fromStd(song->machines()[*current].name);
    // Anything lost is listed, machine settings without values in the patterns too.
    if (const std::vector<std::string> losses = plan.describe(); !losses.empty()) {
        const QString question = tr("Replacing %1 by %2 loses:").arg(name, fromStd(entry.dllName)) +
                                 listed(losses) + QStringLiteral("\n\n") + tr("Replace it?");
        if (MessageBoxes::show(&m_panel, question, QMessageBox::Warning,
                               QMessageBox::Yes | QMessageBox::No,
                               tr("Replace Machine")) != QMessageBox::Yes)
            return false;
    }
    const std::size_t machine = *current;
    return report(m_panel.document().edit(tr("Replace machine"), [&](song::BuzzSong& s) {
        return song::replaceMachine(s, machine, entry, databaseIndex, database.dataFor(entry),
                                    plan);
    }));
}

void MachineCommands::addMachine()
{
    if (m_panel.document().song() == nullptr) {
        report(music::Result::failure(tr("There is no song to add a machine to.").toStdString()));
        return;
    }
    Database database;
    if (!report(loadDatabase(m_panel.document(), database)))
        return;
    std::vector<std::size_t> candidates;
    for (std::size_t i = 0; i < database.entries.size(); ++i) {
        if (database.entries.entry(i).type != 0) // one master per song
            candidates.push_back(i);
    }
    CMachineChooserDialog dialog(tr("Add Machine"), database.entries.entries(), candidates,
                                 &m_panel);
    dialog.setKindFilter(m_panel.model()->filter());
    if (dialog.exec() != QDialog::Accepted || !dialog.chosen())
        return;
    addFromDatabase(*dialog.chosen());
}

bool MachineCommands::addFromDatabase(std::size_t databaseIndex)
{
    Database database;
    if (!report(loadDatabase(m_panel.document(), database)) ||
        databaseIndex >= database.entries.size())
        return false;
    const song::MachineDatabaseEntry& entry = database.entries.entry(databaseIndex);
    const std::optional<std::size_t> into = destination();
    std::size_t added = 0;
    if (!report(m_panel.document().edit(tr("Add machine"), [&](song::BuzzSong& s) {
            return song::addMachine(s, entry, databaseIndex, database.dataFor(entry), into, added);
        })))
        return false;
    // Selected, so that "Create Buzz Patterns" writes into it at once.
    m_panel.selectMachine(added);
    return true;
}

// ---- Clean -----------------------------------------------------------------------------------

void MachineCommands::removeEmptySequences()
{
    const song::BuzzSong* song = m_panel.document().song();
    if (song == nullptr)
        return;
    std::size_t empty = 0;
    for (const song::SongSequence& sequence : song->sequences())
        empty += sequence.events.empty() ? 1 : 0;
    if (empty == 0) {
        Q_EMIT m_panel.statusMessage(tr("The song has no empty sequences."));
        return;
    }
    std::size_t removed = 0;
    if (report(m_panel.document().edit(tr("Remove empty sequences"), [&](song::BuzzSong& s) {
            removed = song::removeEmptySequences(s);
            return music::Result::success();
        })))
        Q_EMIT m_panel.statusMessage(
            tr("%1 removed.").arg(counted(removed, tr("empty sequence"), tr("empty sequences"))));
}

void MachineCommands::removeUnusedPatterns()
{
    const std::vector<std::size_t> machines = targets();
    const song::BuzzSong* song = m_panel.document().song();
    if (machines.empty() || song == nullptr)
        return;
    // Counted on a copy first: nothing unused makes no undo step.
    song::BuzzSong trial = *song;
    std::size_t unused = 0;
    for (const std::size_t machine : machines) {
        const std::size_t before = trial.patternCount(machine);
        song::removeUnusedPatterns(trial, machine);
        unused += before - trial.patternCount(machine);
    }
    if (unused == 0) {
        Q_EMIT m_panel.statusMessage(tr("Every pattern of the selected machines is used."));
        return;
    }
    if (MessageBoxes::show(&m_panel, QStringLiteral("Are you sure?"), QMessageBox::Question,
                           QMessageBox::Yes | QMessageBox::No,
                           QStringLiteral("Remove unused patterns")) != QMessageBox::Yes)
        return;
    if (report(m_panel.document().edit(tr("Remove unused patterns"), [&](song::BuzzSong& s) {
            for (const std::size_t machine : machines)
                song::removeUnusedPatterns(s, machine);
            return music::Result::success();
        })))
        Q_EMIT m_panel.statusMessage(
            tr("%1 removed.").arg(counted(unused, tr("unused pattern"), tr("unused patterns"))));
}

// ---- Transform -------------------------------------------------------------------------------

void MachineCommands::transpose()
{
    if (targets().empty())
        return;
    CMachineTransformDialog dialog(CMachineTransformDialog::Transpose, &m_panel);
    if (dialog.exec() == QDialog::Accepted)
        transposeBy(dialog.halfNotes());
}

void MachineCommands::transposeBy(int halfNotes)
{
    applyNoteTransform(tr("Transpose"), false, halfNotes);
}

void MachineCommands::invert()
{
    if (targets().empty())
        return;
    CMachineTransformDialog dialog(CMachineTransformDialog::Invert, &m_panel);
    if (dialog.exec() == QDialog::Accepted)
        invertAround(dialog.centre());
}

void MachineCommands::invertAround(music::NoteValue centre)
{
    applyNoteTransform(tr("Invert"), true, centre);
}

void MachineCommands::applyNoteTransform(const QString& label, bool invert, int value)
{
    const std::vector<std::size_t> machines = targets();
    const song::BuzzSong* song = m_panel.document().song();
    if (machines.empty() || song == nullptr)
        return;
    const auto run = [&](song::BuzzSong& s) {
        return invert ? song::invertNotes(s, machines, static_cast<music::NoteValue>(value))
                      : song::transposeNotes(s, machines, value);
    };
    // Tried on a copy first: a transformation that moves no note makes no undo step.
    song::BuzzSong trial = *song;
    song::NoteTransformReport result = run(trial);
    if (result.changed > 0) {
        m_panel.document().edit(label, [&](song::BuzzSong& s) {
            result = run(s);
            return music::Result::success();
        });
    }
    const QString changed = tr("%1 changed.").arg(counted(result.changed, tr("note"), tr("notes")));
    if (result.outOfRange.empty()) {
        Q_EMIT m_panel.statusMessage(changed);
        return;
    }
    const song::BuzzSong* now = m_panel.document().song();
    MessageBoxes::show(&m_panel,
                       changed + QLatin1Char('\n') +
                           tr("%1 left as they were: they would leave the tracker's range "
                              "C-0 to B-9.")
                               .arg(counted(result.outOfRange.size(), tr("note"), tr("notes"))) +
                           listed(result.describe(*now)),
                       QMessageBox::Warning, QMessageBox::Ok, label);
}

} // namespace app
