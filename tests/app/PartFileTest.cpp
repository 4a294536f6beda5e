// Part files from the Part menu: saving, loading and the default part, the question before a
// changed part is lost, and a part named on the command line.
#include "AppTestSupport.h"

#include "app/CTempoBar.h"
#include "app/PartFileCommands.h"
#include "app/PartListPanel.h"
#include "app/PartSession.h"
#include "part/PartFile.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QMenu>
#include <QTimer>

#include <functional>

namespace {

using app::PartSession;

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class PartFiles : public apptest::AppFixture
{
protected:
    app::PartFileCommands& files() { return *view().partFiles(); }
    QString userFile(const QString& name) { return QDir(files().userFolder()).filePath(name); }

    /** One change of the part, as a user makes it: a chord less. */
    void changePart()
    {
        view().partList()->selectRows({0});
        view()
            .contextMenu("partList")
            ->findChild<QAction*>(QStringLiteral("partList.remove"))
            ->trigger();
    }
    /** Answers the next file dialog with `name` in the folder it offers. */
    static void answerFileDialog(const QString& name, QString* offeredFolder = nullptr)
    {
        QTimer::singleShot(0, [name, offeredFolder] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            if (offeredFolder != nullptr)
                *offeredFolder = dialog->directory().absolutePath();
            dialog->selectFile(name);
            static_cast<QDialog*>(dialog)
                ->accept(); // checks the name as a click on the button does
        });
    }
};

TEST_F(PartFiles, ASavedPartIsTheFormatsOwnBytesAndComesBackWithItsTempo)
{
    changePart();
    frame().tempoBar()->setBeatsPerMinute(140);
    frame().tempoBar()->setTicksPerBeat(6);
    const QString path = userFile(QStringLiteral("song.prt"));
    ASSERT_TRUE(files().savePartTo(path));
    const QByteArray saved = bytesOf(path);
    EXPECT_EQ(saved.toStdString(), part::PartFile::serialize(session().part()));
    EXPECT_FALSE(session().isModified());
    EXPECT_EQ(frame().windowTitle(), QStringLiteral("Untitled - song.prt - Tonalmancer"));

    // A second reading, by a fresh start with the part on the command line, writes the same.
    const part::Part before = session().part();
    ASSERT_TRUE(start({path}));
    EXPECT_EQ(session().part(), before);
    EXPECT_EQ(frame().tempoBar()->beatsPerMinute(), 140);
    EXPECT_EQ(frame().tempoBar()->ticksPerBeat(), 6);
    EXPECT_EQ(session().filePath(), path);
    EXPECT_FALSE(session().canUndo());
    const QString again = userFile(QStringLiteral("again.prt"));
    ASSERT_TRUE(files().savePartTo(again));
    EXPECT_EQ(bytesOf(again), saved);
}

TEST_F(PartFiles, TheSaveDialogStartsInTheUserFolderAndAddsTheExtension)
{
    QString offered;
    answerFileDialog(QStringLiteral("mine"), &offered);
    ASSERT_TRUE(files().askSavePart());
    EXPECT_EQ(offered, QDir(files().userFolder()).absolutePath());
    EXPECT_TRUE(QFile::exists(userFile(QStringLiteral("mine.prt"))));
    EXPECT_EQ(session().filePath(), userFile(QStringLiteral("mine.prt")));

    changePart();
    m_messages.queueAnswer(QMessageBox::Cancel); // asked first; no file dialog follows
    frame().action("part.load")->trigger();
    EXPECT_EQ(session().part().count(), 6);
    m_messages.queueAnswer(QMessageBox::Discard);
    answerFileDialog(QStringLiteral("mine.prt"));
    frame().action("part.load")->trigger();
    EXPECT_EQ(session().part().count(), 7);
    EXPECT_EQ(session().undoText(), QStringLiteral("Load part"));
    session().undo();
    EXPECT_EQ(session().part().count(), 6) << "loading is undone like any edit";
}

TEST_F(PartFiles, NewPartAsksBeforeAChangedPartIsLost)
{
    struct Case
    {
        QMessageBox::StandardButton answer;
        bool cleared;
        bool saved;
    };
    const Case cases[] = {
        {QMessageBox::Cancel, false, false},
        {QMessageBox::Discard, true, false},
        {QMessageBox::Save, true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer);
        ASSERT_TRUE(start());
        changePart();
        m_messages.clear();
        m_messages.queueAnswer(c.answer);
        const QString path = userFile(QStringLiteral("kept.prt"));
        QFile::remove(path);
        if (c.saved)
            answerFileDialog(QStringLiteral("kept.prt"));
        frame().action("part.new")->trigger();
        ASSERT_EQ(m_messages.texts().size(), 1);
        EXPECT_EQ(m_messages.texts().first(),
                  QStringLiteral("The part \"default.prt\" has unsaved changes. Save them first?"));
        EXPECT_EQ(session().part().count() == 0, c.cleared);
        EXPECT_EQ(QFile::exists(path), c.saved);
        if (c.cleared) {
            EXPECT_EQ(session().part().patterns().count(), 1);
            EXPECT_EQ(frame().windowTitle(), QStringLiteral("Untitled - new part - Tonalmancer"));
        }
    }
    // An unchanged part goes without a question.
    m_messages.clear();
    frame().action("part.new")->trigger();
    EXPECT_TRUE(m_messages.texts().isEmpty());
}

TEST_F(PartFiles, ClosingTheWindowAsksAboutAChangedPart)
{
    changePart();
    m_messages.queueAnswer(QMessageBox::Cancel);
    EXPECT_FALSE(frame().close());
    EXPECT_FALSE(QFile::exists(m_data.file(QStringLiteral("Tonalmancer.ini"))))
        << "a cancelled exit writes nothing";
    m_messages.queueAnswer(QMessageBox::Discard);
    EXPECT_TRUE(frame().close());
}

TEST_F(PartFiles, UnreadableFilesAreReportedAndChangeNothing)
{
    const part::Part before = session().part();
    EXPECT_FALSE(files().loadPartFrom(userFile(QStringLiteral("missing.prt"))));
    EXPECT_FALSE(files().savePartTo(userFile(QStringLiteral("no/such/folder/x.prt"))));
    EXPECT_EQ(m_messages.texts(), (QStringList{QStringLiteral("unable to open file"),
                                               QStringLiteral("unable to open file")}));
    EXPECT_EQ(session().part(), before);
    EXPECT_FALSE(session().canUndo());

    // A part on the command line that cannot be read: said once, then the default part.
    m_messages.clear();
    ASSERT_TRUE(start({userFile(QStringLiteral("missing.prt"))}));
    EXPECT_EQ(m_messages.texts(), QStringList{QStringLiteral("unable to open file")});
    EXPECT_EQ(session().part(), before);
}

TEST_F(PartFiles, TheDefaultPartIsOptionalAndCanBeReplaced)
{
    // Saved as default, changed, loaded again: the saved state returns, as an undoable load.
    changePart();
    ASSERT_TRUE(files().saveAsDefaultPart());
    const part::Part saved = session().part();
    changePart();
    m_messages.queueAnswer(QMessageBox::Discard);
    frame().action("part.loadDefault")->trigger();
    EXPECT_EQ(session().part().chords(), saved.chords());
    EXPECT_EQ(session().undoText(), QStringLiteral("Load part"));

    // Without a default part the program starts with a new part and says nothing.
    ASSERT_TRUE(QFile::remove(m_data.file(QStringLiteral("default.prt"))));
    m_messages.clear();
    ASSERT_TRUE(start());
    EXPECT_EQ(session().part().count(), 0);
    EXPECT_EQ(frame().windowTitle(), QStringLiteral("Untitled - new part - Tonalmancer"));
    EXPECT_FALSE(files().loadDefaultPart());
    EXPECT_TRUE(m_messages.texts().isEmpty());
}

} // namespace
