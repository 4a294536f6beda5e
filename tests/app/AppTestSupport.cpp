#include "AppTestSupport.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QSettings>
#include <QStandardPaths>
#include <QTest>

#include <cstdlib>

namespace apptest {

MessageRecorder::MessageRecorder()
{
    app::MessageBoxes::setHandler([this](QWidget*, const QString& text, QMessageBox::Icon,
                                         QMessageBox::StandardButtons buttons) {
        m_texts << text;
        m_captions << app::MessageBoxes::currentCaption();
        if (!buttons.testFlag(QMessageBox::Yes) && !buttons.testFlag(QMessageBox::Cancel))
            return QMessageBox::Ok;
        if (m_answers.empty())
            return QMessageBox::Yes;
        const QMessageBox::StandardButton answer = m_answers.front();
        m_answers.pop_front();
        return answer;
    });
}

MessageRecorder::~MessageRecorder()
{
    app::MessageBoxes::setHandler({});
}

DataFolderCopy::DataFolderCopy()
{
    const QDir shipped(QStringLiteral(TM_BINARY_DIR "/bin"));
    for (const QString& name : shipped.entryList(QDir::Files)) {
        if (name.startsWith(QStringLiteral("default.")) || name == QStringLiteral("machines.ini"))
            QFile::copy(shipped.filePath(name), m_dir.filePath(name));
    }
}

bool AppFixture::start(const QStringList& arguments)
{
    m_app.reset();
    m_app = std::make_unique<app::CTonalmancerApp>(m_ports);
    return m_app->start(QStringList{QStringLiteral("--data"), m_data.path()} + arguments, false);
}

void AppFixture::showActiveFrame()
{
    frame().show();
    frame().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&frame()));
}

QString songCorpus()
{
    for (const char* name : {"TM_SONG_CORPUS", "TM_SONG_CORPUS_DEFAULT"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0' && QDir(QString::fromLocal8Bit(value)).exists())
            return QString::fromLocal8Bit(value);
    }
    const QString builtIn = QStringLiteral(TM_SONG_CORPUS_DEFAULT);
    return QDir(builtIn).exists() ? builtIn : QString();
}

ProbeIconTheme::ProbeIconTheme()
    : m_oldPaths(QIcon::themeSearchPaths()), m_oldTheme(QIcon::themeName())
{
    QDir root(m_folder.path());
    EXPECT_TRUE(root.mkpath(QStringLiteral("probe/24x24/actions")));
    QFile index(root.filePath(QStringLiteral("probe/index.theme")));
    EXPECT_TRUE(index.open(QIODevice::WriteOnly));
    index.write("[Icon Theme]\nName=probe\nDirectories=24x24/actions\n\n"
                "[24x24/actions]\nSize=24\nType=Fixed\n");
    index.close();
    QImage red(24, 24, QImage::Format_ARGB32);
    red.fill(Qt::red);
    EXPECT_TRUE(red.save(root.filePath(QStringLiteral("probe/24x24/actions/document-open.png"))));
    QIcon::setThemeSearchPaths({m_folder.path()});
    QIcon::setThemeName(QStringLiteral("probe"));
}

ProbeIconTheme::~ProbeIconTheme()
{
    QIcon::setThemeName(m_oldTheme);
    QIcon::setThemeSearchPaths(m_oldPaths);
}

} // namespace apptest

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    app::CTonalmancerApp::setApplicationNames();
    // Window geometry and options of the tests never reach the user's settings.
    static QTemporaryDir settingsDir;
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settingsDir.path());
    QCoreApplication::setOrganizationName(QStringLiteral("TonalmancerTests"));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
