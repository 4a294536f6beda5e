#include "app/CTonalmancerDoc.h"

#include "app/SongHistory.h"
#include "app/WaitCursor.h"
#include "song/DataFolderMachineCatalog.h"
#include "song/FileErrorCode.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"

#include <QFileInfo>

namespace app {

CTonalmancerDoc::CTonalmancerDoc(music::DataFolder dataFolder, QObject* parent)
    : QObject(parent), m_dataFolder(std::move(dataFolder))
{
    m_history = new SongHistory(
        [this](SongHistory::State state) {
            SongHistory::State now;
            if (m_song)
                now = {std::move(*m_song), m_revision};
            m_song = std::move(state.song);
            setRevision(state.revision);
            Q_EMIT songEdited();
            return now;
        },
        this);
}

QString CTonalmancerDoc::title() const
{
    return m_path.isEmpty() ? tr("Untitled") : QFileInfo(m_path).fileName();
}

UndoTarget* CTonalmancerDoc::history() const
{
    return m_history;
}

void CTonalmancerDoc::startOver()
{
    m_history->clear();
    m_revision = m_nextRevision++;
    m_savedRevision = m_revision;
    Q_EMIT modifiedChanged(false);
}

void CTonalmancerDoc::setRevision(std::uint64_t revision)
{
    const bool was = isModified();
    m_revision = revision;
    if (isModified() != was)
        Q_EMIT modifiedChanged(isModified());
}

music::Result CTonalmancerDoc::edit(const QString& label,
                                    const std::function<music::Result(song::BuzzSong&)>& change)
{
    if (!m_song)
        return music::Result::failure(tr("There is no song to change.").toStdString());
    SongHistory::State before{*m_song, m_revision};
    const music::Result result = change(*m_song);
    if (!result) {
        m_song = std::move(before.song);
        return result;
    }
    m_history->record(label, std::move(before));
    setRevision(m_nextRevision++);
    Q_EMIT songEdited();
    return result;
}

QString CTonalmancerDoc::defaultSongPath() const
{
    return QString::fromStdString(m_dataFolder.file(kDefaultSong).string());
}

music::Result CTonalmancerDoc::read(const QString& path, song::BuzzSong& target,
                                    bool askAboutMachines)
{
    WaitCursor wait;
    song::DataFolderMachineCatalog catalog(m_dataFolder.root());
    song::SongReader reader(catalog, askAboutMachines ? m_handler : nullptr);
    const music::Result result = reader.read(path.toStdString(), target);
    m_readWarnings.clear();
    for (const std::string& warning : reader.warnings())
        m_readWarnings.append(QString::fromStdString(warning));
    return result;
}

void CTonalmancerDoc::newSong()
{
    song::BuzzSong fresh;
    if (QFileInfo::exists(defaultSongPath()) && read(defaultSongPath(), fresh, false)) {
        fresh.setPath({});
        m_song = std::move(fresh);
    } else {
        m_song.reset();
    }
    m_path.clear();
    startOver();
    Q_EMIT songChanged();
}

music::Result CTonalmancerDoc::open(const QString& path)
{
    song::BuzzSong loaded;
    const music::Result result = read(path, loaded, true);
    if (!result)
        return result;
    m_song = std::move(loaded);
    m_path = path;
    startOver();
    Q_EMIT songChanged();
    return result;
}

music::Result CTonalmancerDoc::reload()
{
    if (m_path.isEmpty())
        return music::Result::failure("The song has not been saved yet.",
                                      song::FileErrorCode::kHeader);
    return open(m_path);
}

music::Result CTonalmancerDoc::save()
{
    if (m_path.isEmpty())
        return music::Result::failure({}, song::FileErrorCode::kWriteHeader);
    return saveAs(m_path);
}

music::Result CTonalmancerDoc::saveAs(const QString& path)
{
    if (!m_song)
        return music::Result::failure(tr("There is no song to save.").toStdString(),
                                      song::FileErrorCode::kWriteHeader);
    music::Result result;
    {
        WaitCursor wait;
        result = song::SongWriter::write(*m_song, path.toStdString());
    }
    if (!result)
        return result;
    const bool renamed = path != m_path;
    if (renamed) {
        m_path = path;
        m_song->setPath(path.toStdString());
    }
    m_savedRevision = m_revision;
    Q_EMIT modifiedChanged(false);
    if (renamed)
        Q_EMIT songChanged();
    return result;
}

music::Result CTonalmancerDoc::loadDefault()
{
    song::BuzzSong loaded;
    const music::Result result = read(defaultSongPath(), loaded, true);
    if (!result)
        return result;
    loaded.setPath({});
    m_song = std::move(loaded);
    m_path.clear();
    startOver();
    Q_EMIT songChanged();
    return result;
}

music::Result CTonalmancerDoc::saveAsDefault()
{
    if (!m_song)
        return music::Result::failure(tr("There is no song to save.").toStdString(),
                                      song::FileErrorCode::kWriteHeader);
    WaitCursor wait;
    return song::SongWriter::write(*m_song, defaultSongPath().toStdString());
}

} // namespace app
