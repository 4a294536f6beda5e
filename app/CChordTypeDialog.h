#pragma once

#include "app/CNoteKeyboard.h"
#include "music/IntervalList.h"

#include <QDialog>

class QComboBox;
class QLabel;
class QLineEdit;

namespace app {

/**
 * "Define New Chord Type": a name and a construction string, which can also be learnt from a
 * sample chord given by a base note and ticked notes. While the user types, a line below the
 * string says whether it is valid, parsed as typed (as the command line's `intervals` parses
 * it), and warns when its chords cannot hold every interval.
 */
class CChordTypeDialog : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kConstructionTip =
        "Enter the intervals + ';' after every interval.";

    explicit CChordTypeDialog(QWidget* parent = nullptr);

    QString name() const;
    QString construction() const;
    void setName(const QString& name);
    void setConstruction(const QString& construction);
    /** Writes the construction string of the sample chord into its field. */
    void learn();

    /** The construction string parsed as typed; the error result when it is not valid. */
    music::IntervalList intervals() const;
    /**
     * What the line below the string shows: "No valid construction string", the warning for a
     * type of more than five intervals, or nothing (also while the field is empty).
     */
    QString constructionCheck() const;

    QLineEdit* nameEdit() const { return m_name; }
    QLineEdit* constructionEdit() const { return m_construction; }
    QComboBox* baseBox() const { return m_base; }
    CNoteKeyboard* keyboard() const { return m_keyboard; }
    QLabel* checkLabel() const { return m_check; }

private:
    void updateCheck();

    QLineEdit* m_name = nullptr;
    QLineEdit* m_construction = nullptr;
    QLabel* m_check = nullptr;
    QComboBox* m_base = nullptr;
    CNoteKeyboard* m_keyboard = nullptr;
};

} // namespace app
