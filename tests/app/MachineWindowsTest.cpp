// The machine view's windows (Machine Info, Pattern Info, the charts) and the gear scans.
#include "MachineViewTestSupport.h"

#include "app/CTonalmancerDoc.h"
#include "app/GearScanRunner.h"
#include "app/MachineInfoWindow.h"
#include "app/MachinePatternModel.h"
#include "app/PatternChartWidget.h"
#include "app/PatternChartWindow.h"
#include "app/PatternInfoWindow.h"
#include "app/TextTableModel.h"

#include <QAccessible>
#include <QAccessibleTableInterface>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableView>
#include <QTest>

namespace {

using MachineWindows = apptest::MachineViewFixture;

QStringList tableRow(const QAbstractItemModel& model, int row)
{
    QStringList cells;
    for (int column = 0; column < model.columnCount(); ++column)
        cells << model.index(row, column).data().toString();
    return cells;
}

/** The corpus song of Dynamite 6 machines, or an empty text (the caller skips). */
QString demoSong()
{
    const QString corpus = apptest::songCorpus();
    const QString path = corpus + QStringLiteral("/neil_MadBrains_Dynamite6_demo.bmx");
    return !corpus.isEmpty() && QFile::exists(path) ? path : QString();
}

/** The patterns Pattern Info lists: "name rows played-at". */
QStringList patternRows(const app::PatternInfoWindow& window)
{
    QStringList rows;
    for (int row = 0; row < window.model()->rowCount(); ++row)
        rows << tableRow(*window.model(), row).join(QLatin1Char('|'));
    return rows;
}

TEST_F(MachineWindows, MachineInfoShowsParametersRangesAndConnectionsOfARealSong)
{
    const QString path = demoSong();
    if (path.isEmpty())
        GTEST_SKIP() << "song corpus not found (set TM_SONG_CORPUS)";
    ASSERT_TRUE(frame().openSong(path)); // its effects are learned from the song: answered Yes
    selectRows({"Dynamite6"});
    focusMachineList();
    QTest::keyClick(panel().view(), Qt::Key_I, Qt::ControlModifier);
    app::MachineInfoWindow* info = panel().showMachineInfo();
    ASSERT_TRUE(info->isVisible());
    EXPECT_EQ(info->windowTitle(), QStringLiteral("Machine Info - Dynamite6"));
    EXPECT_EQ(info->summary()->text(),
              QStringLiteral("Dynamite6: MadBrain's Dynamite 6, a synth\n"
                             "Tracks: 5; the machine database allows 1 to 32"));

    // 25 global parameters, then 2 per track; ranges from the song's own descriptions.
    const app::TextTableModel& parameters = *info->parameters();
    ASSERT_EQ(parameters.rowCount(), 27);
    EXPECT_EQ(tableRow(parameters, 0), (QStringList{"global", "Coarse tune", "Byte",
                                                    "1 (1h)..255 (FFh)", "128 (80h)", "0 (0h)"}));
    EXPECT_EQ(parameters.text(25, 0), QStringLiteral("track"));
    EXPECT_EQ(parameters.text(25, 2), QStringLiteral("Note"));
    EXPECT_EQ(parameters.text(25, 5), QStringLiteral("0 (no note)"));
    // Assistive technology reads the cells with their column.
    QAccessibleInterface* table = QAccessible::queryAccessibleInterface(info->parameterTable());
    ASSERT_NE(table, nullptr);
    ASSERT_NE(table->tableInterface(), nullptr);
    EXPECT_EQ(table->tableInterface()->cellAt(0, 1)->text(QAccessible::Name),
              QStringLiteral("Parameter: Coarse tune"));

    // An effect fed by three generators: inputs first, then where its sound goes.
    selectRows({"Filter2"});
    const app::TextTableModel& connections = *info->connections();
    const std::vector<QStringList> expected = {
        {"from", "Dynamite62", "76 % (30C7h)", "centre"},
        {"from", "Dynamite63", "100 % (4000h)", "centre"},
        {"from", "Dynamite65", "30 % (13A6h)", "centre"},
        {"to", "Master", "100 % (4000h)", "centre"},
        {"to", "Reverb2", "72 % (2E6Bh)", "centre"},
    };
    ASSERT_EQ(connections.rowCount(), static_cast<int>(expected.size()));
    for (std::size_t row = 0; row < expected.size(); ++row)
        EXPECT_EQ(tableRow(connections, static_cast<int>(row)), expected[row]) << row;
    EXPECT_TRUE(info->summary()->text().contains(QStringLiteral("learned from a song")));
    info->close();
    frame().hide();
}

TEST_F(MachineWindows, PatternInfoListsWhereTheSequencesPlayEachPatternOfARealSong)
{
    const QString path = demoSong();
    if (path.isEmpty())
        GTEST_SKIP() << "song corpus not found (set TM_SONG_CORPUS)";
    ASSERT_TRUE(frame().openSong(path));
    selectRows({"Dynamite6"});
    app::PatternInfoWindow* patterns = panel().showPatternInfo();
    EXPECT_EQ(
        patternRows(*patterns),
        (QStringList{"00|16|0, 64, 416, 480", "01|16|16, 80, 432, 496", "02|16|32, 96, 448, 512",
                     "03|16|48, 112, 464", "04|16|528", "05|16|128, 544"}));
    // A machine with two sequences names the sequence.
    selectRows({"Dynamite65"});
    EXPECT_EQ(patterns->model()->index(9, app::MachinePatternModel::UsedAtColumn).data().toString(),
              QStringLiteral("0 in sequence 2, 224 in sequence 2, 352 in sequence 2"));
    EXPECT_EQ(patterns->windowTitle(), QStringLiteral("Pattern Info - Dynamite65"));
    patterns->close();
}

TEST_F(MachineWindows, PatternInfoCommandsAskFirstAndKeepTheSequencesInStep)
{
    // The demo part in Dynamite6: seven patterns, each played once, in part order.
    const QStringList written = {"Am|16|16", "C|16|0",  "Cmaj7|32|96", "Dm7|16|64",
                                 "F|16|32",  "G|16|48", "G7|16|80"};
    struct Case
    {
        const char* button;
        std::vector<int> selected;
        QMessageBox::StandardButton answer;
        QStringList texts;
        QString caption;
        QStringList after;
    };
    const QString sure = QStringLiteral("Are you sure?");
    const Case cases[] = {
        {"removeSelected",
         {1, 3},
         QMessageBox::Yes,
         {sure},
         "Remove selected patterns",
         {"Am|16|16", "Cmaj7|32|96", "F|16|32", "G|16|48", "G7|16|80"}},
        {"removeSelected", {1}, QMessageBox::No, {sure}, "Remove selected patterns", written},
        {"removeSelected", {}, QMessageBox::Yes, {}, "", written},
        {"removeAll", {}, QMessageBox::Yes, {sure}, "Remove all patterns", {}},
        {"removeUnused", {}, QMessageBox::Yes, {sure}, "Remove unused patterns", written},
        // Trim trims whatever the answer: the last row of each pattern holds no note.
        {"trim",
         {},
         QMessageBox::No,
         {"The program only looks for note-entries.\nRemove empty tracks and truncate pattern?"},
         "Trim Pattern",
         {"Am|15|16", "C|15|0", "Cmaj7|31|96", "Dm7|15|64", "F|15|32", "G|15|48", "G7|15|80"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.button) + " " + std::to_string(c.selected.size()));
        ASSERT_TRUE(frame().loadDefaultSong());
        writeDemoPart(1);
        if (std::string_view(c.button) == "removeUnused") {
            ASSERT_TRUE(document().edit(QStringLiteral("spare"), [](song::BuzzSong& s) {
                s.createPattern(1, "spare", 8);
                return music::Result::success();
            }));
        }
        selectRows({"Dynamite6"});
        app::PatternInfoWindow* window = panel().showPatternInfo();
        window->table()->clearSelection();
        for (const int row : c.selected)
            window->table()->selectionModel()->select(window->model()->index(row, 0),
                                                      QItemSelectionModel::Select |
                                                          QItemSelectionModel::Rows);
        m_messages.clear();
        m_messages.queueAnswer(c.answer);
        window->button(c.button)->click();
        EXPECT_EQ(m_messages.texts(), c.texts);
        if (!c.texts.isEmpty()) {
            EXPECT_EQ(m_messages.captions(), QStringList{c.caption});
        }
        EXPECT_EQ(patternRows(*window), c.after);
        if (std::string_view(c.button) == "removeAll") {
            EXPECT_TRUE(song().sequencesOf(1).empty());
        }
        if (c.after != written) {
            // Undone from the window itself, not only from the machine list.
            window->activateWindow();
            ASSERT_TRUE(QTest::qWaitForWindowActive(window));
            QTest::keyClick(window->table(), Qt::Key_Z, Qt::ControlModifier);
            EXPECT_EQ(patternRows(*window), written) << "Ctrl+Z";
            QTest::keyClick(window->table(), Qt::Key_Y, Qt::ControlModifier);
            EXPECT_EQ(patternRows(*window), c.after) << "Ctrl+Y";
        }
        window->close();
    }
}

TEST_F(MachineWindows, ChartsCountTheNotesAndWavesOfEachPattern)
{
    writeDemoPart(1);
    ASSERT_TRUE(panel().commands().addFromDatabase(databaseIndex("Test Sampler")));
    writeDemoPart(2);

    selectRows({"Dynamite6"});
    app::PatternChartWindow* notes = panel().showChart(false);
    ASSERT_EQ(notes->charts().size(), 7u);
    const app::PatternChartWidget& am = *notes->charts()[0];
    EXPECT_EQ(am.accessibleName(), QStringLiteral("Pattern Am"));
    EXPECT_EQ(am.accessibleDescription(), QStringLiteral("A-4: 1, C-5: 1, E-5: 1, A-5: 1, off: 4"));
    // A machine without a wave parameter says so in the waves chart.
    app::PatternChartWindow* waves = panel().showChart(true);
    EXPECT_EQ(waves->summary()->text(),
              QStringLiteral("Dynamite6 has no wave parameter: it plays no waves."));

    // The sampler got a wave per chord note: base wave 1 plus the note's place in the chord.
    selectRows({"Sampler"});
    ASSERT_EQ(waves->charts().size(), 7u);
    EXPECT_EQ(waves->charts()[0]->accessibleDescription(),
              QStringLiteral("01: 1, 02: 1, 03: 1, 04: 1"));
    EXPECT_EQ(notes->windowTitle(), QStringLiteral("Notes Chart - Sampler"));
    // Bars are painted; a grab of an empty and a full chart differ.
    const QImage drawn = notes->charts()[0]->grab().toImage();
    EXPECT_FALSE(drawn.isNull());
    notes->close();
    waves->close();
}

TEST_F(MachineWindows, ListsAndTablesGiveTheirCellsToAssistiveTechnology)
{
    writeDemoPart(1);
    selectRows({"Dynamite6"});
    app::PatternInfoWindow* patterns = panel().showPatternInfo();
    app::MachineInfoWindow* info = panel().showMachineInfo();
    struct Case
    {
        const char* what;
        QWidget* widget;
        int rows;
        int row;
        int column;
        QString text;
    };
    const Case cases[] = {
        {"machine list", panel().view(), 2, 1, app::MachineListModel::NameColumn,
         QStringLiteral("Machine: Dynamite6")},
        {"machine list", panel().view(), 2, 1, app::MachineListModel::KindColumn,
         QStringLiteral("Kind: Synth")},
        {"machine list", panel().view(), 2, 0, app::MachineListModel::DllColumn,
         QStringLiteral("DLL: (master)")},
        {"pattern info", patterns->table(), 7, 0, app::MachinePatternModel::NameColumn,
         QStringLiteral("Pattern: Am")},
        {"connections", info->connectionTable(), 1, 0, 1, QStringLiteral("Machine: Master")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        QAccessibleInterface* table = QAccessible::queryAccessibleInterface(c.widget);
        ASSERT_NE(table, nullptr);
        ASSERT_NE(table->tableInterface(), nullptr);
        EXPECT_EQ(table->tableInterface()->rowCount(), c.rows);
        QAccessibleInterface* cell = table->tableInterface()->cellAt(c.row, c.column);
        ASSERT_NE(cell, nullptr);
        EXPECT_EQ(cell->text(QAccessible::Name), c.text);
    }
    patterns->close();
    info->close();
}

/** The test machine DLLs that the song tests build; empty when they were not built. */
QString testGear()
{
#ifdef TM_TEST_GEAR_DIR
    return QDir(QStringLiteral(TM_TEST_GEAR_DIR)).exists() ? QStringLiteral(TM_TEST_GEAR_DIR)
                                                           : QString();
#else
    return {};
#endif
}

class GearScans : public apptest::AppFixture
{
protected:
    void TearDown() override
    {
        app::GearScanRunner::setDialogHook({});
        AppFixture::TearDown();
    }
    QByteArray database() const
    {
        QFile file(m_data.file(QStringLiteral("machines.ini")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

TEST_F(GearScans, AFullScanCountsTheDllsAndCanBeCancelled)
{
    const QString gear = testGear();
    if (gear.isEmpty())
        GTEST_SKIP() << "test machine DLLs not built (mingw-w64 missing)";
    // Two machines, a file that is no library and a library that is no machine.
    QTemporaryDir folder;
    QDir(folder.path()).mkpath(QStringLiteral("generators"));
    QDir(folder.path()).mkpath(QStringLiteral("effects"));
    QFile::copy(gear + QStringLiteral("/generators/TestGen32O2.dll"),
                folder.filePath(QStringLiteral("generators/TestGen32O2.dll")));
    QFile::copy(gear + QStringLiteral("/effects/TestFx64O0.dll"),
                folder.filePath(QStringLiteral("effects/TestFx64O0.dll")));
    QFile::copy(gear + QStringLiteral("/../gear-extra/generators/NoGetInfo.dll"),
                folder.filePath(QStringLiteral("effects/NoGetInfo.dll")));
    QFile junk(folder.filePath(QStringLiteral("generators/readme.dll")));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write("not a library");
    junk.close();

    struct Case
    {
        bool cancel;
        bool result;
        QString message;
    };
    const Case cases[] = {
        {true, false,
         QStringLiteral("The scan was cancelled after 0 of 4 DLLs; machines.ini is unchanged.")},
        {false, true,
         QStringLiteral("OK\n\nMachines added: 2\nFiles skipped, no library: 1\n    readme.dll\n"
                        "Libraries refused, no machine description: 1\n    NoGetInfo.dll")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.cancel ? "cancelled" : "to the end");
        const QByteArray before = database();
        QString title;
        app::GearScanRunner::setDialogHook([&](QProgressDialog* dialog) {
            title = dialog->windowTitle();
            if (c.cancel)
                dialog->findChild<QPushButton*>()->click();
        });
        m_messages.clear();
        EXPECT_EQ(frame().scanGearDirectory(folder.path()), c.result);
        EXPECT_EQ(title, QStringLiteral("Scan Gear-Directory"));
        EXPECT_EQ(m_messages.texts(), QStringList{c.message});
        EXPECT_EQ(database() == before, c.cancel);
    }
    EXPECT_TRUE(database().startsWith("5\n")); // three built-ins counted, two machines
}

TEST_F(GearScans, ASingleFileSaysWhetherItWasAddedSkippedOrRefused)
{
    const QString gear = testGear();
    if (gear.isEmpty())
        GTEST_SKIP() << "test machine DLLs not built (mingw-w64 missing)";
    const QString dll = gear + QStringLiteral("/generators/TestGen32O0.dll");
    const std::pair<QString, QString> cases[] = {
        {dll, QStringLiteral("TestGen32O0 was added to the machine database.")},
        {dll, QStringLiteral("TestGen32O0 was skipped: the machine database knows it already.")},
        {gear + QStringLiteral("/../gear-extra/generators/NoGetInfo.dll"),
         QStringLiteral("Error:\nUnable to find function GetInfo()")},
    };
    for (const auto& [file, message] : cases) {
        m_messages.clear();
        frame().scanSingleFile(file);
        EXPECT_EQ(m_messages.texts(), QStringList{message});
    }
}

} // namespace
