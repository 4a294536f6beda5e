#pragma once

#include "part/PatternRecipe.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLineEdit;
class QSpinBox;
class QToolButton;

namespace app {

/**
 * The fields of a pattern-generator recipe: kind, note order, notes, octaves, step, strum
 * spacing, Euclidean pulses, steps and rotations, density, chance share, seed, note length,
 * octave spread and whether silent notes may be addressed. Fields the kind does not use are
 * disabled but keep their values, as the recipe's text line does.
 *
 * The two list fields (rotation, spread) are read as the recipe text reads them; while one
 * holds no valid list, `error()` says why and the recipe keeps the last valid list.
 */
class RecipeEditor : public QWidget
{
    Q_OBJECT
public:
    explicit RecipeEditor(QWidget* parent = nullptr);

    const part::PatternRecipe& recipe() const { return m_recipe; }
    /** Shows `recipe` without sending `changed`. */
    void setRecipe(const part::PatternRecipe& recipe);
    /** Why a list field cannot be read, or empty. */
    QString error() const { return m_error; }

    QLineEdit* nameEdit() const { return m_name; }
    QComboBox* kindBox() const { return m_kind; }
    QComboBox* orderBox() const { return m_order; }
    QSpinBox* notesBox() const { return m_notes; }
    QSpinBox* octavesBox() const { return m_octaves; }
    QSpinBox* stepBox() const { return m_step; }
    QSpinBox* everyBox() const { return m_every; }
    QSpinBox* pulsesBox() const { return m_pulses; }
    QSpinBox* stepsBox() const { return m_steps; }
    QLineEdit* rotateEdit() const { return m_rotate; }
    QCheckBox* arpeggiateBox() const { return m_arpeggiate; }
    QSpinBox* densityBox() const { return m_density; }
    QSpinBox* chanceBox() const { return m_chance; }
    QDoubleSpinBox* seedBox() const { return m_seed; }
    QToolButton* newSeedButton() const { return m_newSeed; }
    QSpinBox* lengthBox() const { return m_length; }
    QLineEdit* spreadEdit() const { return m_spread; }
    QCheckBox* allowSilentBox() const { return m_allowSilent; }

Q_SIGNALS:
    /** The user changed a field; `recipe()` holds the result. */
    void changed();

private:
    QSpinBox* spinBox(const char* name, const QString& accessible, int min, int max,
                      const QString& tip);
    QLineEdit* listEdit(const char* name, const QString& accessible, const QString& tip);
    /** Takes the fields into the recipe and tells the window. */
    void takeFields();
    void updateEnabled();

    part::PatternRecipe m_recipe;
    QString m_error;
    bool m_showing = false;

    QLineEdit* m_name = nullptr;
    QComboBox* m_kind = nullptr;
    QComboBox* m_order = nullptr;
    QSpinBox* m_notes = nullptr;
    QSpinBox* m_octaves = nullptr;
    QSpinBox* m_step = nullptr;
    QSpinBox* m_every = nullptr;
    QSpinBox* m_pulses = nullptr;
    QSpinBox* m_steps = nullptr;
    QLineEdit* m_rotate = nullptr;
    QCheckBox* m_arpeggiate = nullptr;
    QSpinBox* m_density = nullptr;
    QSpinBox* m_chance = nullptr;
    QDoubleSpinBox* m_seed = nullptr;
    QToolButton* m_newSeed = nullptr;
    QSpinBox* m_length = nullptr;
    QLineEdit* m_spread = nullptr;
    QCheckBox* m_allowSilent = nullptr;
};

} // namespace app
