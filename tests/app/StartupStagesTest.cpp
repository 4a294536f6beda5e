// The start-up in two steps: the window's first frame, then what it does not show (the desktop
// theme's icons, the window icon) right after it.
#include "AppTestSupport.h"

#include "app/AppIcons.h"
#include "app/CMainFrame.h"
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
    // A theme that has "document-open" only.
    QTemporaryDir themes;
    QDir root(themes.path());
    ASSERT_TRUE(root.mkpath(QStringLiteral("probe/24x24/actions")));
    QFile index(root.filePath(QStringLiteral("probe/index.theme")));
    ASSERT_TRUE(index.open(QIODevice::WriteOnly));
    index.write("[Icon Theme]\nName=probe\nDirectories=24x24/actions\n\n"
                "[24x24/actions]\nSize=24\nType=Fixed\n");
    index.close();
    QImage red(24, 24, QImage::Format_ARGB32);
    red.fill(Qt::red);
    ASSERT_TRUE(red.save(root.filePath(QStringLiteral("probe/24x24/actions/document-open.png"))));
    const QStringList oldPaths = QIcon::themeSearchPaths();
    const QString oldTheme = QIcon::themeName();
    QIcon::setThemeSearchPaths({themes.path()});
    QIcon::setThemeName(QStringLiteral("probe"));

    app::CMainFrame frame;
    const auto shown = [&frame](const char* id) {
        return frame.action(id)->icon().pixmap(24).toImage();
    };
    const QImage ownOpen = app::AppIcons::own("song-open").pixmap(24).toImage();
    const QImage ownSave = app::AppIcons::own("song-save").pixmap(24).toImage();
    EXPECT_EQ(shown("file.open"), ownOpen);
    frame.applyThemeIcons();
    const QImage themedOpen = shown("file.open");
    const QImage themedSave = shown("file.save");
    QIcon::setThemeName(oldTheme);
    QIcon::setThemeSearchPaths(oldPaths);

    EXPECT_EQ(themedOpen.pixelColor(12, 12), QColor(Qt::red));
    EXPECT_EQ(themedSave, ownSave); // the theme lacks it
}

} // namespace
