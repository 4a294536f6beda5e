#pragma once

#include "midi/MidiExportOptions.h"
#include "part/Part.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>

class QMimeData;

namespace app {

/**
 * The part dragged out of the window as a standard MIDI file: the file is written into a
 * temporary folder (made by the first drag) that lives as long as this object (the program's
 * run), and offered as a file URL, so that a file manager copies it and a DAW imports it. The
 * part list calls `addTo` when a drag of its chords starts.
 */
class PartMidiDrag
{
public:
    PartMidiDrag() = default;

    /**
     * Writes `part` with `options` as "<name>.mid" (the part file's name, or "part") and adds its
     * URL to `data`; the text of `data` is left as it is. False when it cannot be written.
     */
    bool addTo(QMimeData& data, const part::Part& part, const midi::MidiExportOptions& options,
               const QString& partFilePath);

    /** The file the last drag offered; empty before the first. */
    const QString& lastFile() const { return m_lastFile; }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    int m_drags = 0;
    QString m_lastFile;
};

} // namespace app
