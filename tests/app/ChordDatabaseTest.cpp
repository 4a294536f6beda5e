// The chord database as the tree shows it: generation, edits, undo, files and the tree model.
#include "AppTestSupport.h"

#include "app/CGenerateDialog.h"
#include "app/CTreeCtrlX.h"
#include "app/ChordCollectionModel.h"
#include "music/ChordDatabaseEdits.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QApplication>
#include <QCoreApplication>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QUndoStack>

#include <functional>
#include <optional>
#include <tuple>

namespace {

using music::ChordCollection;
using music::ChordDatabaseEdits;
using music::TreePosition;

constexpr music::ChordDatabaseEdits::Ticks kCMajor = {true,  false, true,  false, true,  true,
                                                      false, true,  false, true,  false, true};

/** A small collection: group "G" > section "S" > collections "A" (3 chords) and "B" (1). */
ChordCollection smallCollection()
{
    ChordCollection c;
    music::ChordBaseGroup group{"G", {}};
    music::ChordSection section;
    section.name = "S";
    section.subsections.push_back(
        {"A",
         {music::Chord::fromNotes("c", {48, 52, 55}), music::Chord::fromNotes("d", {50, 53, 57}),
          music::Chord::fromNotes("e", {52, 55, 59})}});
    section.subsections.push_back({"B", {music::Chord::fromNotes("f", {53, 57, 60})}});
    group.sections.push_back(section);
    c.baseGroups().push_back(group);
    return c;
}

std::vector<std::string> namesIn(const ChordCollection& c, int subsection)
{
    std::vector<std::string> names;
    for (const auto& chord :
         c.baseGroups()[0].sections[0].subsections[static_cast<std::size_t>(subsection)].chords)
        names.push_back(chord.name);
    return names;
}

TEST(ChordCollectionModel, PassesTheModelTesterAndMapsPositionsBothWays)
{
    ChordCollection c = smallCollection();
    app::ChordCollectionModel model(c);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const TreePosition deep = TreePosition::ofChord(0, 0, 1, 0);
    const QModelIndex index = model.index(deep);
    ASSERT_TRUE(index.isValid());
    EXPECT_EQ(model.position(index), deep);
    EXPECT_EQ(index.data().toString(), QStringLiteral("f"));
    EXPECT_EQ(model.index(deep, 1).data().toString(), QStringLiteral("F4 A4 C5"));
    EXPECT_FALSE(model.index(TreePosition::ofChord(0, 0, 1, 5)).isValid());
    // Only chords are dragged, and they land on collections and chords.
    EXPECT_TRUE(model.flags(index) & Qt::ItemIsDragEnabled);
    EXPECT_FALSE(model.flags(model.index(TreePosition::ofSection(0, 0))) & Qt::ItemIsDragEnabled);
}

TEST(ChordCollectionModel, RowsNeverAskedForFollowChangesMadeBeforeTheyAreOpened)
{
    // Nothing below the base group has been asked for when the collection changes deep down;
    // the rows seen afterwards are those of the changed collection, and a view opening them
    // later finds a consistent model.
    ChordCollection collection = smallCollection();
    app::ChordCollectionModel model(collection);
    EXPECT_EQ(model.rowCount(), 1);
    auto& chords = collection.baseGroups()[0].sections[0].subsections[0].chords;
    chords.erase(chords.begin());
    chords.push_back(music::Chord::fromNotes("g", {55, 59, 62}));
    collection.baseGroups()[0].sections[0].subsections[1].name = "Bee";
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    model.refresh();
    EXPECT_EQ(inserted.count() + removed.count(), 0); // no view knew those rows

    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const QModelIndex a = model.index(TreePosition::ofSubsection(0, 0, 0));
    ASSERT_EQ(model.rowCount(a), 3);
    EXPECT_EQ(model.index(0, 0, a).data().toString(), QStringLiteral("d"));
    EXPECT_EQ(model.index(2, 0, a).data().toString(), QStringLiteral("g"));
    EXPECT_EQ(model.index(TreePosition::ofSubsection(0, 0, 1)).data().toString(),
              QStringLiteral("Bee"));

    // Once open, the rows are told about again.
    chords.pop_back();
    model.refresh();
    EXPECT_EQ(removed.count(), 1);
    EXPECT_EQ(model.rowCount(a), 2);
}

TEST(ChordCollectionModel, ItemsKeepTheirIndexesThroughChangesWithoutAReset)
{
    // Each change is made to the collection, then shown; an index held on chord "e" and on
    // collection "B" must follow its item, as the tree's selection and open folders do.
    struct Case
    {
        const char* what;
        std::function<void(ChordCollection&)> change;
        std::optional<TreePosition> e;
        std::optional<TreePosition> b;
    };
    const auto chordsOfA = [](ChordCollection& c) -> std::vector<music::Chord>& {
        return c.baseGroups()[0].sections[0].subsections[0].chords;
    };
    const Case cases[] = {
        {"insert before the first chord",
         [&](ChordCollection& c) {
             auto& chords = chordsOfA(c);
             chords.insert(chords.begin(), music::Chord::fromNotes("b", {47}));
         },
         TreePosition::ofChord(0, 0, 0, 3), TreePosition::ofSubsection(0, 0, 1)},
        {"remove the first chord",
         [&](ChordCollection& c) { chordsOfA(c).erase(chordsOfA(c).begin()); },
         TreePosition::ofChord(0, 0, 0, 1), TreePosition::ofSubsection(0, 0, 1)},
        {"rename and renote in place",
         [&](ChordCollection& c) {
             c.baseGroups()[0].sections[0].subsections[0].name = "Ay";
             chordsOfA(c)[2].slots[0] = 40;
         },
         TreePosition::ofChord(0, 0, 0, 2), TreePosition::ofSubsection(0, 0, 1)},
        {"remove the collection holding e",
         [](ChordCollection& c) {
             auto& subs = c.baseGroups()[0].sections[0].subsections;
             subs.erase(subs.begin());
         },
         std::nullopt, TreePosition::ofSubsection(0, 0, 0)},
        {"add a base group in front",
         [](ChordCollection& c) {
             c.baseGroups().insert(c.baseGroups().begin(), {"F", {}});
         },
         TreePosition::ofChord(1, 0, 0, 2), TreePosition::ofSubsection(1, 0, 1)},
        {"replace everything", [](ChordCollection& c) { c = ChordCollection(); }, std::nullopt,
         std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ChordCollection collection = smallCollection();
        app::ChordCollectionModel model(collection);
        QAbstractItemModelTester tester(&model,
                                        QAbstractItemModelTester::FailureReportingMode::Fatal);
        QSignalSpy resets(&model, &QAbstractItemModel::modelAboutToBeReset);
        const QPersistentModelIndex e = model.index(TreePosition::ofChord(0, 0, 0, 2));
        const QPersistentModelIndex b = model.index(TreePosition::ofSubsection(0, 0, 1));
        ASSERT_EQ(e.data().toString(), QStringLiteral("e"));

        c.change(collection);
        model.refresh();
        EXPECT_EQ(resets.count(), 0);
        EXPECT_EQ(e.isValid(), c.e.has_value());
        if (c.e) {
            EXPECT_EQ(model.position(e), *c.e);
            EXPECT_EQ(e.data().toString(), QStringLiteral("e"));
            EXPECT_EQ(model.index(*c.e, 1).data().toString(),
                      app::ChordCollectionModel::chordNotesText(*collection.chordAt(*c.e)));
        }
        EXPECT_EQ(b.isValid(), c.b.has_value());
        if (c.b) {
            EXPECT_EQ(model.position(b), *c.b);
            EXPECT_EQ(b.data().toString(), QStringLiteral("B"));
        }
        EXPECT_EQ(model.rowCount(), static_cast<int>(collection.baseGroups().size()));
    }
}

using ChordDatabaseView = apptest::AppFixture;

TEST_F(ChordDatabaseView, StartsWithTheShippedDatabase)
{
    EXPECT_FALSE(chords().collection().isEmpty());
    EXPECT_EQ(chords().model()->rowCount(),
              static_cast<int>(chords().collection().baseGroups().size()));
    EXPECT_FALSE(chords().chordTypes().isEmpty());
    EXPECT_FALSE(chords().scales().isEmpty());
}

TEST_F(ChordDatabaseView, GenerateListBuildsBothGroupsAndUndoBringsTheOldDatabaseBack)
{
    const ChordCollection before = chords().collection();
    chords().menuCommands().generateListWith({});
    ASSERT_EQ(chords().collection().baseGroups().size(), 2u);
    EXPECT_EQ(chords().collection().baseGroups()[0].name, "Sorted by chord");
    EXPECT_EQ(chords().collection().baseGroups()[1].name, "Sorted by note");
    EXPECT_EQ(chords().model()->rowCount(), 2);
    chords().undoStack()->undo();
    EXPECT_EQ(chords().collection().baseGroups(), before.baseGroups());
    EXPECT_EQ(chords().model()->rowCount(), static_cast<int>(before.baseGroups().size()));
    chords().undoStack()->redo();
    EXPECT_EQ(chords().collection().baseGroups().size(), 2u);
}

TEST_F(ChordDatabaseView, ScaleOptionsLimitTheGeneratedChords)
{
    music::ChordDatabaseEdits::GenerateOptions options;
    options.scale = kCMajor;
    options.onlyScaleNotes = true;
    chords().menuCommands().generateListWith(options);
    std::size_t generated = 0;
    for (const auto& group : chords().collection().baseGroups()) {
        for (const auto& section : group.sections) {
            for (const auto& sub : section.subsections) {
                for (const auto& chord : sub.chords) {
                    ++generated;
                    EXPECT_TRUE(music::ChordDatabaseEdits::usesOnly(chord, kCMajor)) << chord.name;
                }
            }
        }
    }
    EXPECT_GT(generated, 0u);

    options.onlyScaleNotes = false;
    options.everyNoteInScale = true;
    options.name = "C major chords";
    chords().treeCommands().generateBaseWith(options);
    const auto& group = chords().collection().baseGroups().back();
    EXPECT_EQ(group.name, "C major chords");
    ASSERT_FALSE(group.sections.empty());
    for (const auto& section : group.sections) {
        EXPECT_EQ(section.name.find('#'), std::string::npos) << section.name; // roots in C major
        EXPECT_TRUE(section.scaleFlag);
    }
    EXPECT_EQ(
        chords().currentPosition(),
        TreePosition::ofBaseGroup(static_cast<int>(chords().collection().baseGroups().size()) - 1));
}

TEST_F(ChordDatabaseView, CutAndPasteMoveChordsAndEachStepIsUndoable)
{
    chords().collection() = smallCollection();
    chords().model()->refresh();
    const int steps = chords().undoStack()->count();
    chords().selectPositions(
        {TreePosition::ofChord(0, 0, 0, 0), TreePosition::ofChord(0, 0, 0, 1)});
    chords().treeCommands().cutChords();
    EXPECT_EQ(namesIn(chords().collection(), 0), (std::vector<std::string>{"e"}));
    chords().selectPosition(TreePosition::ofChord(0, 0, 1, 0));
    chords().treeCommands().pasteChords(false); // insert before "f"
    EXPECT_EQ(namesIn(chords().collection(), 1), (std::vector<std::string>{"c", "d", "f"}));
    chords().selectPosition(TreePosition::ofChord(0, 0, 0, 0));
    chords().treeCommands().pasteChords(true); // append to "A"
    EXPECT_EQ(namesIn(chords().collection(), 0), (std::vector<std::string>{"e", "c", "d"}));
    EXPECT_EQ(chords().undoStack()->count(), steps + 3);
    chords().undoStack()->undo();
    chords().undoStack()->undo();
    chords().undoStack()->undo();
    EXPECT_EQ(chords().collection().baseGroups(), smallCollection().baseGroups());
}

TEST_F(ChordDatabaseView, RenameInPlaceAndDropsAreUndoableEdits)
{
    chords().collection() = smallCollection();
    chords().model()->refresh();
    app::ChordCollectionModel& model = *chords().model();
    ASSERT_TRUE(
        model.setData(model.index(TreePosition::ofSubsection(0, 0, 1)), QStringLiteral("Bee")));
    QCoreApplication::processEvents();
    EXPECT_EQ(chords().collection().baseGroups()[0].sections[0].subsections[1].name, "Bee");

    std::unique_ptr<QMimeData> drag(
        model.mimeData({model.index(TreePosition::ofChord(0, 0, 0, 0))}));
    // Dropped between the rows of "Bee", before its only chord.
    model.dropMimeData(drag.get(), Qt::MoveAction, 0, 0,
                       model.index(TreePosition::ofSubsection(0, 0, 1)));
    QCoreApplication::processEvents();
    EXPECT_EQ(namesIn(chords().collection(), 1), (std::vector<std::string>{"c", "f"}));
    chords().undoStack()->undo();
    chords().undoStack()->undo();
    EXPECT_EQ(chords().collection().baseGroups(), smallCollection().baseGroups());
}

/** The tree as "group[section[collection(chords) ...] ...] ...". */
std::string shapeOf(const ChordCollection& c)
{
    std::string text;
    for (const auto& group : c.baseGroups()) {
        text += group.name + "[";
        for (const auto& section : group.sections) {
            text += section.name + "[";
            for (const auto& sub : section.subsections)
                text += sub.name + "(" + std::to_string(sub.chords.size()) + ")";
            text += "]";
        }
        text += "]";
    }
    return text;
}

TEST_F(ChordDatabaseView, RemoveInEachSubMenuRemovesTheItemOfItsLevel)
{
    // A chord is selected; the sub-menu the user picks Remove from decides what goes.
    const std::pair<const char*, const char*> cases[] = {
        {"tree.removeChord", "G[S[A(2)B(1)]]"},
        {"tree.removeCollection", "G[S[B(1)]]"},
        {"tree.removeScale", "G[]"},
        {"tree.removeBase", ""},
    };
    ASSERT_EQ(shapeOf(smallCollection()), "G[S[A(3)B(1)]]");
    QMenu* menu = view().contextMenu("chordTree");
    for (const auto& [id, shape] : cases) {
        SCOPED_TRACE(id);
        chords().collection() = smallCollection();
        chords().refreshTree();
        chords().selectPosition(TreePosition::ofChord(0, 0, 0, 1));
        const QList<QAction*> items = menu->findChildren<QAction*>(QString::fromLatin1(id));
        ASSERT_EQ(items.size(), 1);
        items.front()->trigger();
        EXPECT_EQ(shapeOf(chords().collection()), shape);
        chords().undoStack()->undo();
        EXPECT_EQ(shapeOf(chords().collection()), "G[S[A(3)B(1)]]");
    }
}

TEST_F(ChordDatabaseView, SortsTheChordsOfACollectionByTheirNotes)
{
    chords().collection() = smallCollection();
    chords().model()->refresh();
    chords().selectPosition(TreePosition::ofChord(0, 0, 0, 1));
    chords().treeCommands().sortChords(false);
    EXPECT_EQ(namesIn(chords().collection(), 0), (std::vector<std::string>{"e", "d", "c"}));
    chords().treeCommands().sortChords(true);
    EXPECT_EQ(namesIn(chords().collection(), 0), (std::vector<std::string>{"c", "d", "e"}));
}

TEST_F(ChordDatabaseView, BadChordListFilesAreReportedAndLeaveTheDatabaseAsItWas)
{
    const ChordCollection before = chords().collection();
    QFile notAList(m_data.file(QStringLiteral("bad.crd")));
    ASSERT_TRUE(notAList.open(QIODevice::WriteOnly));
    notAList.write("Not_A_Chord_List\n0\n");
    notAList.close();
    struct Case
    {
        QString path;
        QString message;
    };
    for (const Case& c : {Case{notAList.fileName(), QStringLiteral("Seems to be no valid file.")},
                          Case{m_data.file(QStringLiteral("missing.crd")),
                               QStringLiteral("Error opening file.")}}) {
        m_messages.clear();
        EXPECT_FALSE(chords().menuCommands().loadChordListFrom(c.path));
        EXPECT_EQ(m_messages.texts(), QStringList{c.message});
        EXPECT_EQ(chords().collection().baseGroups(), before.baseGroups());
    }
}

TEST_F(ChordDatabaseView, SavedListLoadsBackAndTheDefaultIsKeptCurrentAfterSavingIt)
{
    chords().collection() = smallCollection();
    const QString path = m_data.file(QStringLiteral("round.crd"));
    ASSERT_TRUE(chords().menuCommands().saveChordListTo(path));
    chords().menuCommands().createNewList();
    EXPECT_TRUE(chords().collection().isEmpty());
    ASSERT_TRUE(chords().menuCommands().loadChordListFrom(path));
    EXPECT_EQ(chords().collection().baseGroups(), smallCollection().baseGroups());

    EXPECT_FALSE(chords().keepsDefaultCurrent());
    chords().menuCommands().saveDefaultChordList();
    EXPECT_TRUE(chords().keepsDefaultCurrent());
    chords().treeCommands().addBaseGroup();
    ChordCollection onDisk;
    ASSERT_TRUE(onDisk.load(m_data.file(QStringLiteral("default.crd")).toStdString()));
    EXPECT_EQ(onDisk.baseGroups(), chords().collection().baseGroups());
    EXPECT_EQ(onDisk.baseGroups().back().name, "noname");
}

TEST_F(ChordDatabaseView, AddingACollectionNeedsAScaleGroupSelected)
{
    chords().collection() = smallCollection();
    chords().model()->refresh();
    const int steps = chords().undoStack()->count();
    chords().selectPosition(TreePosition::ofBaseGroup(0));
    chords().treeCommands().addCollection(); // a group is no scale group: nothing happens
    EXPECT_EQ(chords().undoStack()->count(), steps);
    chords().selectPosition(TreePosition::ofChord(0, 0, 1, 0));
    chords().treeCommands().addCollection();
    ASSERT_EQ(chords().collection().baseGroups()[0].sections[0].subsections.size(), 3u);
    EXPECT_EQ(chords().collection().baseGroups()[0].sections[0].subsections[2].name, "noname");
}

} // namespace

namespace {

TEST_F(ChordDatabaseView, EditsUndoAndRedoKeepOpenFoldersAndTheSelection)
{
    // The user opened collection "A", closed group "H" and selected chord "e"; then an edit
    // elsewhere is made, undone and redone.
    using Edit = std::function<void(app::ChordDatabasePanel&)>;
    const auto edit = [](const char* text, std::function<bool(ChordCollection&)> change) {
        return [text, change](app::ChordDatabasePanel& panel) {
            panel.applyEdit(QString::fromLatin1(text), change);
        };
    };
    const std::pair<const char*, Edit> cases[] = {
        {"rename another collection", edit("Rename",
                                           [](ChordCollection& c) {
                                               return ChordDatabaseEdits::rename(
                                                   c, TreePosition::ofSubsection(0, 0, 1), "Bee");
                                           })},
        {"remove a chord before e", edit("Remove",
                                         [](ChordCollection& c) {
                                             return ChordDatabaseEdits::remove(
                                                        c, {TreePosition::ofChord(0, 0, 0, 0)}) > 0;
                                         })},
        {"paste before the first chord", edit("Paste Insert",
                                              [](ChordCollection& c) {
                                                  return !ChordDatabaseEdits::insertChords(
                                                              c, TreePosition::ofChord(0, 0, 0, 0),
                                                              {music::Chord::fromNotes("x", {40})})
                                                              .empty();
                                              })},
        {"sort another collection", edit("Sort Downwards",
                                         [](ChordCollection& c) {
                                             return ChordDatabaseEdits::sortChords(
                                                 c, TreePosition::ofSubsection(1, 0, 0), false);
                                         })},
        {"add a base group",
         edit("Add Base", [](ChordCollection& c) { return c.addBaseGroup("noname") >= 0; })},
    };
    app::ChordDatabasePanel& panel = chords();
    app::CTreeCtrlX* tree = panel.tree();
    const auto check = [&](const char* when) {
        SCOPED_TRACE(when);
        app::ChordCollectionModel& model = *panel.model();
        QModelIndex a, h;
        for (int row = 0; row < model.rowCount(); ++row) {
            const QModelIndex group = model.index(row, 0);
            if (group.data().toString() == QStringLiteral("H"))
                h = group;
            if (group.data().toString() == QStringLiteral("G"))
                a = model.index(0, 0, model.index(0, 0, group));
        }
        ASSERT_TRUE(a.isValid() && h.isValid());
        EXPECT_TRUE(tree->isExpanded(a));
        EXPECT_FALSE(tree->isExpanded(h));
        const QModelIndexList selected = tree->selectionModel()->selectedRows(0);
        ASSERT_EQ(selected.size(), 1);
        EXPECT_EQ(selected.front().data().toString(), QStringLiteral("e"));
    };
    for (const auto& [what, change] : cases) {
        SCOPED_TRACE(what);
        ChordCollection start = smallCollection();
        start.baseGroups().push_back(
            {"H",
             {music::ChordSection{
                 "T",
                 false,
                 {},
                 {{"C",
                   {music::Chord::fromNotes("g", {43}), music::Chord::fromNotes("h", {55})}}}}}});
        panel.collection() = start;
        panel.refreshTree();
        tree->collapseAll();
        tree->expand(panel.model()->index(TreePosition::ofBaseGroup(0)));
        tree->expand(panel.model()->index(TreePosition::ofSection(0, 0)));
        tree->expand(panel.model()->index(TreePosition::ofSubsection(0, 0, 0)));
        panel.selectPosition(TreePosition::ofChord(0, 0, 0, 2));
        panel.undoStack()->clear();
        QAbstractItemModelTester tester(panel.model(),
                                        QAbstractItemModelTester::FailureReportingMode::Fatal);

        change(panel);
        ASSERT_EQ(panel.undoStack()->count(), 1);
        check("after the edit");
        panel.undoStack()->undo();
        EXPECT_EQ(panel.collection().baseGroups(), start.baseGroups());
        check("after undo");
        panel.undoStack()->redo();
        check("after redo");
    }
}

} // namespace

namespace {

TEST_F(ChordDatabaseView, F2RenamesInTheTreeAndOpensTheManagerElsewhere)
{
    chords().collection() = smallCollection();
    chords().refreshTree();
    EXPECT_TRUE(chords().tree()->toolTip().contains(QStringLiteral("F2 renames")));
    showActiveFrame();

    struct Case
    {
        const char* where;
        QWidget* focus;
        bool renames;
    };
    const Case cases[] = {
        {"chord tree", chords().tree(), true},
        {"part list", view().regions().partList, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.where);
        chords().selectPosition(TreePosition::ofChord(0, 0, 0, 1));
        c.focus->setFocus();
        QString opened; // the title of a dialog that F2 opened, closed again at once
        QTimer::singleShot(0, [&opened] {
            if (QWidget* modal = QApplication::activeModalWidget()) {
                opened = modal->windowTitle();
                modal->close();
            }
        });
        QTest::keyClick(c.focus, Qt::Key_F2);
        QCoreApplication::processEvents();
        const auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        const bool renaming = editor != nullptr && chords().tree()->isAncestorOf(editor);
        EXPECT_EQ(renaming, c.renames);
        EXPECT_EQ(opened.isEmpty(), c.renames) << opened.toStdString();
        if (renaming) {
            EXPECT_EQ(editor->text(), QStringLiteral("d"));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        }
    }
    frame().hide();
}

} // namespace

namespace {

TEST_F(ChordDatabaseView, GenerationDialogOffersTheNameOnlyWhereItIsUsed)
{
    // "Generate List" names its two groups itself; "Generate Base" names its group as typed.
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"chords.generate", "Generate List", false},
        {"tree.generateBase", "Generate Base", true},
    };
    for (const auto& [id, title, nameUsed] : cases) {
        SCOPED_TRACE(id);
        QAction* command = frame().action(id);
        if (command == nullptr)
            command = view().contextMenu("chordTree")->findChild<QAction*>(QString::fromLatin1(id));
        ASSERT_NE(command, nullptr);
        bool seen = false;
        QTimer::singleShot(0, [&, title = title, nameUsed = nameUsed] {
            auto* dialog = qobject_cast<app::CGenerateDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            seen = true;
            EXPECT_EQ(dialog->windowTitle(), QString::fromLatin1(title));
            EXPECT_EQ(dialog->nameEdit()->text(), QStringLiteral("noname"));
            EXPECT_EQ(dialog->nameEdit()->isEnabled(), nameUsed);
            dialog->reject();
        });
        command->trigger();
        EXPECT_TRUE(seen);
    }
}

} // namespace
