#pragma once

#include "part/RenderOptions.h"

#include <QGroupBox>

#include <array>

class QCheckBox;
class QComboBox;
class QRadioButton;
class QSpinBox;

namespace app {

/**
 * The two note rules that the MIDI settings, the MIDI file and the Buzz pattern dialogs share:
 * what a chord-note cell does whose index the chord doesn't have, and the upper note limit.
 * Each dialog words them its own way (`Texts`); the song writer reads options 1 and 2 the other
 * way round from playback, so its box labels them by what they do there.
 */
class NoteRuleBox : public QGroupBox
{
    Q_OBJECT
public:
    struct Texts
    {
        /** Label and tooltip of index options 0, 1 and 2. */
        std::array<const char*, 3> indexLabels;
        std::array<const char*, 3> indexTips;
        const char* limitLabel;
        const char* limitTip;
    };
    /** The MIDI settings dialog's words (playback's reading). */
    static const Texts kSettingsTexts;
    /** The MIDI file dialog's words (playback's reading). */
    static const Texts kMidiFileTexts;
    /** The Buzz pattern dialog's words (the song writer's reading). */
    static const Texts kSongTexts;

    explicit NoteRuleBox(const Texts& texts, QWidget* parent = nullptr);

    /** Shows the index option and the limit of `options` (the track switches are not shown). */
    void setOptions(const part::RenderOptions& options);
    /** `options` with the index option and the limit as chosen; its track switches kept. */
    part::RenderOptions applyTo(part::RenderOptions options) const;

    QRadioButton* indexButton(part::IndexOption option) const;
    QCheckBox* limitBox() const { return m_limit; }
    QComboBox* limitNoteBox() const { return m_limitNote; }
    QSpinBox* limitOctaveBox() const { return m_limitOctave; }

private:
    void updateEnabled();

    std::array<QRadioButton*, 3> m_index{};
    QCheckBox* m_limit = nullptr;
    QComboBox* m_limitNote = nullptr;
    QSpinBox* m_limitOctave = nullptr;
};

} // namespace app
