#pragma once

#include "music/ChordDatabaseEdits.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace music {
class ScaleList;
}

namespace app {

/**
 * The generation dialog of "Generate List" and "Generate Base" (its title is the command's name):
 * a name, an optional scale on a base note and the two scale options. "Generate List" names its
 * two base groups itself, so there the name field is shown but cannot be changed.
 */
class CGenerateDialog : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kEveryNoteTip =
        "Create the chords in list for every note in scale.";
    static constexpr const char* kOnlyScaleNotesTip =
        "Only allow those chords, which consists of scale notes.";

    enum class Mode
    {
        List, ///< "Generate List": replaces the database with the two sorted groups
        Base, ///< "Generate Base": appends one base group with the given name
    };

    CGenerateDialog(Mode mode, const music::ScaleList& scales, QWidget* parent = nullptr);

    music::ChordDatabaseEdits::GenerateOptions options() const;

    QLineEdit* nameEdit() const { return m_name; }
    QComboBox* scaleBox() const { return m_scale; }
    QComboBox* baseBox() const { return m_base; }
    QCheckBox* everyNoteBox() const { return m_everyNote; }
    QCheckBox* onlyScaleNotesBox() const { return m_onlyScaleNotes; }

private:
    void updateEnabled();

    const music::ScaleList& m_scales;
    QLineEdit* m_name = nullptr;
    QComboBox* m_scale = nullptr;
    QComboBox* m_base = nullptr;
    QCheckBox* m_everyNote = nullptr;
    QCheckBox* m_onlyScaleNotes = nullptr;
};

} // namespace app
