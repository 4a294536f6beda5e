#include "app/PartMidiDrag.h"

#include "midi/MidiFileExporter.h"

#include <QDir>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace app {

bool PartMidiDrag::addTo(QMimeData& data, const part::Part& part,
                         const midi::MidiExportOptions& options, const QString& partFilePath)
{
    if (part.count() == 0)
        return false;
    if (!m_folder) // made by the first drag: most runs never drag a part out
        m_folder = std::make_unique<QTemporaryDir>();
    if (!m_folder->isValid())
        return false;
    QString name = QFileInfo(partFilePath).completeBaseName();
    if (name.isEmpty())
        name = QStringLiteral("part");
    // A drag while the last file is still being copied must not overwrite it: one folder a drag.
    const QString folder = m_folder->filePath(QString::number(m_drags++));
    if (!QDir().mkpath(folder))
        return false;
    const QString path = QDir(folder).filePath(name + QStringLiteral(".mid"));
    midi::MidiFileExporter exporter(options);
    if (!exporter.write(part, path.toStdString()))
        return false;
    m_lastFile = path;
    QList<QUrl> urls = data.urls();
    urls.append(QUrl::fromLocalFile(path));
    data.setUrls(urls);
    return true;
}

} // namespace app
