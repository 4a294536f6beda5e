#pragma once

#include "music/Chord.h"
#include "music/ChordTypeList.h"

#include <QDialog>

class QComboBox;
class QMenu;
class QPushButton;
class QSpinBox;
class QTreeWidget;

namespace app {

/**
 * "From List", the chord-list picker: a chord made from a chord type on a base note, in a chosen
 * octave. The types are listed with their constructions; the list's menu applies the selected
 * type (as do Enter, a double click and OK), sorts the list and loads another chord-type list
 * ("Load Chord List", F6). The picker works on its own copy of the types, so sorting or loading
 * here leaves the program's list as it is.
 */
class CChordFromListDialog : public QDialog
{
    Q_OBJECT
public:
    /** `userFolder` is where the file dialog of "Load Chord List" starts. */
    CChordFromListDialog(const music::ChordTypeList& types, const QString& userFolder = {},
                         QWidget* parent = nullptr);

    /** The chord of the selected type, or an unnamed empty chord when the type is not valid. */
    music::Chord chord() const;

    /** Replaces the listed types with those of a chord-type file; failures are shown. */
    bool loadChordList(const QString& path);
    void sortList(bool byNotes, bool upwards);
    /** Takes the selected type: closes the picker with OK when one is selected. */
    void apply();

    const music::ChordTypeList& types() const { return m_types; }
    QTreeWidget* typeList() const { return m_list; }
    QComboBox* baseBox() const { return m_base; }
    QSpinBox* octaveBox() const { return m_octave; }
    QMenu* contextMenu() const { return m_menu; }

private:
    void buildMenu();
    void refreshList();
    void askAndLoad();

    music::ChordTypeList m_types;
    QString m_userFolder;
    QTreeWidget* m_list = nullptr;
    QComboBox* m_base = nullptr;
    QSpinBox* m_octave = nullptr;
    QMenu* m_menu = nullptr;
    QPushButton* m_ok = nullptr;
};

} // namespace app
