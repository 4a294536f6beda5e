#pragma once

#include "song/MachineDatabase.h"

#include <QDialog>

#include <cstdint>
#include <optional>
#include <vector>

class QComboBox;
class QDialogButtonBox;
class QLineEdit;
class QListView;

namespace app {

class MachineDatabaseModel;

/**
 * Picks a machine of the machine database by kind and name: a kind box (All, Generators,
 * Synths, Samplers, Effects), a search box and the list of matching machines. Used by Add
 * Machine and Replace; returns the chosen entry's database index.
 */
class CMachineChooserDialog : public QDialog
{
    Q_OBJECT
public:
    /** Offers the `candidates` (indices into `entries`, which must outlive the dialog). */
    CMachineChooserDialog(const QString& title,
                          const std::vector<song::MachineDatabaseEntry>& entries,
                          std::vector<std::size_t> candidates, QWidget* parent = nullptr);

    /** Shows only machines of this kind (the machine filter's values; All for anything else). */
    void setKindFilter(std::uint8_t filter);
    /** The database index of the chosen machine; nothing when none is selected. */
    std::optional<std::size_t> chosen() const;

    QComboBox* kindBox() const { return m_kind; }
    QLineEdit* searchEdit() const { return m_search; }
    QListView* list() const { return m_list; }

private:
    void updateList();

    MachineDatabaseModel* m_model = nullptr;
    QComboBox* m_kind = nullptr;
    QLineEdit* m_search = nullptr;
    QListView* m_list = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
};

} // namespace app
