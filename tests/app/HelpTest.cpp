// Help requests, the manual and the About box.
#include "AppTestSupport.h"

#include "app/CAboutDialog.h"
#include "app/CFindDialog.h"
#include "app/CTreeCtrlX.h"
#include "app/HelpRouter.h"
#include "app/MachinePanel.h"
#include "app/MachineTreeView.h"
#include "app/MathWindow.h"
#include "app/PatternInfoWindow.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>

namespace {

using app::HelpRouter;

class Help : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QFile page(m_dir.filePath(QStringLiteral("index.html")));
        ASSERT_TRUE(page.open(QIODevice::WriteOnly));
        page.write("<h2 id=\"topic-5\">Five</h2><h2 id=\"topic-32773\">Marked</h2>"
                   "<h2 id=\"topic-9\">Nine</h2>");
        page.close();
        HelpRouter::setUrlOpener([this](const QUrl& url) {
            m_opened << url;
            return true;
        });
    }
    void TearDown() override { HelpRouter::setUrlOpener({}); }

    QTemporaryDir m_dir;
    apptest::MessageRecorder m_messages;
    QList<QUrl> m_opened;
};

TEST_F(Help, RequestsItCannotServeAreAnsweredWithFixedMessages)
{
    HelpRouter help(m_dir.filePath(QStringLiteral("index.html")));
    const std::pair<unsigned, const char*> cases[] = {
        {HelpRouter::kCommand, "APP::HELP_COMMAND not available"},
        {HelpRouter::kHelpOnHelp, "APP::HELP_HELPONHELP not available"},
        {HelpRouter::kSetIndex, "APP::HELP_SETINDEX not available"},
    };
    for (const auto& [command, text] : cases)
        EXPECT_EQ(help.request(nullptr, command), QString::fromLatin1(text));
    EXPECT_EQ(m_messages.texts().size(), 3);
    EXPECT_TRUE(m_opened.isEmpty());
}

TEST_F(Help, WithoutAManualNothingIsShown)
{
    HelpRouter none;
    EXPECT_FALSE(none.isAvailable());
    for (const unsigned command : {1u, 4u, 5u, 258u, 515u})
        EXPECT_TRUE(none.request(nullptr, command, 5).isEmpty());
    EXPECT_FALSE(none.openTopics());
    EXPECT_TRUE(m_messages.texts().isEmpty());
    EXPECT_TRUE(m_opened.isEmpty());
}

TEST_F(Help, ContextNumbersOpenTheirTopicTryingBit15Cleared)
{
    HelpRouter help(m_dir.filePath(QStringLiteral("index.html")));
    const std::pair<unsigned, const char*> cases[] = {
        {5, "topic-5"},
        {0x8000 | 9, "topic-9"}, // bit 15 cleared first, and found
        {0x8000 | 5, "topic-5"}, // found cleared even though the marked one exists
        {0x8000 | 7, ""},        // neither: the first page
        {12, ""},
    };
    for (const auto& [context, fragment] : cases) {
        SCOPED_TRACE(context);
        m_opened.clear();
        help.request(nullptr, HelpRouter::kContext, context);
        ASSERT_EQ(m_opened.size(), 1);
        EXPECT_EQ(m_opened.front().fragment(), QString::fromLatin1(fragment));
        EXPECT_TRUE(m_opened.front().isLocalFile());
    }
}

TEST(HelpWindowRect, ConvertsThousandTwentyFourthsOfTheScreen)
{
    struct Case
    {
        QSize screen;
        HelpRouter::RelativeRect rect;
        QRect expected;
    };
    const Case cases[] = {
        {{1024, 768}, {0, 0, 1024, 1024}, {0, 0, 1024, 768}},
        {{1920, 1080}, {512, 256, 256, 512}, {960, 270, 480, 540}},
        {{1600, 1000}, {1, 1, 1, 1}, {1, 0, 1, 0}}, // integer division truncates
        {{100000, 100000}, {1024, 1024, 1024, 1024}, {100000, 100000, 100000, 100000}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(HelpRouter::windowRectFromRelative(c.screen, c.rect), c.expected);
}

TEST(AboutBox, ShowsItsLinesInOneColumn)
{
    const QStringList lines = app::CAboutDialog::lines();
    ASSERT_EQ(lines.size(), 7);
    EXPECT_EQ(lines[0], QStringLiteral("         Tonalmancer v0.7"));
    EXPECT_TRUE(lines[1].isEmpty());
    EXPECT_FALSE(lines[2].isEmpty());
    EXPECT_FALSE(lines[3].isEmpty());
    EXPECT_EQ(lines[4], QString(57, QLatin1Char('-')));
    EXPECT_EQ(lines[5], QStringLiteral("use this program on your own risk"));
    EXPECT_TRUE(lines[6].isEmpty());
    app::CAboutDialog dialog;
    EXPECT_EQ(dialog.list()->count(), 7);
}

TEST(Manual, IsShippedBesideTheProgram)
{
    const QString manual = HelpRouter::findManual(QStringLiteral(TM_BINARY_DIR "/bin"));
    ASSERT_FALSE(manual.isEmpty());
    EXPECT_TRUE(manual.endsWith(QStringLiteral("docs/index.html")));
}

/** The program's own help window, when one is shown: its text browser. */
QTextBrowser* shownHelpBrowser()
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible())
            continue;
        if (auto* browser = window->findChild<QTextBrowser*>())
            return browser;
    }
    return nullptr;
}

TEST_F(Help, WithoutABrowserTheManualOpensInTheProgramsOwnWindowAtItsTopic)
{
    HelpRouter::setUrlOpener([this](const QUrl& url) {
        m_opened << url;
        return false; // no browser could be started
    });
    // A long page, so that showing topic 9 means scrolling to it.
    QFile page(m_dir.filePath(QStringLiteral("long.html")));
    ASSERT_TRUE(page.open(QIODevice::WriteOnly));
    page.write("<h2 id=\"topic-1\">One</h2>");
    for (int i = 0; i < 200; ++i)
        page.write("<p>filler</p>");
    page.write("<h2 id=\"topic-9\">Nine</h2><p>last</p>");
    page.close();
    HelpRouter help(page.fileName());
    EXPECT_TRUE(help.windowRect().isNull());
    help.request(nullptr, HelpRouter::kSetWindowPosition, 0, {0, 0, 512, 512});
    EXPECT_FALSE(help.windowRect().isNull());
    EXPECT_EQ(help.windowRect().topLeft(), QPoint(0, 0));
    EXPECT_TRUE(m_opened.isEmpty()) << "a position request opens nothing";
    help.request(nullptr, HelpRouter::kContext, 9);
    QTextBrowser* browser = shownHelpBrowser();
    ASSERT_NE(browser, nullptr);
    EXPECT_TRUE(m_messages.texts().isEmpty());
    EXPECT_EQ(browser->source().fragment(), QStringLiteral("topic-9"));
    QCoreApplication::processEvents();
    EXPECT_GT(browser->verticalScrollBar()->value(), 0);
    // The window takes the size the last position request asked for (the window system may
    // move it by its frame).
    EXPECT_EQ(browser->window()->size(), help.windowRect().size());
    EXPECT_TRUE(help.openTopics());
    EXPECT_TRUE(browser->source().fragment().isEmpty());
    EXPECT_EQ(browser->verticalScrollBar()->value(), 0);
}

class HelpInTheWindow : public apptest::AppFixture
{
protected:
    void SetUp() override
    {
        AppFixture::SetUp();
        HelpRouter::setUrlOpener([this](const QUrl& url) {
            m_opened << url;
            return m_browserWorks;
        });
        showActiveFrame();
    }
    void TearDown() override
    {
        HelpRouter::setUrlOpener({});
        if (QTextBrowser* browser = shownHelpBrowser())
            browser->window()->close();
        frame().hide();
        AppFixture::TearDown();
    }

    QList<QUrl> m_opened;
    bool m_browserWorks = true;
};

TEST_F(HelpInTheWindow, HelpTopicsWithoutABrowserShowsTheManualNotAMissingManual)
{
    m_browserWorks = false;
    frame().action("help.topics")->trigger();
    EXPECT_EQ(m_opened.size(), 1);
    EXPECT_TRUE(m_messages.texts().isEmpty()) << m_messages.texts().join('|').toStdString();
    QTextBrowser* browser = shownHelpBrowser();
    ASSERT_NE(browser, nullptr);
    EXPECT_TRUE(browser->toPlainText().contains(QStringLiteral("The chord database")));
}

TEST_F(HelpInTheWindow, F1OpensTheTopicOfTheWindowOrRegionInUse)
{
    app::CFindDialog find(QStringLiteral("Find chord"),
                          chords().menuCommands().chordSearch().includeHistory(),
                          chords().menuCommands().chordSearch().skipHistory(), &frame());
    view().showMachineView(true);
    const std::pair<QWidget*, const char*> cases[] = {
        {chords().tree(), "topic-3"},
        {view().regions().partList, "topic-1"},
        {find.includeBox(), "topic-6"},
        {view().mathWindow()->textEdit(), "topic-11"},
        {view().machinePanel()->view(), "topic-12"},
        {view().machinePanel()->showPatternInfo()->table(), "topic-12"},
        {view().regions().patternList, "topic-13"},
        {view().regions().partSettings, "topic-14"},
        {view().regions().patternPresets, "topic-15"},
    };
    for (const auto& [widget, topic] : cases) {
        SCOPED_TRACE(topic);
        widget->window()->show();
        widget->window()->activateWindow();
        widget->setFocus();
        m_opened.clear();
        QTest::keyClick(widget, Qt::Key_F1);
        ASSERT_EQ(m_opened.size(), 1);
        EXPECT_EQ(m_opened.front().fragment(), QString::fromLatin1(topic));
    }
    find.hide();
    view().mathWindow()->hide();
    view().machinePanel()->showPatternInfo()->hide();
}

} // namespace
