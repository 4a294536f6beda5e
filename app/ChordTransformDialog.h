#pragma once

#include "part/ChordTransforms.h"
#include "part/Part.h"

#include <QDialog>

class QDialogButtonBox;
class QFormLayout;
class QLabel;
class QPushButton;

namespace app {

/**
 * The frame of the note-transformation dialogs (Transpose, Mirror, Note Limits): the fields of
 * the transformation, which chords it acts on, and a preview of what the first chords become,
 * worked out by the part library on a copy of the part. Values the library refuses (notes that
 * would leave C0..B9) are explained in the preview and OK stays disabled, so the dialog never
 * returns values that change nothing but an error.
 */
class ChordTransformDialog : public QDialog
{
    Q_OBJECT
public:
    static constexpr int kPreviewChords = 4;

    /** Acts on `chords` of `part`; both are copied. */
    ChordTransformDialog(const QString& title, const part::Part& part, part::ChordSelection chords,
                         QWidget* parent = nullptr);

    /** "1 chord", "7 chords". */
    static QString chordCount(int count);

    QLabel* scopeLabel() const { return m_scope; }
    QLabel* previewLabel() const { return m_preview; }
    QPushButton* okButton() const;

protected:
    /** The rows of the transformation's own fields, above the scope and the preview. */
    QFormLayout* form() const { return m_form; }
    const part::Part& part() const { return m_part; }
    const part::ChordSelection& chords() const { return m_chords; }

    /** The transformation with the values entered. */
    virtual part::ChordEdit transformed() const = 0;
    /** Why the values entered cannot be used, or empty. */
    virtual QString invalidReason() const { return {}; }
    /** Works the preview out again; subclasses call it when a field changes. */
    void refresh();

private:
    part::Part m_part;
    part::ChordSelection m_chords;
    QFormLayout* m_form = nullptr;
    QLabel* m_scope = nullptr;
    QLabel* m_preview = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
};

} // namespace app
