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

TEST_F(ChordDatabaseView, GenerateListReplacesTheShippedDatabaseAndUndoBringsItBack)
{
    const ChordCollection before = chords().collection();
    ASSERT_FALSE(before.isEmpty());
    EXPECT_EQ(chords().model()->rowCount(), static_cast<int>(before.baseGroups().size()));
    EXPECT_FALSE(chords().chordTypes().isEmpty());
    EXPECT_FALSE(chords().scales().isEmpty());
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

/** The tree as "group[section[collection(chord chord) ...] ...] ...". */
std::string shapeOf(const ChordCollection& c)
{
    std::string text;
    for (const auto& group : c.baseGroups()) {
        text += group.name + "[";
        for (const auto& section : group.sections) {
            text += section.name + "[";
            for (const auto& sub : section.subsections) {
                text += sub.name + "(";
                for (const auto& chord : sub.chords)
                    text += (&chord == &sub.chords.front() ? "" : " ") + chord.name;
                text += ")";
            }
            text += "]";
        }
        text += "]";
    }
    return text;
}

TEST_F(ChordDatabaseView, TreeEditsChangeTheirLevelAndUndoBringsTheTreeBack)
{
    // Each case starts on the small collection "G[S[A(c d e)B(f)]]" with chord "d" selected.
    using Edit = std::function<void(app::ChordDatabasePanel&)>;
    const auto menu = [this](const char* id) -> Edit {
        return [this, id](app::ChordDatabasePanel&) {
            const QList<QAction*> items =
                view().contextMenu("chordTree")->findChildren<QAction*>(QString::fromLatin1(id));
            ASSERT_EQ(items.size(), 1) << id;
            items.front()->trigger();
        };
    };
    struct Case
    {
        const char* what;
        Edit edit;
        const char* shape;
        int steps;
    };
    const Case cases[] = {
        // The sub-menu the user picks Remove from decides what goes.
        {"remove chord", menu("tree.removeChord"), "G[S[A(c e)B(f)]]", 1},
        {"remove collection", menu("tree.removeCollection"), "G[S[B(f)]]", 1},
        {"remove scale group", menu("tree.removeScale"), "G[]", 1},
        {"remove base group", menu("tree.removeBase"), "", 1},
        {"cut, paste before f, paste at the end of A",
         [](app::ChordDatabasePanel& p) {
             p.selectPositions(
                 {TreePosition::ofChord(0, 0, 0, 0), TreePosition::ofChord(0, 0, 0, 1)});
             p.treeCommands().cutChords();
             EXPECT_EQ(shapeOf(p.collection()), "G[S[A(e)B(f)]]");
             p.selectPosition(TreePosition::ofChord(0, 0, 1, 0));
             p.treeCommands().pasteChords(false);
             p.selectPosition(TreePosition::ofChord(0, 0, 0, 0));
             p.treeCommands().pasteChords(true);
         },
         "G[S[A(e c d)B(c d f)]]", 3},
        {"rename in place, then drop c before the only chord of the renamed",
         [](app::ChordDatabasePanel& p) {
             app::ChordCollectionModel& model = *p.model();
             ASSERT_TRUE(model.setData(model.index(TreePosition::ofSubsection(0, 0, 1)),
                                       QStringLiteral("Bee")));
             QCoreApplication::processEvents();
             std::unique_ptr<QMimeData> drag(
                 model.mimeData({model.index(TreePosition::ofChord(0, 0, 0, 0))}));
             model.dropMimeData(drag.get(), Qt::MoveAction, 0, 0,
                                model.index(TreePosition::ofSubsection(0, 0, 1)));
             QCoreApplication::processEvents();
         },
         "G[S[A(d e)Bee(c f)]]", 2},
        {"sort downwards by notes",
         [](app::ChordDatabasePanel& p) { p.treeCommands().sortChords(false); },
         "G[S[A(e d c)B(f)]]", 1},
        {"sort downwards, then upwards",
         [](app::ChordDatabasePanel& p) {
             p.treeCommands().sortChords(false);
             p.treeCommands().sortChords(true);
         },
         "G[S[A(c d e)B(f)]]", 2},
        {"add a collection with a chord selected",
         [](app::ChordDatabasePanel& p) {
             p.selectPosition(TreePosition::ofChord(0, 0, 1, 0));
             p.treeCommands().addCollection();
         },
         "G[S[A(c d e)B(f)noname()]]", 1},
        {"add a collection with a base group selected: a group is no scale group",
         [](app::ChordDatabasePanel& p) {
             p.selectPosition(TreePosition::ofBaseGroup(0));
             p.treeCommands().addCollection();
         },
         "G[S[A(c d e)B(f)]]", 0},
    };
    ASSERT_EQ(shapeOf(smallCollection()), "G[S[A(c d e)B(f)]]");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        chords().collection() = smallCollection();
        chords().refreshTree();
        chords().selectPosition(TreePosition::ofChord(0, 0, 0, 1));
        chords().undoStack()->clear();
        c.edit(chords());
        EXPECT_EQ(shapeOf(chords().collection()), c.shape);
        ASSERT_EQ(chords().undoStack()->count(), c.steps);
        for (int step = 0; step < c.steps; ++step)
            chords().undoStack()->undo();
        EXPECT_EQ(chords().collection().baseGroups(), smallCollection().baseGroups());
    }
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
