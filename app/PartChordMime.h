#pragma once

#include "part/PartChord.h"

#include <QString>
#include <QStringView>
#include <QtGlobal>

#include <optional>
#include <vector>

class QMimeData;

namespace app {

/**
 * Part chords on the system clipboard and in drags: a private format that keeps everything
 * (name, notes in order, pattern, length), plus plain text a musician can paste into a mail, one
 * chord a line: the name, a tab, the notes ("Am\tA0 C1 E1"). Reading takes the private format
 * when it is there, else the text, so chords typed in an editor can be pasted too.
 */
class PartChordMime
{
public:
    static constexpr const char* kChordsMimeType = "application/x-tonalmancer-part-chords";
    /** The rows a drag inside the part list started from, to move rather than copy them. */
    static constexpr const char* kRowsMimeType = "application/x-tonalmancer-part-rows";
    /** More chords than a part can hold are never read from foreign data. */
    static constexpr int kMaxChords = 65535;

    /** New mime data holding `chords` in both forms; the caller owns it. */
    static QMimeData* create(const std::vector<part::PartChord>& chords);
    /** Adds the rows a drag started from and a token naming the list they belong to. */
    static void setRows(QMimeData& data, quint64 source, const std::vector<int>& rows);
    /** The rows of a drag that started in the list named `source`; empty for any other. */
    static std::vector<int> rows(const QMimeData& data, quint64 source);

    /** Whether `data` holds chords in either form. */
    static bool hasChords(const QMimeData* data);
    /**
     * The chords of `data`: the private form, else the lines of its text that read as chords
     * (lines that do not are skipped). Chords read from text get `pattern` and `length`.
     */
    static std::vector<part::PartChord> chords(const QMimeData* data, std::uint16_t pattern,
                                               std::uint8_t length);

    /** The chords as text, one a line. */
    static QString text(const std::vector<part::PartChord>& chords);
    /** The notes of a chord as shown: "A0 C1 E1". */
    static QString notesText(const part::PartChord& chord);

    /**
     * A chord from one line of text: "name<TAB>notes", or without a tab the name followed by the
     * notes ("C major C0 E0 G0"; the first word is always the name). Notes are a letter A..G, an
     * optional "#" or "b" and an octave digit (0 when left out); the first seven are kept.
     * Nothing when the line has no notes or one of them does not read.
     */
    static std::optional<part::PartChord> parseLine(QStringView line);
    /** A note as "C#4", "Bb3" or "E" (octave 0); nothing outside 0..119. */
    static std::optional<int> parseNote(QStringView text);
};

} // namespace app
