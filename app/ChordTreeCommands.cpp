#include "app/ChordTreeCommands.h"

#include "app/ActionFactory.h"
#include "app/CChordDialog.h"
#include "app/CChordFromListDialog.h"
#include "app/CGenerateDialog.h"
#include "app/CNoteChoiceDialog.h"
#include "app/CNoteKeyboard.h"
#include "app/CScaleGroupDialog.h"
#include "app/CTreeCtrlX.h"
#include "app/ChordCollectionModel.h"
#include "app/ChordDatabasePanel.h"
#include "app/MessageBoxes.h"

#include <QKeySequence>
#include <QMenu>
#include <QShortcut>
#include <QTimer>

#include <functional>

namespace app {

using music::TreePosition;
using Panel = ChordDatabasePanel;

ChordTreeCommands::ChordTreeCommands(ChordDatabasePanel& panel) : QObject(&panel), m_panel(panel)
{
    setObjectName(QStringLiteral("chordTreeCommands"));
    bindMenu();
    bindKeys();
    bindModel();
}

void ChordTreeCommands::bindMenu()
{
    QMenu* menu = m_panel.contextMenu();
    const auto on = [this, menu](std::string_view id, const std::function<void()>& slot) {
        ActionFactory::onTriggered(menu, id, this, slot);
    };
    on("tree.addBase", [this] { addBaseGroup(); });
    on("tree.removeBase", [this] { removeAt(Panel::GroupLevel); });
    on("tree.renameBase", [this] { m_panel.renameCurrent(Panel::GroupLevel); });
    on("tree.generateBase", [this] { generateBase(); });
    on("tree.addScale", [this] { addScaleGroup(); });
    on("tree.removeScale", [this] { removeAt(Panel::SectionLevel); });
    on("tree.settingsScale", [this] { editSettingsAt(Panel::SectionLevel); });
    on("tree.forbidNotes", [this] { forbidNotes(); });
    on("tree.addCollection", [this] { addCollection(); });
    on("tree.removeCollection", [this] { removeAt(Panel::CollectionLevel); });
    on("tree.settingsCollection", [this] { editSettingsAt(Panel::CollectionLevel); });
    on("tree.addChordFromList", [this] { addChordFromList(); });
    on("tree.addChordByNotes", [this] { addChordByNotes(); });
    on("tree.removeChord", [this] { removeAt(Panel::ChordLevel); });
    on("tree.settingsChord", [this] { editSettingsAt(Panel::ChordLevel); });
    on("tree.copy", [this] { copyChords(); });
    on("tree.cut", [this] { cutChords(); });
    on("tree.pasteInsert", [this] { pasteChords(false); });
    on("tree.pasteAppend", [this] { pasteChords(true); });
    on("tree.sortUp", [this] { sortChords(true); });
    on("tree.sortDown", [this] { sortChords(false); });
}

void ChordTreeCommands::bindKeys()
{
    // The menu only shows these keys: one key stands in several sub-menus, and the tree decides
    // by the selection what it acts on.
    const auto key = [this](const char* sequence, const std::function<void()>& slot) {
        auto* shortcut = new QShortcut(QKeySequence(QString::fromLatin1(sequence)), m_panel.tree(),
                                       nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, [slot] { slot(); });
    };
    key("Del", [this] { removeSelected(); });
    key("Ctrl+R", [this] { editSettings(); });
    key("Ctrl+C", [this] { copyChords(); });
    key("Ctrl+X", [this] { cutChords(); });
    key("Ctrl+V", [this] { pasteChords(false); });
    key("Ctrl+W", [this] { pasteChords(true); });
}

void ChordTreeCommands::bindModel()
{
    ChordCollectionModel* model = m_panel.model();
    model->setRenameHandler([this](const TreePosition& position, const QString& name) {
        // Applied after the editor has closed: the edit rebuilds the tree.
        QTimer::singleShot(0, this, [this, position, name] {
            m_panel.applyEdit(
                tr("Rename"),
                [&](music::ChordCollection& c) {
                    return music::ChordDatabaseEdits::rename(c, position, name.toStdString());
                },
                [position] { return std::vector<TreePosition>{position}; });
        });
    });
    model->setDropHandler(
        [this](const std::vector<TreePosition>& chords, const TreePosition& target, bool copy) {
            QTimer::singleShot(0, this, [this, chords, target, copy] {
                std::vector<TreePosition> moved;
                m_panel.applyEdit(
                    copy ? tr("Copy Chords") : tr("Move Chords"),
                    [&](music::ChordCollection& c) {
                        moved = music::ChordDatabaseEdits::moveChords(c, chords, target, copy);
                        return !moved.empty();
                    },
                    [&moved] { return moved; });
            });
        });
}

// ---- remove, clipboard, sort -----------------------------------------------------------------

void ChordTreeCommands::removeSelected()
{
    const std::vector<TreePosition> items = m_panel.selectedPositions();
    m_panel.applyEdit(tr("Remove"), [&](music::ChordCollection& c) {
        return music::ChordDatabaseEdits::remove(c, items) > 0;
    });
}

void ChordTreeCommands::removeAt(int level)
{
    std::vector<TreePosition> items;
    for (const TreePosition& p : m_panel.selectedPositions()) {
        if (Panel::levelOf(p) >= level)
            items.push_back(Panel::truncated(p, level));
    }
    m_panel.applyEdit(tr("Remove"), [&](music::ChordCollection& c) {
        return music::ChordDatabaseEdits::remove(c, items) > 0;
    });
}

std::vector<TreePosition> ChordTreeCommands::selectedChords() const
{
    std::vector<TreePosition> chords;
    for (const TreePosition& p : m_panel.selectedPositions()) {
        if (p.isChord())
            chords.push_back(p);
    }
    return chords;
}

void ChordTreeCommands::copyChords()
{
    const std::vector<TreePosition> chords = selectedChords();
    if (!chords.empty())
        m_panel.setClipboard(music::ChordDatabaseEdits::chordsAt(m_panel.collection(), chords));
}

void ChordTreeCommands::cutChords()
{
    const std::vector<TreePosition> chords = selectedChords();
    if (chords.empty())
        return;
    m_panel.setClipboard(music::ChordDatabaseEdits::chordsAt(m_panel.collection(), chords));
    m_panel.applyEdit(tr("Cut"), [&](music::ChordCollection& c) {
        return music::ChordDatabaseEdits::remove(c, chords) > 0;
    });
}

void ChordTreeCommands::pasteChords(bool append)
{
    const auto current = m_panel.currentPosition();
    if (m_panel.clipboard().empty() || !current ||
        Panel::levelOf(*current) < Panel::CollectionLevel)
        return;
    const TreePosition target =
        append ? Panel::truncated(*current, Panel::CollectionLevel) : *current;
    std::vector<TreePosition> inserted;
    m_panel.applyEdit(
        append ? tr("Paste Append") : tr("Paste Insert"),
        [&](music::ChordCollection& c) {
            inserted = music::ChordDatabaseEdits::insertChords(c, target, m_panel.clipboard());
            return !inserted.empty();
        },
        [&inserted] { return inserted; });
}

void ChordTreeCommands::sortChords(bool upwards)
{
    const auto current = m_panel.currentPosition();
    if (!current)
        return;
    const TreePosition target =
        current->isChord() ? Panel::truncated(*current, Panel::CollectionLevel) : *current;
    m_panel.applyEdit(
        upwards ? tr("Sort Upwards") : tr("Sort Downwards"),
        [&](music::ChordCollection& c) {
            return music::ChordDatabaseEdits::sortChords(c, target, upwards);
        },
        [target] { return std::vector<TreePosition>{target}; });
}

// ---- adding ----------------------------------------------------------------------------------

void ChordTreeCommands::addBaseGroup()
{
    int added = -1;
    m_panel.applyEdit(
        tr("Add Base"),
        [&](music::ChordCollection& c) {
            added = c.addBaseGroup("noname");
            return added >= 0;
        },
        [&added] { return std::vector<TreePosition>{TreePosition::ofBaseGroup(added)}; });
    if (added >= 0)
        m_panel.renameCurrent();
}

void ChordTreeCommands::addCollection()
{
    const auto section = m_panel.currentAt(Panel::SectionLevel);
    if (!section)
        return;
    std::optional<TreePosition> added;
    m_panel.applyEdit(
        tr("Add Collection"),
        [&](music::ChordCollection& c) {
            added = music::ChordDatabaseEdits::addSubsection(c, *section, "noname");
            return added.has_value();
        },
        [&added] { return std::vector<TreePosition>{*added}; });
    if (added) {
        m_panel.tree()->expand(m_panel.model()->index(*section));
        m_panel.renameCurrent();
    }
}

void ChordTreeCommands::generateBaseWith(const music::ChordDatabaseEdits::GenerateOptions& options)
{
    int added = -1;
    m_panel.applyEdit(
        tr("Generate Base"),
        [&](music::ChordCollection& c) {
            added = music::ChordDatabaseEdits::generateBase(c, m_panel.chordTypes(), options);
            return added >= 0;
        },
        [&added] { return std::vector<TreePosition>{TreePosition::ofBaseGroup(added)}; });
}

void ChordTreeCommands::generateBase()
{
    CGenerateDialog dialog(CGenerateDialog::Mode::Base, m_panel.scales(), &m_panel);
    if (dialog.exec() == QDialog::Accepted)
        generateBaseWith(dialog.options());
}

void ChordTreeCommands::addScaleGroup()
{
    const auto group = m_panel.currentAt(Panel::GroupLevel);
    if (!group) {
        MessageBoxes::show(&m_panel, tr("Select the base group the scale group belongs to."),
                           QMessageBox::Information);
        return;
    }
    CScaleGroupDialog dialog(QStringLiteral("Add Scale/Group"), m_panel.scales(), &m_panel);
    if (dialog.exec() != QDialog::Accepted)
        return;
    TreePosition added;
    m_panel.applyEdit(
        tr("Add Scale"),
        [&](music::ChordCollection& c) {
            const auto b = static_cast<std::size_t>(group->baseGroup);
            const music::Result result = c.addScaleGroup(
                b, dialog.name().toStdString(), dialog.ticks(),
                static_cast<music::PitchClass>(dialog.baseNote()), dialog.scaleFlag());
            added = TreePosition::ofSection(
                group->baseGroup, static_cast<int>(c.baseGroups()[b].sections.size()) - 1);
            return result.ok();
        },
        [&added] { return std::vector<TreePosition>{added}; });
}

void ChordTreeCommands::insertChord(const TreePosition& target, const music::Chord& chord)
{
    std::vector<TreePosition> inserted;
    m_panel.applyEdit(
        tr("Add Chord"),
        [&](music::ChordCollection& c) {
            inserted = music::ChordDatabaseEdits::insertChords(
                c, Panel::truncated(target, Panel::CollectionLevel), {chord});
            return !inserted.empty();
        },
        [&inserted] { return inserted; });
}

std::optional<TreePosition> ChordTreeCommands::chordTarget()
{
    const auto current = m_panel.currentPosition();
    if (!current || Panel::levelOf(*current) < Panel::CollectionLevel) {
        MessageBoxes::show(&m_panel, tr("Select the collection the chord goes into."),
                           QMessageBox::Information);
        return std::nullopt;
    }
    return current;
}

void ChordTreeCommands::addChordFromList()
{
    const auto target = chordTarget();
    if (!target)
        return;
    CChordFromListDialog dialog(m_panel.chordTypes(), m_panel.userFolder(), &m_panel);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const music::Chord chord = dialog.chord();
    if (chord.noteCount() == 0) {
        MessageBoxes::error(&m_panel,
                            QString::fromLatin1(music::ChordTypeList::kInvalidConstruction.data()));
        return;
    }
    insertChord(*target, chord);
}

void ChordTreeCommands::addChordByNotes()
{
    const auto target = chordTarget();
    if (!target)
        return;
    CChordDialog dialog(QStringLiteral("Add Chord"), &m_panel);
    if (dialog.exec() == QDialog::Accepted)
        insertChord(*target, dialog.chord());
}

// ---- settings and notes ----------------------------------------------------------------------

void ChordTreeCommands::editSettingsAt(int level)
{
    if (level == Panel::CollectionLevel) {
        m_panel.renameCurrent(level); // a collection has only its name
    } else if (const auto p = m_panel.currentAt(level)) {
        m_panel.selectPosition(*p);
        editSettings();
    }
}

void ChordTreeCommands::editSettings()
{
    const auto current = m_panel.currentPosition();
    if (!current)
        return;
    const music::ChordCollection& collection = m_panel.collection();
    switch (Panel::levelOf(*current)) {
    case Panel::SectionLevel: {
        const music::ChordSection* section = collection.sectionAt(*current);
        if (section == nullptr)
            return;
        CScaleGroupDialog dialog(tr("Scale Group Settings"), m_panel.scales(), &m_panel);
        dialog.setName(QString::fromStdString(section->name));
        CNoteKeyboard::Ticks ticks{};
        for (const music::NoteValue note : section->notes)
            ticks[music::pitchClassOf(note)] = true;
        if (!section->notes.empty())
            dialog.setBaseNote(music::pitchClassOf(section->notes.front()));
        dialog.setTicks(ticks);
        dialog.setScaleFlag(section->scaleFlag);
        if (dialog.exec() != QDialog::Accepted)
            return;
        std::vector<music::NoteValue> notes;
        const int base = dialog.baseNote();
        for (int step = 0; step < music::kPitchClassCount; ++step) {
            const int pitchClass = (base + step) % music::kPitchClassCount;
            if (dialog.ticks()[static_cast<std::size_t>(pitchClass)])
                notes.push_back(static_cast<music::NoteValue>(pitchClass));
        }
        m_panel.applyEdit(tr("Settings"), [&](music::ChordCollection& c) {
            return music::ChordDatabaseEdits::setSection(c, *current, dialog.name().toStdString(),
                                                         dialog.scaleFlag(), notes);
        });
        return;
    }
    case Panel::ChordLevel: {
        const music::Chord* chord = collection.chordAt(*current);
        if (chord == nullptr)
            return;
        CChordDialog dialog(tr("Chord Settings"), &m_panel);
        dialog.setChord(*chord);
        if (dialog.exec() != QDialog::Accepted)
            return;
        m_panel.applyEdit(tr("Settings"), [&](music::ChordCollection& c) {
            return music::ChordDatabaseEdits::replaceChord(c, *current, dialog.chord());
        });
        return;
    }
    default:
        m_panel.renameCurrent();
    }
}

void ChordTreeCommands::forbidNotesWith(const music::ChordDatabaseEdits::Ticks& allowed)
{
    const auto section = m_panel.currentAt(Panel::SectionLevel);
    if (!section)
        return;
    m_panel.applyEdit(
        tr("Forbid Notes"),
        [&](music::ChordCollection& c) {
            music::ChordDatabaseEdits::forbidNotes(c, *section, allowed);
            return true;
        },
        [section] { return std::vector<TreePosition>{*section}; });
}

void ChordTreeCommands::forbidNotes()
{
    const auto section = m_panel.currentAt(Panel::SectionLevel);
    if (!section) {
        MessageBoxes::show(&m_panel, tr("Select the scale group whose notes you want to limit."),
                           QMessageBox::Information);
        return;
    }
    CNoteChoiceDialog dialog(QStringLiteral("Forbid Notes"),
                             tr("Untick the notes the chords of this group may not use."),
                             &m_panel);
    dialog.keyboard()->setToolTip(
        QStringLiteral("Unchecked notes cannot be result of note addition(+,-)."));
    CNoteKeyboard::Ticks ticks{};
    ticks.fill(true);
    if (const music::ChordSection* s = m_panel.collection().sectionAt(*section);
        s && s->scaleFlag) {
        ticks.fill(false);
        for (const music::NoteValue note : s->notes)
            ticks[music::pitchClassOf(note)] = true;
    }
    dialog.keyboard()->setTicks(ticks);
    if (dialog.exec() == QDialog::Accepted)
        forbidNotesWith(dialog.keyboard()->ticks());
}

} // namespace app
