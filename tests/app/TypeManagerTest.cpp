// The chord and scale type manager: its lists, the validation of new types and its files.
#include "AppTestSupport.h"

#include "app/CChordTypeDialog.h"
#include "app/CIntervalListDialog.h"
#include "app/CScaleDialog.h"
#include "app/CTypeManagerDialog.h"

#include <QAction>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QTreeWidget>

namespace {

class TypeManager : public apptest::AppFixture
{
protected:
    void SetUp() override
    {
        AppFixture::SetUp();
        m_manager = std::make_unique<app::CTypeManagerDialog>(
            chords().chordTypes(), chords().scales(), m_app->dataFolder(), &frame());
    }
    void TearDown() override
    {
        m_manager.reset();
        AppFixture::TearDown();
    }

    std::unique_ptr<app::CTypeManagerDialog> m_manager;
};

QStringList headers(const QTreeWidget* list)
{
    QStringList labels;
    for (int column = 0; column < list->columnCount(); ++column)
        labels << list->headerItem()->text(column);
    return labels;
}

TEST_F(TypeManager, AnInvalidConstructionAsksAgainWithTheInputKeptUntilValidOrCancelled)
{
    const int before = chords().chordTypes().count();
    QStringList seenInputs;
    const QStringList answers = {QStringLiteral("1,b3,5;"), QStringLiteral("1;;"),
                                 QStringLiteral("1; b3; 5;")};
    int round = 0;
    const bool added = m_manager->addChordType([&](app::CChordTypeDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Define New Chord Type"));
        seenInputs << dialog.construction();
        dialog.setName(QStringLiteral("m"));
        dialog.setConstruction(answers[round++]);
        return true;
    });
    EXPECT_TRUE(added);
    EXPECT_EQ(m_messages.texts(), (QStringList{QStringLiteral("No valid construction string"),
                                               QStringLiteral("No valid construction string")}));
    EXPECT_EQ(seenInputs, (QStringList{QString(), answers[0], answers[1]}));
    ASSERT_EQ(chords().chordTypes().count(), before + 1);
    EXPECT_EQ(chords().chordTypes().types().back().construction(), "1;b3;5;");
    EXPECT_EQ(m_manager->chordList()->topLevelItem(before)->text(1), QStringLiteral("1;b3;5;"));

    // Cancelled after a refused construction, nothing is added.
    int asked = 0;
    EXPECT_FALSE(m_manager->addChordType([&](app::CChordTypeDialog& dialog) {
        dialog.setConstruction(QStringLiteral("nonsense"));
        return ++asked == 1; // OK once (refused), then Cancel
    }));
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(chords().chordTypes().count(), before + 1);
}

TEST_F(TypeManager, ScalePatternsAreCheckedWhenAdded)
{
    struct Case
    {
        const char* pattern;
        bool accepted;
        const char* stored;
    };
    const Case cases[] = {
        {"xoxxoxoxxoxo", true, "xoxxoxoxxoxo"},     {"XOXXOXOXXOXO", true, "xoxxoxoxxoxo"},
        {"xoxxoxoxxoxoxo", true, "xoxxoxoxxoxoxo"}, {"xoxxoxoxxox", false, nullptr},
        {"xoxxo xoxxoxo", false, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.pattern);
        m_messages.clear();
        const int before = chords().scales().count();
        const bool added = m_manager->addScale([&](app::CScaleDialog& dialog) {
            EXPECT_EQ(dialog.pattern(), QStringLiteral("oooooooooooo"));
            EXPECT_EQ(dialog.name(), QStringLiteral("noname"));
            dialog.setPattern(QString::fromLatin1(c.pattern));
            return true;
        });
        EXPECT_EQ(added, c.accepted);
        if (c.accepted) {
            EXPECT_TRUE(m_messages.texts().isEmpty());
            EXPECT_EQ(chords().scales().scales().back().pattern(), c.stored);
            EXPECT_EQ(m_manager->scaleList()->currentItem(),
                      m_manager->scaleList()->topLevelItem(before));
        } else {
            EXPECT_EQ(m_messages.texts(), QStringList{QStringLiteral("Error in String")});
            EXPECT_EQ(chords().scales().count(), before);
        }
    }
}

TEST_F(TypeManager, KeepingTheDefaultCurrentSavesTheScalesAtOnce)
{
    m_manager->addScale([](app::CScaleDialog& dialog) {
        dialog.setName(QStringLiteral("whole tone"));
        dialog.setPattern(QStringLiteral("xoxoxoxoxoxo"));
        dialog.setKeepDefaultCurrent(true);
        return true;
    });
    music::ScaleList onDisk;
    ASSERT_TRUE(onDisk.load(m_data.file(QStringLiteral("default.scl")).toStdString()));
    ASSERT_NE(onDisk.find("whole tone"), nullptr);
    EXPECT_EQ(onDisk.find("whole tone")->pattern(), "xoxoxoxoxoxo");
}

TEST_F(TypeManager, LearnsFromASampleChordAndScale)
{
    app::CChordTypeDialog chord;
    chord.baseBox()->setCurrentIndex(2); // D
    for (const int p : {2, 5, 9, 0})     // D F A C
        chord.keyboard()->setTicked(p, true);
    chord.learn();
    EXPECT_EQ(chord.construction(), QStringLiteral("1;b3;5;b7;"));

    app::CScaleDialog scale;
    scale.baseBox()->setCurrentIndex(9); // A natural minor: the white keys
    for (const int p : {0, 2, 4, 5, 7, 9, 11})
        scale.keyboard()->setTicked(p, true);
    scale.learn();
    EXPECT_EQ(scale.pattern(), QStringLiteral("xoxxoxoxxoxo"));
    EXPECT_EQ(scale.patternEdit()->toolTip(),
              QStringLiteral("Enter string for construction. 12 letters(notes). x-on, o-off."));
}

TEST_F(TypeManager, FileErrorsShowTheMessagesOfEachList)
{
    QFile bad(m_data.file(QStringLiteral("bad.lst")));
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.write("Something else\n1\nx\ny\n");
    bad.close();
    EXPECT_FALSE(m_manager->loadScales(bad.fileName()));
    EXPECT_FALSE(m_manager->loadChordTypes(bad.fileName()));
    EXPECT_FALSE(m_manager->loadScales(m_data.file(QStringLiteral("none.scl"))));
    EXPECT_EQ(m_messages.texts(), (QStringList{QStringLiteral("Seems to be no valid file"),
                                               QStringLiteral("Seems to be no valid file."),
                                               QStringLiteral("Error opening file")}));
}

TEST_F(TypeManager, ListsTheTypesUnderTheirHeadingsAndRenameAndRemoveChangeThem)
{
    EXPECT_EQ(headers(m_manager->chordList()),
              (QStringList{QStringLiteral("Chord"), QStringLiteral("Construction")}));
    EXPECT_EQ(headers(m_manager->scaleList()), QStringList{QStringLiteral("Scale")});
    EXPECT_EQ(m_manager->scaleList()->topLevelItemCount(), chords().scales().count());
    const int before = chords().chordTypes().count();
    ASSERT_GT(before, 2);
    EXPECT_EQ(m_manager->chordList()->topLevelItemCount(), before);
    EXPECT_TRUE(m_messages.texts().isEmpty());
    m_manager->chordList()->topLevelItem(0)->setText(0, QStringLiteral("renamed"));
    EXPECT_EQ(chords().chordTypes().at(0).name(), "renamed");
    m_manager->chordList()->topLevelItem(0)->setSelected(true);
    m_manager->chordList()->topLevelItem(1)->setSelected(true);
    m_manager->removeChordTypes();
    EXPECT_EQ(chords().chordTypes().count(), before - 2);
    EXPECT_EQ(m_manager->chordList()->topLevelItemCount(), before - 2);
}

QStringList namesIn(const QTreeWidget* list)
{
    QStringList names;
    for (int row = 0; row < list->topLevelItemCount(); ++row)
        names << list->topLevelItem(row)->text(0);
    return names;
}

TEST_F(TypeManager, SortMenusOrderEachListByNameOrByNotes)
{
    QFile chordFile(m_data.file(QStringLiteral("sort.ccl")));
    ASSERT_TRUE(chordFile.open(QIODevice::WriteOnly));
    chordFile.write("Tonalmancer_ConstructChords\n4\nmaj\n1;3;5;\nDim\n1;b3;b5;\n7\n1;3;5;b7;\n"
                    "m\n1;b3;5;\n");
    chordFile.close();
    QFile scaleFile(m_data.file(QStringLiteral("sort.scl")));
    ASSERT_TRUE(scaleFile.open(QIODevice::WriteOnly));
    scaleFile.write("Tonalmancer_Scales\n3\nmajor\nxoxoxxoxoxox\nMinor\nxoxxoxoxxoxo\n"
                    "pentatonic\nxoxoxooxoxoo\n");
    scaleFile.close();

    struct Case
    {
        bool chords;
        const char* id;
        QStringList expected;
    };
    const Case cases[] = {
        // Names ignore case; notes compare the chord on one root, lowest notes first.
        {true, "types.sortChordsNameUp", {"7", "Dim", "m", "maj"}},
        {true, "types.sortChordsNameDown", {"maj", "m", "Dim", "7"}},
        {true, "types.sortChordsNotesUp", {"Dim", "m", "maj", "7"}},
        {true, "types.sortChordsNotesDown", {"7", "maj", "m", "Dim"}},
        {false, "types.sortScalesNameUp", {"major", "Minor", "pentatonic"}},
        {false, "types.sortScalesNameDown", {"pentatonic", "Minor", "major"}},
        {false, "types.sortScalesNotesUp", {"Minor", "major", "pentatonic"}},
        {false, "types.sortScalesNotesDown", {"pentatonic", "major", "Minor"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        ASSERT_TRUE(c.chords ? m_manager->loadChordTypes(chordFile.fileName())
                             : m_manager->loadScales(scaleFile.fileName()));
        QMenu* menu = c.chords ? m_manager->chordMenu() : m_manager->scaleMenu();
        auto* item = menu->findChild<QAction*>(QString::fromLatin1(c.id));
        ASSERT_NE(item, nullptr);
        item->trigger();
        const QTreeWidget* list = c.chords ? m_manager->chordList() : m_manager->scaleList();
        EXPECT_EQ(namesIn(list), c.expected);
        QStringList kept; // the program's own list, as the other commands see it
        if (c.chords) {
            for (const auto& type : chords().chordTypes().types())
                kept << QString::fromStdString(type.name());
        } else {
            for (const auto& scale : chords().scales().scales())
                kept << QString::fromStdString(scale.name());
        }
        EXPECT_EQ(kept, c.expected);
    }
    // Sorting keeps each type's construction with its name.
    EXPECT_EQ(chords().chordTypes().at(0).construction(), "1;3;5;b7;");
}

TEST(IntervalList, ShowsTheTwentyTwoIntervalsInThreeColumns)
{
    app::CIntervalListDialog dialog;
    const QTreeWidget* list = dialog.list();
    EXPECT_EQ(headers(list), (QStringList{QStringLiteral("HS"), QStringLiteral("Symbol"),
                                          QStringLiteral("Name")}));
    ASSERT_EQ(list->topLevelItemCount(), 22);
    EXPECT_EQ(list->topLevelItem(15)->text(1), QStringLiteral("#9th"));
    EXPECT_EQ(list->topLevelItem(21)->text(2), QStringLiteral("13th"));
    EXPECT_EQ(list->toolTip(),
              QStringLiteral("Show list of intervals with symbols used by Tonalmancer."));
}

} // namespace
