// Start-up and shutdown: defaults, the command line, the settings file and the window layout.
#include "AppTestSupport.h"

#include "app/CTempoBar.h"
#include "app/PartSettingsPanel.h"

#include <QFile>

#include <set>

namespace {

using Startup = apptest::AppFixture;

QStringList settingLabels(const QAbstractItemModel* settings)
{
    QStringList labels;
    for (int row = 0; row < settings->rowCount(); ++row)
        labels << settings->index(row, 0).data().toString();
    return labels;
}

TEST_F(Startup, OpensWithTheShippedDefaultsAndAnEmptySong)
{
    EXPECT_FALSE(chords().collection().isEmpty());
    EXPECT_GT(view().partPresets().count(), 0);
    EXPECT_GT(view().patternPresets().count(), 0);
    EXPECT_EQ(frame().windowTitle(), QStringLiteral("Untitled - default.prt - Tonalmancer"));
    EXPECT_EQ(frame().centralWidget(), &view());
    EXPECT_TRUE(m_messages.texts().isEmpty());
    QStringList expected = {QStringLiteral("Pattern List"), QStringLiteral("Base Wave"),
                            QStringLiteral("Base Octave")};
    for (int track = 1; track <= 8; ++track)
        expected << QStringLiteral("Track %1").arg(track);
    expected << QStringLiteral("Def Octave") << QStringLiteral("Def Length");
    EXPECT_EQ(settingLabels(view().partSettings()->model()), expected);
}

TEST_F(Startup, EveryRegionIsNamedForAssistiveTechnologyAndTheLayoutStore)
{
    const app::CTonalmancerView::Regions& r = view().regions();
    std::set<QString> names;
    for (const QWidget* region : {r.chordDatabase, r.partList, r.patternList, r.patternGrid,
                                  r.partSettings, r.machines, r.partPresets, r.patternPresets}) {
        ASSERT_NE(region, nullptr);
        SCOPED_TRACE(region->objectName().toStdString());
        EXPECT_FALSE(region->accessibleName().isEmpty());
        EXPECT_TRUE(names.insert(region->objectName()).second); // unique and not empty
        EXPECT_TRUE(view().isAncestorOf(region));
    }
    EXPECT_EQ(names.count(QString()), 0u);
}

TEST_F(Startup, FreshStartHasTheDefaultSettingsAndWritesThemOnExit)
{
    const QString ini = m_data.file(QStringLiteral("Tonalmancer.ini"));
    ASSERT_FALSE(QFile::exists(ini));
    EXPECT_EQ(view().midiSettings().machineFilter(), 4);
    EXPECT_EQ(view().midiSettings().velocity(), 80);
    EXPECT_EQ(view().midiSettings().deviceNumber(), 255);

    view().midiSettings().setVelocity(100);
    view().midiSettings().setMachineFilter(3);
    frame().close(); // the window closing writes the settings file
    QFile file(ini);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = file.readAll().split('\n');
    file.close();
    ASSERT_GE(lines.size(), 8);
    EXPECT_EQ(lines[0], QByteArray("Tonalmancer Settings"));
    EXPECT_EQ(lines[1], QByteArray("3"));
    EXPECT_EQ(lines[4], QByteArray("100"));

    ASSERT_TRUE(start());
    EXPECT_EQ(view().midiSettings().velocity(), 100);
    EXPECT_EQ(view().midiSettings().machineFilter(), 3);
}

TEST_F(Startup, SettingsAreWrittenOnceEvenWhenTheProgramEndsWithoutClosingTheWindow)
{
    view().midiSettings().setVelocity(90);
    m_app.reset();
    ASSERT_TRUE(start());
    EXPECT_EQ(view().midiSettings().velocity(), 90);
}

TEST_F(Startup, OpensTheSongNamedOnTheCommandLine)
{
    const QString song = m_data.file(QStringLiteral("default.bmx"));
    ASSERT_TRUE(QFile::exists(song));
    m_messages.clear();
    ASSERT_TRUE(start({song}));
    EXPECT_EQ(frame().windowTitle(), QStringLiteral("default.bmx - default.prt - Tonalmancer"));
    EXPECT_EQ(document().path(), song);
    EXPECT_TRUE(m_messages.texts().isEmpty()); // its generator is in the shipped database
}

TEST_F(Startup, ASongThatCannotBeReadLeavesANewSong)
{
    ASSERT_TRUE(start({m_data.file(QStringLiteral("missing.bmx"))}));
    EXPECT_FALSE(m_messages.texts().isEmpty());
    EXPECT_EQ(frame().windowTitle(), QStringLiteral("Untitled - default.prt - Tonalmancer"));
}

TEST_F(Startup, WrongArgumentsAreRefused)
{
    m_messages.clear();
    EXPECT_FALSE(start({QStringLiteral("--nonsense")}));
    EXPECT_EQ(m_messages.texts(), QStringList{QString::fromLatin1(app::CTonalmancerApp::kUsage)});
}

TEST_F(Startup, WindowSizeSurvivesARestart)
{
    frame().resize(900, 600);
    frame().close();
    ASSERT_TRUE(start());
    EXPECT_EQ(frame().size(), QSize(900, 600));
}

} // namespace
