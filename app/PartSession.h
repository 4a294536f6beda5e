#pragma once

#include "app/UndoTarget.h"
#include "part/PartEditor.h"
#include "part/RenderOptions.h"

#include <QFlags>
#include <QString>

#include <cstdint>
#include <functional>
#include <vector>

namespace app {

/**
 * The part being edited in the window, shared by every part panel (part list, pattern list,
 * pattern grid, settings, presets, transport). Panels change the part only through this class
 * and redraw on `changed`; nothing else holds a copy that could go stale.
 *
 * Every edit is one labelled step of the part's 50-step undo history ("Add chord", "Edit
 * pattern"). An edit that leaves the part as it was records nothing. Edits that change what is
 * being played stop playback first (`aboutToEdit`), except live edits: pattern cells, track
 * octaves and the tempo, which are heard at the next row as in a tracker.
 *
 * Besides the part, the session keeps the window's state around it that undo does not touch:
 * the chord the part list points at, the selected chords, the editor's defaults ("Def Length",
 * "Def Octave", "Base Wave"), the rendering options, the part file's path and whether the part
 * differs from what was last loaded or saved, and the position being played.
 */
class PartSession : public UndoTarget
{
    Q_OBJECT
public:
    /** What an edit changed, so that panels redraw only what they show. */
    enum Change : unsigned
    {
        Chords = 1u << 0,         // chords added, removed, reordered or changed
        Patterns = 1u << 1,       // patterns added, removed, renamed or reordered
        Cells = 1u << 2,          // cells or track octaves of a pattern
        CurrentPattern = 1u << 3, // the pattern shown in the grid
        Settings = 1u << 4,       // base octave, pitch-class flags
        Tempo = 1u << 5,          // beats per minute, ticks per beat
        Selection = 1u << 6,      // the selected range of chords
        Everything = 0x7Fu,
    };
    Q_DECLARE_FLAGS(Changes, Change)

    /** Whether an edit stops playback first. */
    enum class EditKind
    {
        StopsPlayback,
        Live, // heard at the next row: cells, track octaves, tempo
    };

    /** "Edit pattern" and the other labels of live edits; their undo does not stop playback. */
    static constexpr const char* kEditPattern = "Edit pattern";
    static constexpr const char* kPatternCut = "Pattern cut";
    static constexpr const char* kPatternPaste = "Pattern paste";
    static constexpr const char* kEditPart = "Edit part";

    static constexpr int kMaxLength = 64; // rows a chord can play (a pattern has 64)

    explicit PartSession(QObject* parent = nullptr);

    const part::Part& part() const { return m_editor.part(); }
    const part::UndoHistory& history() const { return m_editor.history(); }

    /**
     * Applies `change` to a copy of the part as one undoable step named `label`; when the copy
     * differs, the step is recorded, the part replaced and `changed(what)` emitted. Returns
     * whether the part changed. `change` may return false to abandon the edit.
     */
    bool edit(const QString& label, Changes what, const std::function<bool(part::Part&)>& change,
              EditKind kind = EditKind::StopsPlayback);

    // The part library's commands, each recorded under its own label.
    void addPattern();
    void copyPattern();
    void removePattern();
    void removeAllPatterns();
    /** Selects a pattern to show; not an undo step. index must be below the pattern count. */
    void setCurrentPattern(int index);
    void setPatternOfSelectedChords(int patternIndex);
    void nextPatternOfSelectedChords();
    void previousPatternOfSelectedChords();
    void newPart();
    void applyPatternPreset(const part::Pattern& preset);
    void applyPartPreset(const part::PartPreset& preset);
    /** Replaces the part by one read from `path` ("Load part"); the path becomes the part's. */
    void loadPart(part::Part loaded, const QString& path);
    /** Starts over with `part` and an empty history (the default part at start-up). */
    void reset(part::Part part, const QString& path);
    /** The part as it was just saved to `path`: it becomes the unmodified state. */
    void markSaved(const QString& path);

    // UndoTarget
    bool canUndo() const override;
    bool canRedo() const override;
    QString undoText() const override;
    QString redoText() const override;
    void undo() override;
    void redo() override;

    /** The part file's path; empty for a part never saved or loaded from a file. */
    const QString& filePath() const { return m_filePath; }
    /** Whether the part differs from what was last loaded or saved (selection aside). */
    bool isModified() const { return m_modified; }

    /** The chord the part list points at (the pattern grid shades rows past its length); -1. */
    int currentChord() const { return m_currentChord; }
    void setCurrentChord(int index);
    /** The chords selected in the part list, ascending. */
    const std::vector<int>& selectedChords() const { return m_selectedChords; }
    /**
     * Selects chords. Two or more make the part's selected range (first..last, what "Play part."
     * and the MIDI file honour); one or none leave the range empty, so that a click on a chord
     * only chooses where playback starts.
     */
    void setSelectedChords(std::vector<int> chords);

    /** Beats per minute and ticks per beat, as the tempo bar sets them; a live change. */
    void setTempo(std::uint16_t beatsPerMinute, std::uint16_t ticksPerBeat);

    /** "Def Length": rows a new chord plays, 1..64. */
    std::uint8_t defaultLength() const { return m_defaultLength; }
    void setDefaultLength(int rows);
    /** "Def Octave": the octave a fixed note entered in the grid gets, 0..9. */
    std::uint8_t defaultOctave() const { return m_defaultOctave; }
    void setDefaultOctave(int octave);
    /** "Base Wave": the wave number the song writer starts from, 1..200. */
    int baseWave() const { return m_baseWave; }
    void setBaseWave(int wave);

    /** Track switches, index overflow and upper note limit of every renderer. */
    const part::RenderOptions& renderOptions() const { return m_options; }
    void setRenderOptions(const part::RenderOptions& options);

    /** The chord and row being played, or (-1, -1); set by the transport, shown by the panels. */
    int playingChord() const { return m_playingChord; }
    int playingRow() const { return m_playingRow; }
    void setPlayingPosition(int chord, int row);

Q_SIGNALS:
    /** The part changed; `what` says which aspects (Everything after undo, redo and loads). */
    void changed(app::PartSession::Changes what);
    /** An edit that changes what is played is about to happen: the transport stops. */
    void aboutToEdit();
    void currentChordChanged(int chord);
    void selectionChanged();
    void modifiedChanged(bool modified);
    void filePathChanged(const QString& path);
    void editorSettingsChanged();
    void renderOptionsChanged();
    void playingPositionChanged(int chord, int row);
    /** Undo took back (redo brought back) the step `label`; sent after `changed`. */
    void undone(const QString& label);
    void redone(const QString& label);

private:
    /** Runs one of the editor's own commands, which record their undo point themselves. */
    void command(Changes what, const std::function<void(part::PartEditor&)>& run,
                 EditKind kind = EditKind::StopsPlayback);
    void afterChange(Changes what);
    void updateModified();
    /** Keeps the current chord and selection inside the chord list after a change. */
    void clampViewState();
    bool isLiveLabel(const QString& label) const;

    part::PartEditor m_editor;
    part::Part m_savedPart; // as last loaded or saved, for isModified
    QString m_filePath;
    bool m_modified = false;

    int m_currentChord = -1;
    std::vector<int> m_selectedChords;
    std::uint8_t m_defaultLength = part::PartChord::kDefaultLength;
    std::uint8_t m_defaultOctave = 4;
    int m_baseWave = 1;
    part::RenderOptions m_options;
    int m_playingChord = -1;
    int m_playingRow = -1;
};

} // namespace app

Q_DECLARE_OPERATORS_FOR_FLAGS(app::PartSession::Changes)
