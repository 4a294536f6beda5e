#pragma once

#include "music/DataFolder.h"
#include "music/Result.h"
#include "song/BuzzSong.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace song {
class UnknownMachineHandler;
}

namespace app {

/**
 * The document: the open Buzz song. It holds a song from a successful read until the next new or
 * open; a failed read leaves the document as it was. Reading and writing show the wait cursor.
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
    /** "Untitled" or the file's name. */
    QString title() const;
    /**
     * Whether the song was changed since it was read or saved (patterns written into it). A new,
     * opened, reloaded or saved song is unchanged; saving it as the default song is not saving.
     */
    bool isModified() const { return m_modified; }
    void setModified(bool modified);
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
     * What the last song read warned about although it succeeded, e.g. a machine read by the
     * song's own parameter descriptions because machines.ini describes it differently.
     */
    const QStringList& readWarnings() const { return m_readWarnings; }

Q_SIGNALS:
    void songChanged();
    void modifiedChanged(bool modified);

private:
    music::Result read(const QString& path, song::BuzzSong& target, bool askAboutMachines);

    music::DataFolder m_dataFolder;
    song::UnknownMachineHandler* m_handler = nullptr;
    std::optional<song::BuzzSong> m_song;
    QString m_path;
    QStringList m_readWarnings;
    bool m_modified = false;
};

} // namespace app
