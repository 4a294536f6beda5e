#pragma once

#include "app/CMainFrame.h"
#include "app/CTonalmancerApp.h"
#include "app/CTonalmancerDoc.h"
#include "app/CTonalmancerView.h"
#include "app/ChordDatabaseCommands.h"
#include "app/ChordDatabasePanel.h"
#include "app/ChordTreeCommands.h"
#include "app/MessageBoxes.h"
#include "app/PartSession.h"
#include "midi/MidiPortList.h"

#include <QApplication>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <memory>

namespace apptest {

/**
 * MIDI outputs for tests: a list of names (none unless set); the listed devices open as ports
 * that record every message they receive, in order, whichever device it was.
 */
class FakePortList : public midi::MidiPortList
{
public:
    explicit FakePortList(std::vector<std::string> names = {}) : m_names(std::move(names)) {}
    std::vector<std::string> deviceNames() override { return m_names; }
    std::unique_ptr<midi::MidiOutPort> openPort(unsigned number) override
    {
        if (number >= m_names.size())
            return nullptr;
        ++opened;
        return std::make_unique<Port>(*this);
    }
    void setNames(std::vector<std::string> names) { m_names = std::move(names); }

    std::vector<std::vector<std::uint8_t>> messages;
    int opened = 0;
    int closed = 0;

private:
    struct Port : midi::MidiOutPort
    {
        explicit Port(FakePortList& list) : m_list(list) {}
        ~Port() override { ++m_list.closed; }
        void sendMessage(const std::vector<std::uint8_t>& bytes) override
        {
            m_list.messages.push_back(bytes);
        }
        FakePortList& m_list;
    };
    std::vector<std::string> m_names;
};

/** Records every message box instead of showing it, answering with queued buttons. */
class MessageRecorder
{
public:
    MessageRecorder();
    ~MessageRecorder();
    MessageRecorder(const MessageRecorder&) = delete;
    MessageRecorder& operator=(const MessageRecorder&) = delete;

    /** The answer to the next box that offers a choice (Yes when none is queued). */
    void queueAnswer(QMessageBox::StandardButton answer) { m_answers.push_back(answer); }
    const QStringList& texts() const { return m_texts; }
    /** The caption of each box, in the same order as texts(). */
    const QStringList& captions() const { return m_captions; }
    void clear()
    {
        m_texts.clear();
        m_captions.clear();
    }

private:
    QStringList m_texts;
    QStringList m_captions;
    std::deque<QMessageBox::StandardButton> m_answers;
};

/** A copy of the shipped data in a temporary folder. */
class DataFolderCopy
{
public:
    DataFolderCopy();
    QString path() const { return m_dir.path(); }
    QString file(const QString& name) const { return m_dir.filePath(name); }

private:
    QTemporaryDir m_dir;
};

/** The program started hidden on a copy of the shipped data, with message boxes recorded. */
class AppFixture : public ::testing::Test
{
protected:
    void SetUp() override { start(); }
    void TearDown() override { m_app.reset(); }

    /** (Re)starts the program on the same data folder with extra arguments. */
    bool start(const QStringList& arguments = {});

    app::CMainFrame& frame() { return *m_app->mainFrame(); }
    /** Shows the main window and waits until it is the active window, as a user's would be. */
    void showActiveFrame();
    app::CTonalmancerView& view() { return *m_app->view(); }
    app::CTonalmancerDoc& document() { return *m_app->document(); }
    app::ChordDatabasePanel& chords() { return *view().chordDatabase(); }
    /** The part being edited, as every part panel shares it. */
    app::PartSession& session() { return *view().partSession(); }

    DataFolderCopy m_data;
    MessageRecorder m_messages;
    std::shared_ptr<FakePortList> m_ports = std::make_shared<FakePortList>();
    std::unique_ptr<app::CTonalmancerApp> m_app;
};

/**
 * Runs `answer` on the modal dialog that the command triggered next opens; `seen` tells whether
 * one of type Dialog opened (it must outlive that command).
 */
template <typename Dialog> void onDialog(std::function<void(Dialog&)> answer, bool& seen)
{
    seen = false;
    QTimer::singleShot(0, [answer, &seen] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        seen = dialog != nullptr;
        if (dialog != nullptr)
            answer(*dialog);
    });
}

/** Runs `fill` on the modal dialog of type Dialog that the command triggered next opens; fails
 * the test when another or none opened. */
template <typename Dialog> void answerDialog(std::function<void(Dialog&)> fill)
{
    QTimer::singleShot(0, [fill] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr) << "no " << Dialog::staticMetaObject.className();
        fill(*dialog);
    });
}

/** The shared song corpus, or an empty text (the caller skips). */
QString songCorpus();

/**
 * A desktop icon theme "probe" that has only "document-open" (a red square), made the current
 * theme while this lives; the theme and its search paths before are restored after.
 */
class ProbeIconTheme
{
public:
    ProbeIconTheme();
    ~ProbeIconTheme();
    ProbeIconTheme(const ProbeIconTheme&) = delete;
    ProbeIconTheme& operator=(const ProbeIconTheme&) = delete;

private:
    QTemporaryDir m_folder;
    QStringList m_oldPaths;
    QString m_oldTheme;
};

} // namespace apptest
