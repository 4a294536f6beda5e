#pragma once

#include "app/CNoteKeyboard.h"

#include <QDialog>

class QComboBox;
class QLineEdit;

namespace app {

/**
 * "Define New Chord Type": a name and a construction string, which can also be learnt from a
 * sample chord given by a base note and ticked notes.
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

    QLineEdit* nameEdit() const { return m_name; }
    QLineEdit* constructionEdit() const { return m_construction; }
    QComboBox* baseBox() const { return m_base; }
    CNoteKeyboard* keyboard() const { return m_keyboard; }

private:
    QLineEdit* m_name = nullptr;
    QLineEdit* m_construction = nullptr;
    QComboBox* m_base = nullptr;
    CNoteKeyboard* m_keyboard = nullptr;
};

} // namespace app
