#pragma once

#include "music/DataFolder.h"
#include "music/Result.h"
#include "song/BuzzSong.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <optional>

namespace song {
class UnknownMachineHandler;
}

namespace app {

class SongHistory;
class UndoTarget;

/**
 * The document: the open Buzz song. It holds a song from a successful read until the next new or
 * open; a failed read leaves the document as it was. Reading and writing show the wait cursor.
 *
 * Every change to the song goes through `edit`, which makes it one step of the song's undo
 * history and marks the song modified until it is saved.
 */
class CTonalmancerDoc : public QObject
{
    Q_OBJECT
public:
    static constexpr const char* kDefaultSong = "default.bmx";
    static constexpr const char* kFileFilter = "Buzz songs (*.bmx *.bmw);;All Files (*)";

    explicit CTonalmancerDoc(music::DataFolder dataFolder, QObject* parent = nullptr);

    /** Asked about unknown machines while songs are read; may be null (they then fail). */
    void setUnknownMachineHandler(song::UnknownMachineHandler* handler) { m_handler = handler; }

    bool hasSong() const { return m_song.has_value(); }
    const song::BuzzSong* song() const { return m_song ? &*m_song : nullptr; }
    song::BuzzSong* song() { return m_song ? &*m_song : nullptr; }
    /** The file the song is saved to; empty for a new song. */
    const QString& path() const { return m_path; }
    /** "Untitled" or the file's name (the frame adds "*" while the song has unsaved edits). */
    QString title() const;
    const music::DataFolder& dataFolder() const { return m_dataFolder; }

    /**
     * A new song: a copy of the default song when it can be read (so there is a master and a
     * generator to write parts into), else no song. Never asks or reports anything.
     */
    void newSong();
    music::Result open(const QString& path);
    /** Reads the song's file again. */
    music::Result reload();
    /** Saves to the song's file; fails when the song has none yet (use saveAs). */
    music::Result save();
    music::Result saveAs(const QString& path);
    /** Opens the default song as a new, untitled song. */
    music::Result loadDefault();
    /** Writes the song as the default song; the document keeps its own file. */
    music::Result saveAsDefault();

    QString defaultSongPath() const;

    /**
     * Changes the song as one undoable step named `label` ("Remove machine"). `change` works on
     * the song itself; when it fails, the song is put back as it was and its result returned.
     * On success the song is marked modified and `songEdited` is emitted. Fails without a song.
     */
    music::Result edit(const QString& label,
                       const std::function<music::Result(song::BuzzSong&)>& change);
    /**
     * Whether the song has edits that were not saved (undoing them all clears it). A new, opened,
     * reloaded or saved song is unchanged; saving it as the default song is not saving.
     */
    bool isModified() const { return m_song.has_value() && m_revision != m_savedRevision; }
    /** The song's undo history, for the window's Undo and Redo. */
    UndoTarget* history() const;

    /**
     * What the last song read warned about although it succeeded, e.g. a machine read by the
     * song's own parameter descriptions because machines.ini describes it differently.
     */
    const QStringList& readWarnings() const { return m_readWarnings; }

Q_SIGNALS:
    /** Another song (or none) is open: new, open, reload, or the file name changed. */
    void songChanged();
    /** The open song was changed by an edit, an undo or a redo. */
    void songEdited();
    void modifiedChanged(bool modified);

private:
    music::Result read(const QString& path, song::BuzzSong& target, bool askAboutMachines);
    /** A new song was taken in: no history, nothing modified. */
    void startOver();
    void setRevision(std::uint64_t revision);

    music::DataFolder m_dataFolder;
    song::UnknownMachineHandler* m_handler = nullptr;
    std::optional<song::BuzzSong> m_song;
    QString m_path;
    QStringList m_readWarnings;
    SongHistory* m_history = nullptr;
    std::uint64_t m_nextRevision = 1;
    std::uint64_t m_revision = 0;      // of the song as it is now
    std::uint64_t m_savedRevision = 0; // of the song as last read or saved
};

} // namespace app
