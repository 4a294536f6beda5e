// The song document through the File commands: open, save, errors and unknown machines.
#include "AppTestSupport.h"

#include "app/CUnknownMachineDialogs.h"
#include "app/MachineListModel.h"
#include "app/MachinePanel.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTreeWidget>

namespace {

using Document = apptest::AppFixture;

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST_F(Document, AFileThatIsNoSongIsRefusedWithBothMessagesAndTheSongStaysUntitled)
{
    const QString untitled = QStringLiteral("Untitled - default.prt - Tonalmancer");
    EXPECT_EQ(frame().windowTitle(), untitled);
    EXPECT_TRUE(document().path().isEmpty());
    EXPECT_FALSE(frame().action("file.update")->isEnabled());
    const QString path = m_data.file(QStringLiteral("notes.bmx"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(400, 'x'));
    file.close();
    EXPECT_FALSE(frame().openSong(path));
    EXPECT_EQ(m_messages.texts(),
              (QStringList{QStringLiteral("Error:\nno Buzzfile"),
                           QStringLiteral("Error loading file \n Code:\t666")}));
    EXPECT_EQ(frame().windowTitle(), untitled);
    EXPECT_TRUE(document().path().isEmpty());
    EXPECT_FALSE(frame().action("file.update")->isEnabled());
}

TEST_F(Document, TheDefaultSongOpensWithoutQuestionsAndBecomesTheNewSong)
{
    // The shipped default song holds the master and one polyphonic generator that the shipped
    // machine database knows: loading it asks nothing.
    ASSERT_TRUE(QFile::exists(document().defaultSongPath()));
    ASSERT_TRUE(frame().loadDefaultSong());
    EXPECT_TRUE(m_messages.texts().isEmpty())
        << m_messages.texts().join(QLatin1Char('|')).toStdString();
    ASSERT_TRUE(document().hasSong());
    EXPECT_EQ(document().song()->machineCount(), 2u);
    EXPECT_TRUE(document().path().isEmpty()); // loaded as a template
    document().newSong();
    ASSERT_TRUE(document().hasSong());
    EXPECT_EQ(document().song()->machines()[1].dllName, "MadBrain's Dynamite 6");
    EXPECT_NE(document().song()->machines()[1].databaseIndex, song::MachineDatabase::kNotFound);
    view().showMachineView(true);
    EXPECT_EQ(view().machinePanel()->model()->rowCount(), 2);
}

TEST_F(Document, AnUnknownGeneratorIsLearntFromTheSongOnlyWhenTheUserAgrees)
{
    // The default song with its generator's DLL renamed (same length, so every offset holds):
    // the database does not know it, but the song describes its parameters.
    QByteArray bytes = readAll(document().defaultSongPath());
    ASSERT_TRUE(bytes.contains("MadBrain's Dynamite 6"));
    bytes.replace("MadBrain's Dynamite 6", "NoSuchMach Dynamite 6");
    const QString path = m_data.file(QStringLiteral("unknown.bmx"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    file.close();
    const QByteArray databaseBefore = readAll(m_data.file(QStringLiteral("machines.ini")));

    // Declined, the machine's DLL is asked for next; the user cancels that too.
    int asked = 0;
    app::CUnknownMachineDialogs::setFileChooser([&](QWidget*, const QString&) {
        ++asked;
        return QString();
    });
    m_messages.queueAnswer(QMessageBox::No);
    EXPECT_FALSE(frame().openSong(path));
    app::CUnknownMachineDialogs::setFileChooser({});
    EXPECT_EQ(asked, 1);
    ASSERT_EQ(m_messages.texts().size(), 3); // the question, the reader's text, the code
    EXPECT_TRUE(m_messages.texts()[0].contains(QStringLiteral("NoSuchMach Dynamite 6")));
    EXPECT_TRUE(m_messages.texts()[1].startsWith(QStringLiteral("machine unknown\n")));
    EXPECT_EQ(m_messages.texts().last(), QStringLiteral("Error loading file \n Code:\t26"));
    EXPECT_EQ(readAll(m_data.file(QStringLiteral("machines.ini"))), databaseBefore);

    m_messages.clear();
    ASSERT_TRUE(frame().openSong(path)); // this time the question is answered Yes
    EXPECT_EQ(m_messages.texts().size(), 1);
    EXPECT_EQ(document().song()->machineCount(), 2u);
    EXPECT_TRUE(
        readAll(m_data.file(QStringLiteral("machines.ini"))).contains("NoSuchMach Dynamite 6"));

    m_messages.clear();
    ASSERT_TRUE(frame().openSong(path)); // learnt once, known from then on
    EXPECT_TRUE(m_messages.texts().isEmpty());
}

TEST_F(Document, AMachineTheDatabaseMisdescribesIsReadAsTheSongDescribesItWithAWarning)
{
    // machines.ini loses the generator's track parameter "Volume"; the default song describes it.
    const QString ini = m_data.file(QStringLiteral("machines.ini"));
    QByteArray bytes = readAll(ini);
    const QByteArray counts = "MadBrain's Dynamite 6\nDynamite6\n1\n1\n32\n";
    ASSERT_TRUE(bytes.contains(counts + "27\n25\n2\n44\n2\n"));
    bytes.replace(counts + "27\n25\n2\n44\n2\n", counts + "26\n25\n1\n44\n1\n");
    bytes.replace("Volume\n1\nt\n2\n255\n128\nM4\n", "M4\n");
    QFile file(ini);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    file.close();

    ASSERT_TRUE(frame().loadDefaultSong());
    ASSERT_EQ(document().readWarnings().size(), 1);
    EXPECT_TRUE(document().readWarnings()[0].contains(QStringLiteral("Dynamite6")));
    EXPECT_EQ(m_messages.texts(), document().readWarnings()) << "shown after opening";
    EXPECT_EQ(document().song()->machines()[1].trackRowSize, 2);
}

TEST_F(Document, UnknownMachineWithoutDescriptionAsksForItsDll)
{
    const QString corpus = apptest::songCorpus();
    const QString song = corpus + QStringLiteral("/bm_FSM_Kick_FSM_Kick_Demo.bmx");
    if (corpus.isEmpty() || !QFile::exists(song))
        GTEST_SKIP() << "song corpus not found (set TM_SONG_CORPUS)";
    int asked = 0;
    app::CUnknownMachineDialogs::setFileChooser([&](QWidget*, const QString& filter) {
        ++asked;
        EXPECT_EQ(filter, QStringLiteral("Dynamic Link Library (*.dll);;All Files (*.*)"));
        return QString(); // the user cancels
    });
    EXPECT_FALSE(frame().openSong(song));
    app::CUnknownMachineDialogs::setFileChooser({});
    EXPECT_EQ(asked, 1);
    ASSERT_EQ(m_messages.texts().size(), 2);
    EXPECT_TRUE(m_messages.texts()[0].startsWith(QStringLiteral("machine unknown\n")));
    EXPECT_TRUE(m_messages.texts()[0].endsWith(QStringLiteral("please scan your gear-directory")));
    EXPECT_EQ(m_messages.texts()[1], QStringLiteral("Error loading file \n Code:\t26"));
}

TEST_F(Document, ARealSongOpensSavesAndReadsBackTheSame)
{
    const QString corpus = apptest::songCorpus();
    const QString source = corpus + QStringLiteral("/buzztrax_buzz1.bmx");
    if (corpus.isEmpty() || !QFile::exists(source))
        GTEST_SKIP() << "song corpus not found (set TM_SONG_CORPUS)";
    ASSERT_TRUE(frame().openSong(source)); // learning its machine is answered Yes
    EXPECT_EQ(frame().windowTitle(),
              QStringLiteral("buzztrax_buzz1.bmx - default.prt - Tonalmancer"));
    const std::size_t machines = document().song()->machineCount();
    EXPECT_GE(machines, 2u);
    // The corpus is read-only: save a copy, then save that again in place.
    const QString copy = m_data.file(QStringLiteral("copy.bmx"));
    ASSERT_TRUE(frame().saveSongAs(copy));
    EXPECT_EQ(frame().windowTitle(), QStringLiteral("copy.bmx - default.prt - Tonalmancer"));
    const QByteArray firstSave = readAll(copy);
    ASSERT_TRUE(frame().reloadSong());
    EXPECT_EQ(document().song()->machineCount(), machines);
    ASSERT_TRUE(frame().saveSong());
    EXPECT_EQ(readAll(copy), firstSave);
    EXPECT_EQ(readAll(copy).left(4), QByteArray("Buzz"));
}

TEST_F(Document, AFailedSaveKeepsTheSongAndShowsTheCodeAndSaveAsDefaultKeepsItUntitled)
{
    ASSERT_TRUE(frame().loadDefaultSong());
    m_messages.clear();
    const QString unwritable = m_data.file(QStringLiteral("no/such/folder/song.bmx"));
    EXPECT_FALSE(frame().saveSongAs(unwritable));
    ASSERT_EQ(m_messages.texts().size(), 1);
    EXPECT_TRUE(m_messages.texts()[0].startsWith(QStringLiteral("Error saving file \n Code:\t")));
    EXPECT_TRUE(document().hasSong());
    EXPECT_EQ(frame().windowTitle(), QStringLiteral("Untitled - default.prt - Tonalmancer"));

    // Saved as the default, the default song is replaced and this one stays untitled.
    const QString defaultPath = document().defaultSongPath();
    QFile::remove(defaultPath);
    ASSERT_TRUE(frame().saveSongAsDefault());
    EXPECT_TRUE(QFile::exists(defaultPath));
    EXPECT_TRUE(document().path().isEmpty());
}

using MachineScans = apptest::AppFixture;

TEST_F(MachineScans, FilesThatAreNoMachinesAreRefusedWithTheScannersMessage)
{
    QTemporaryDir gear;
    struct Case
    {
        const char* folder;
        const char* expected;
    };
    const Case cases[] = {
        {"plugins", "Error:\nSorry, but the parentfolder must be ..\\effects or ..\\generators"},
        {"Generators", "Error:\nUnable to load library\nmaybe it is no dynamic link library"},
    };
    const QByteArray before = readAll(m_data.file(QStringLiteral("machines.ini")));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.folder);
        m_messages.clear();
        QDir(gear.path()).mkpath(QString::fromLatin1(c.folder));
        const QString dll = gear.filePath(QString::fromLatin1(c.folder) + QStringLiteral("/x.dll"));
        QFile file(dll);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("not a library");
        file.close();
        EXPECT_FALSE(frame().scanSingleFile(dll));
        EXPECT_EQ(m_messages.texts(), QStringList{QString::fromLatin1(c.expected)});
        EXPECT_EQ(readAll(m_data.file(QStringLiteral("machines.ini"))), before);
    }
}

TEST_F(MachineScans, AGearFolderScanRebuildsTheDatabaseAndSaysOk)
{
    QTemporaryDir gear;
    QDir(gear.path()).mkpath(QStringLiteral("generators"));
    QDir(gear.path()).mkpath(QStringLiteral("effects"));
    ASSERT_TRUE(frame().scanGearDirectory(gear.path()));
    ASSERT_EQ(m_messages.texts().size(), 1);
    EXPECT_TRUE(m_messages.texts()[0].startsWith(QStringLiteral("OK\n")))
        << m_messages.texts()[0].toStdString();
    song::MachineDatabase database;
    EXPECT_TRUE(database.load(m_data.path().toStdString()));
}

} // namespace
