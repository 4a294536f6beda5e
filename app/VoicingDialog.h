#pragma once

#include "app/VoicingCommands.h"
#include "part/Part.h"
#include "part/VoicingOptions.h"

#include <QDialog>

#include <vector>

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QLabel;
class QPushButton;

namespace app {

class NoteSpinBox;

/**
 * The dialog of "Voicing" and "Voice Leading": the style, the range (lowest and highest note as
 * the part stores notes, "E2" being E in the second octave above the part's base octave, with
 * what it sounds as beside it), the bass rule, whether the first chord is kept and whether the
 * voices are led. The outcome is worked out on a copy of the part as the fields change: the
 * movement before and after and the first chords' new notes are shown, and `previewChanged`
 * gives the sounding notes of the chord `previewIndex` for the keyboard panel. OK stays disabled
 * while the fields give no outcome. The fields are kept for the next time.
 */
class VoicingDialog : public QDialog
{
    Q_OBJECT
public:
    static constexpr int kPreviewChords = 4;

    /** Acts on `indices` of `part` (copied); `previewIndex` is the chord shown on the keyboard. */
    VoicingDialog(const part::Part& part, std::vector<int> indices, int previewIndex,
                  bool leadVoices, QWidget* parent = nullptr);

    part::VoicingOptions options() const;
    bool leadVoices() const;
    bool keepFirst() const;
    /** The outcome of the fields as they are now. */
    const VoicingOutcome& outcome() const { return m_outcome; }
    /** Works the outcome out again and emits previewChanged (done on every field change). */
    void refresh();

    /** "C4..B6": what notes low..high sound as at `baseOctave`. */
    static QString soundingRange(int low, int high, int baseOctave);

    QComboBox* styleBox() const { return m_style; }
    NoteSpinBox* lowBox() const { return m_low; }
    NoteSpinBox* highBox() const { return m_high; }
    QComboBox* bassBox() const { return m_bass; }
    QComboBox* bassNoteBox() const { return m_bassNote; }
    QCheckBox* keepFirstBox() const { return m_keepFirst; }
    QCheckBox* leadBox() const { return m_lead; }
    QLabel* rangeLabel() const { return m_rangeText; }
    QLabel* movementLabel() const { return m_movement; }
    QLabel* previewLabel() const { return m_preview; }
    QPushButton* okButton() const;

    void accept() override;

Q_SIGNALS:
    /** The new sounding notes (MIDI) of the previewed chord, and a caption for them. */
    void previewChanged(const std::vector<int>& notes, const QString& caption);

private:
    void restoreFields();

    part::Part m_part;
    std::vector<int> m_indices;
    int m_previewIndex;
    VoicingOutcome m_outcome;
    QComboBox* m_style = nullptr;
    NoteSpinBox* m_low = nullptr;
    NoteSpinBox* m_high = nullptr;
    QComboBox* m_bass = nullptr;
    QComboBox* m_bassNote = nullptr;
    QCheckBox* m_keepFirst = nullptr;
    QCheckBox* m_lead = nullptr;
    QLabel* m_rangeText = nullptr;
    QLabel* m_movement = nullptr;
    QLabel* m_preview = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
};

} // namespace app
