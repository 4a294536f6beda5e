#include "app/CTonalmancerDoc.h"

#include "app/WaitCursor.h"
#include "song/DataFolderMachineCatalog.h"
#include "song/FileErrorCode.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"

#include <QFileInfo>

namespace app {

CTonalmancerDoc::CTonalmancerDoc(music::DataFolder dataFolder, QObject* parent)
    : QObject(parent), m_dataFolder(std::move(dataFolder))
{}

QString CTonalmancerDoc::title() const
{
    return m_path.isEmpty() ? tr("Untitled") : QFileInfo(m_path).fileName();
}

void CTonalmancerDoc::setModified(bool modified)
{
    if (modified == m_modified)
        return;
    m_modified = modified;
    Q_EMIT modifiedChanged(modified);
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
    setModified(false);
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
    setModified(false);
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
    if (result)
        setModified(false);
    if (result && path != m_path) {
        m_path = path;
        m_song->setPath(path.toStdString());
        Q_EMIT songChanged();
    }
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
    setModified(false);
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
