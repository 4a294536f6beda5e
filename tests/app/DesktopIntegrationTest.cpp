// What the desktop hands the program: the command line of a double-clicked file, --help and
// --version, and the toolbar's icons on light and dark palettes.
#include "AppTestSupport.h"
#include "app/ChordDatabasePanel.h"

#include "app/AppIcons.h"
#include "app/CommandLine.h"
#include "music/ChordCollection.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>
#include <QToolBar>

#include <cmath>
#include <optional>

namespace {

using app::CommandLine;
using Kind = CommandLine::FileKind;
using Request = CommandLine::Request;

TEST(DesktopCommandLine, RoutesFilesByExtensionAndRefusesWhatItCannotUse)
{
    struct Case
    {
        QStringList arguments;
        Request request;
        QString file;
        Kind kind;
        QString dataDir;
    };
    const Case cases[] = {
        {{}, Request::Run, {}, Kind::Song, {}},
        {{"song.bmx"}, Request::Run, "song.bmx", Kind::Song, {}},
        {{"/music/Old Song.BMW"}, Request::Run, "/music/Old Song.BMW", Kind::Song, {}},
        {{"chords.PRT"}, Request::Run, "chords.PRT", Kind::Part, {}},
        {{"grooves.spr"}, Request::Run, "grooves.spr", Kind::PatternPresets, {}},
        {{"parts.ppr"}, Request::Run, "parts.ppr", Kind::PartPresets, {}},
        {{"mine.crd"}, Request::Run, "mine.crd", Kind::ChordDatabase, {}},
        // Anything else goes to the song reader, which says what is wrong with it.
        {{"notes.txt"}, Request::Run, "notes.txt", Kind::Song, {}},
        {{"archive.prt.bak"}, Request::Run, "archive.prt.bak", Kind::Song, {}},
        {{"--data", "/d", "a.prt"}, Request::Run, "a.prt", Kind::Part, "/d"},
        {{"a.bmx", "--data=/d"}, Request::Run, "a.bmx", Kind::Song, "/d"},
        {{"a.bmx", "--version"}, Request::ShowVersion, {}, Kind::Song, {}},
        {{"-platform", "offscreen", "--help"}, Request::ShowHelp, {}, Kind::Song, {}},
        {{"-h"}, Request::ShowHelp, {}, Kind::Song, {}},
        {{"a.bmx", "b.bmx"}, Request::UsageError, {}, Kind::Song, {}},
        {{"--nonsense"}, Request::UsageError, {}, Kind::Song, {}},
        {{"a.bmx", "--data"}, Request::UsageError, {}, Kind::Song, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments.join(QLatin1Char(' ')).toStdString());
        const CommandLine line = CommandLine::parse(c.arguments);
        EXPECT_EQ(line.request(), c.request);
        if (c.request != Request::Run)
            continue;
        EXPECT_EQ(line.file(), c.file);
        EXPECT_EQ(line.fileKind(), c.kind);
        EXPECT_EQ(line.dataDir(), c.dataDir);
    }
}

TEST(DesktopCommandLine, HelpNamesEveryOptionAndVersionStartsWithTheProgramName)
{
    const QString help = CommandLine::helpText();
    EXPECT_TRUE(help.startsWith(QString::fromLatin1(CommandLine::kUsage) + QLatin1Char('\n')));
    for (const char* option : {"--data DIR", "--help", "--version", ".bmx", ".prt", ".crd"})
        EXPECT_TRUE(help.contains(QLatin1String(option))) << option;
    EXPECT_TRUE(CommandLine::versionText().startsWith(QStringLiteral("tonalmancer ")));
}

/** The program started hidden on a copy of the shipped data with one file on its command line. */
class OpenFromDesktop : public ::testing::Test
{
protected:
    bool start(const QString& file)
    {
        m_app = std::make_unique<app::CTonalmancerApp>(std::make_shared<apptest::FakePortList>());
        if (m_opener)
            m_app->setPartEditorOpener(m_opener);
        return m_app->start({QStringLiteral("--data"), m_data.path(), file}, false);
    }
    void TearDown() override { m_app.reset(); }

    apptest::DataFolderCopy m_data;
    apptest::MessageRecorder m_messages;
    app::CTonalmancerApp::PartEditorOpener m_opener;
    std::unique_ptr<app::CTonalmancerApp> m_app;
};

TEST_F(OpenFromDesktop, PartsAndPresetsGoToThePartEditorAndLeaveANewSong)
{
    std::vector<std::pair<Kind, QString>> handed;
    m_opener = [&](Kind kind, const QString& path) {
        handed.emplace_back(kind, path);
        return true;
    };
    const std::pair<const char*, Kind> files[] = {
        {"default.prt", Kind::Part},
        {"default.spr", Kind::PatternPresets},
        {"default.ppr", Kind::PartPresets},
    };
    for (const auto& [name, kind] : files) {
        handed.clear();
        const QString path = m_data.file(QLatin1String(name));
        ASSERT_TRUE(start(path)) << name;
        EXPECT_EQ(handed, (std::vector<std::pair<Kind, QString>>{{kind, path}}));
        EXPECT_EQ(m_app->mainFrame()->windowTitle(),
                  QStringLiteral("Untitled - default.prt - Tonalmancer"));
    }
    EXPECT_TRUE(m_messages.texts().isEmpty());
}

TEST_F(OpenFromDesktop, APartOpensInThePartEditorAndTheProgramStartsWhateverTheFile)
{
    const QString part = m_data.file(QStringLiteral("mine.prt"));
    ASSERT_TRUE(QFile::copy(m_data.file(QStringLiteral("default.prt")), part));
    ASSERT_TRUE(start(part));
    EXPECT_TRUE(m_messages.texts().isEmpty());
    EXPECT_EQ(m_app->mainFrame()->windowTitle(),
              QStringLiteral("Untitled - mine.prt - Tonalmancer"));

    // A file the part editor does not take is refused with its name; the program still starts.
    const QString presets = m_data.file(QStringLiteral("default.spr"));
    ASSERT_TRUE(start(presets));
    ASSERT_EQ(m_messages.texts().size(), 1);
    EXPECT_TRUE(m_messages.texts()[0].contains(presets));
    EXPECT_EQ(m_app->mainFrame()->windowTitle(),
              QStringLiteral("Untitled - default.prt - Tonalmancer"));
}

TEST_F(OpenFromDesktop, AChordDatabaseReplacesTheDefaultOne)
{
    music::ChordCollection mine;
    mine.addBaseGroup("From the file manager");
    const QString path = m_data.file(QStringLiteral("mine.crd"));
    ASSERT_TRUE(mine.save(path.toStdString()));

    ASSERT_TRUE(start(path));
    EXPECT_TRUE(m_messages.texts().isEmpty());
    const auto& groups = m_app->view()->chordDatabase()->collection().baseGroups();
    ASSERT_EQ(groups.size(), 1u);
    EXPECT_EQ(groups[0].name, "From the file manager");
}

TEST_F(OpenFromDesktop, AnUnreadableChordDatabaseKeepsTheDefaultOneAndItsFile)
{
    const QString path = m_data.file(QStringLiteral("broken.crd"));
    QFile broken(path);
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("Not_Chords\n1\n");
    broken.close();

    ASSERT_TRUE(start(path));
    EXPECT_EQ(m_messages.texts(),
              QStringList{QString::fromLatin1(music::ChordCollection::kNotValid.data())});
    EXPECT_FALSE(m_app->view()->chordDatabase()->collection().isEmpty());
    QFile reread(path);
    ASSERT_TRUE(reread.open(QIODevice::ReadOnly));
    EXPECT_EQ(reread.readAll(), QByteArray("Not_Chords\n1\n"));
}

/** WCAG contrast of two colours, 1..21. */
double contrast(const QColor& a, const QColor& b)
{
    const auto luminance = [](const QColor& c) {
        const auto channel = [](double v) {
            return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * channel(c.redF()) + 0.7152 * channel(c.greenF()) +
               0.0722 * channel(c.blueF());
    };
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

/** The share of an image's solid pixels that stand out (contrast 2.5 or more) from `ground`. */
double visibleShare(const QImage& image, const QColor& ground)
{
    int solid = 0;
    int visible = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (pixel.alpha() < 192)
                continue;
            ++solid;
            if (contrast(pixel, ground) >= 2.5)
                ++visible;
        }
    }
    return solid == 0 ? 0.0 : double(visible) / solid;
}

TEST(ToolbarIcons, EveryToolbarButtonHasItsOwnIconThatReadsOnLightAndDarkPalettes)
{
    const QColor light(0xef, 0xef, 0xef);
    const QColor dark(0x2b, 0x2b, 0x2b);
    app::CMainFrame frame;
    std::vector<std::pair<QString, QImage>> seen;
    for (QAction* action : frame.toolBar()->actions()) {
        if (action->isSeparator())
            continue;
        SCOPED_TRACE(action->objectName().toStdString());
        const auto own =
            std::find_if(app::AppIcons::commandIcons().begin(), app::AppIcons::commandIcons().end(),
                         [&](const auto& entry) {
                             return QLatin1String(entry.commandId.data(),
                                                  static_cast<qsizetype>(entry.commandId.size())) ==
                                    action->objectName();
                         });
        ASSERT_NE(own, app::AppIcons::commandIcons().end());
        const QIcon icon = app::AppIcons::own(own->ownName);
        ASSERT_FALSE(icon.isNull());
        for (const int size : {16, 24})
            EXPECT_EQ(icon.pixmap(size).size(), QSize(size, size));
        const QImage image = icon.pixmap(24).toImage();
        // Most of the drawing stands out from either window colour.
        EXPECT_GE(visibleShare(image, light), 0.6);
        EXPECT_GE(visibleShare(image, dark), 0.6);
        for (const auto& [other, otherImage] : seen)
            EXPECT_NE(image, otherImage) << "looks like " << other.toStdString();
        seen.emplace_back(action->objectName(), image);
        EXPECT_FALSE(action->icon().isNull());
    }
    EXPECT_EQ(seen.size(), 16u);
}

TEST(ToolbarIcons, TheDesktopThemeWinsWhereItHasTheCommandsFreedesktopName)
{
    QImage songOpen;
    QImage partOpen;
    QImage songSave;
    {
        const apptest::ProbeIconTheme theme; // it has "document-open" only
        songOpen = app::AppIcons::forCommand("file.open").pixmap(24).toImage();
        partOpen = app::AppIcons::forCommand("part.load").pixmap(24).toImage();
        songSave = app::AppIcons::forCommand("file.save").pixmap(24).toImage();
    }
    EXPECT_EQ(songOpen.pixelColor(12, 12), QColor(Qt::red));
    // Parts have no freedesktop name: opening a part keeps its own icon, unlike opening a song.
    EXPECT_EQ(partOpen, app::AppIcons::own("part-open").pixmap(24).toImage());
    // A name the theme lacks falls back to the program's icon.
    EXPECT_EQ(songSave, app::AppIcons::own("song-save").pixmap(24).toImage());
    EXPECT_TRUE(app::AppIcons::forCommand("chords.generate").isNull());
}

TEST(ToolbarIcons, TheApplicationIconComesInEverySizeOfTheMenus)
{
    const QIcon icon = app::AppIcons::application();
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256})
        EXPECT_EQ(icon.pixmap(size).size(), QSize(size, size)) << size;
    EXPECT_EQ(app::CTonalmancerApp::desktopFileName(), QGuiApplication::desktopFileName());
}

} // namespace
