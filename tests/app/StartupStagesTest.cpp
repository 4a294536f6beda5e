// The start-up in two steps: the window's first frame, then what it does not show (the desktop
// theme's icons, the window icon) right after it; the default files read beside the building of
// the window.
#include "AppTestSupport.h"

#include "app/AppIcons.h"
#include "app/CMainFrame.h"
#include "app/DefaultFilesReader.h"
#include "app/FirstPaintProbe.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>
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
