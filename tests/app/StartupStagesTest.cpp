// The start-up in two steps: the window's first frame, then what it does not show (the desktop
// theme's icons, the window icon, the hidden machine list) right after it; the default files read
// beside the building of the window.
#include "AppTestSupport.h"

#include "app/AppIcons.h"
#include "app/CMainFrame.h"
#include "app/CTonalmancerApp.h"
#include "app/CTonalmancerView.h"
#include "app/DefaultFilesReader.h"
#include "app/FirstPaintProbe.h"
#include "app/MachineListModel.h"
#include "app/MachinePanel.h"
#include "app/MachineTreeView.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>
#include <QWidget>

namespace {

TEST(StartupStages, TheStepAfterTheFirstFrameRunsOnceAndOnlyAfterThePaint)
{
    QWidget window;
    int runs = 0;
    bool paintedBefore = false;
    app::FirstPaintProbe::afterFirstPaint(window, [&] {
        ++runs;
        paintedBefore = window.isVisible();
    });
    QCoreApplication::processEvents();
    EXPECT_EQ(runs, 0) << "ran before the window was shown";
    window.show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return runs > 0; }, 2000));
    EXPECT_TRUE(paintedBefore);
    window.update();
    window.repaint();
    QTest::qWait(20);
    EXPECT_EQ(runs, 1);
}

using StartedOnScreen = apptest::AppFixture;

TEST_F(StartedOnScreen, TheHiddenMachineListIsBuiltAfterTheFirstFrameOrWhenAskedForBefore)
{
    // The default song, opened at start, holds two machines.
    for (const bool askedEarly : {false, true}) {
        SCOPED_TRACE(askedEarly ? "View > Machines before the first frame" : "left alone");
        m_app.reset();
        m_app = std::make_unique<app::CTonalmancerApp>(m_ports);
        ASSERT_TRUE(m_app->start({QStringLiteral("--data"), m_data.path()})); // shown
        QWidget* region = view().regions().machines;
        const auto built = [region] { return region->findChild<app::MachinePanel*>() != nullptr; };
        if (askedEarly) {
            frame().action("view.showBmx")->trigger();
            EXPECT_TRUE(built());
        } else {
            EXPECT_FALSE(built()) << "built before the first frame";
        }
        ASSERT_TRUE(QTest::qWaitFor(built, 5000));
        QTest::qWait(20); // the rest of the start
        app::MachinePanel& panel = *region->findChild<app::MachinePanel*>();
        EXPECT_EQ(view().machinePanel(), &panel); // one panel only
        EXPECT_EQ(panel.model()->rowCount(), 2);
        EXPECT_EQ(panel.view()->currentIndex().row(), 0);
        EXPECT_TRUE(panel.selectedMachines().empty());
        frame().action("view.showBmx")->trigger();
        EXPECT_EQ(view().sideStack()->currentWidget(), region);
        EXPECT_TRUE(panel.isVisible());
    }
}

TEST(StartupStages, CommandsShowTheirOwnIconsUntilTheThemeIsApplied)
{
    const QImage ownOpen = app::AppIcons::own("song-open").pixmap(24).toImage();
    const QImage ownSave = app::AppIcons::own("song-save").pixmap(24).toImage();
    const apptest::ProbeIconTheme theme; // it has "document-open" only
    app::CMainFrame frame;
    const auto shown = [&frame](const char* id) {
        return frame.action(id)->icon().pixmap(24).toImage();
    };
    EXPECT_EQ(shown("file.open"), ownOpen);
    frame.applyThemeIcons();
    const QImage themedOpen = shown("file.open");
    const QImage themedSave = shown("file.save");

    EXPECT_EQ(themedOpen.pixelColor(12, 12), QColor(Qt::red));
    EXPECT_EQ(themedSave, ownSave); // the theme lacks it
}

TEST(StartupStages, DefaultFilesReadBesideTheWindowKeepOnlyTheFilesThatCouldBeRead)
{
    // Which file is missing or damaged; the others must still arrive.
    struct Case
    {
        const char* file;
        bool remove;
    };
    const Case cases[] = {{nullptr, false},       {"default.ccl", true}, {"default.scl", false},
                          {"default.crd", false}, {"default.ppr", true}, {"default.spr", false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file == nullptr ? "all present" : c.file);
        apptest::DataFolderCopy data;
        if (c.file != nullptr) {
            QFile file(data.file(QString::fromLatin1(c.file)));
            if (c.remove) {
                ASSERT_TRUE(file.remove());
            } else {
                ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
                file.write("\x01\x02 not a list \xff\n");
            }
        }
        app::DefaultFilesReader reader(music::DataFolder(data.path().toStdString()));
        const app::DefaultFilesReader::Files files = reader.take();
        const auto expect = [&c](const char* name, bool arrived, bool filled) {
            const bool broken = c.file != nullptr && std::string_view(c.file) == name;
            EXPECT_EQ(arrived, !broken) << name;
            if (arrived) {
                EXPECT_TRUE(filled) << name;
            }
        };
        expect("default.ccl", files.chordTypes.has_value(),
               files.chordTypes && !files.chordTypes->isEmpty());
        expect("default.scl", files.scales.has_value(), files.scales && !files.scales->isEmpty());
        expect("default.crd", files.collection.has_value(),
               files.collection && !files.collection->isEmpty());
        expect("default.ppr", files.partPresets.has_value(),
               files.partPresets && files.partPresets->count() > 0);
        expect("default.spr", files.patternPresets.has_value(),
               files.patternPresets && files.patternPresets->count() > 0);
    }
}

} // namespace
