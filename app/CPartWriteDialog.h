#pragma once

#include "part/RenderOptions.h"
#include "song/PartWriter.h"

#include <QDialog>

#include <array>

class QCheckBox;
class QRadioButton;

namespace app {

class NoteRuleBox;

/**
 * The options of "Create Buzz Patterns": wave parameter, appending, pattern names, wave numbers,
 * the sequence, and the note rules (read the song writer's way: option 1 leaves a chord note the
 * chord doesn't have out, option 2 writes a note-off).
 */
class CPartWriteDialog : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kIgnoreWaveTip = "Ignore wave parameter.";
    static constexpr const char* kAppendTip = "Do not delete existing patterns and sequences.";
    static constexpr const char* kNameByNotesTip = "Replace chord name by its notes.";
    static constexpr const char* kSequenceTip = "Create a sequence from the part.";
    static constexpr std::array<const char*, 3> kWaveModeTips = {
        "Wave is base wave + the notes index in the chord.", "Wave is base wave + track number.",
        "Wave is base wave."};

    /** `options.render` and `options.baseWave` are passed through; the rest is shown. */
    explicit CPartWriteDialog(const song::PartWriteOptions& options, QWidget* parent = nullptr);

    song::PartWriteOptions options() const;

    QCheckBox* ignoreWaveBox() const { return m_ignoreWave; }
    QCheckBox* appendBox() const { return m_append; }
    QCheckBox* nameByNotesBox() const { return m_nameByNotes; }
    QCheckBox* sequenceBox() const { return m_sequence; }
    /** Wave mode 0, 1 or 2 ("base wave" alone). */
    QRadioButton* waveModeButton(int mode) const;
    NoteRuleBox* noteRules() const { return m_rules; }

private:
    song::PartWriteOptions m_options;
    QCheckBox* m_ignoreWave = nullptr;
    QCheckBox* m_append = nullptr;
    QCheckBox* m_nameByNotes = nullptr;
    QCheckBox* m_sequence = nullptr;
    std::array<QRadioButton*, 3> m_waveMode{};
    NoteRuleBox* m_rules = nullptr;
};

} // namespace app
