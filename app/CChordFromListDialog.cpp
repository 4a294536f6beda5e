#include "app/CChordFromListDialog.h"

#include "app/ActionFactory.h"
#include "app/CTypeManagerDialog.h"
#include "app/FileFilters.h"
#include "app/MessageBoxes.h"
#include "app/NoteNames.h"
#include "app/WaitCursor.h"
#include "music/ChordCollection.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHeaderView>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>
#include <QSpinBox>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <tuple>

namespace app {

CChordFromListDialog::CChordFromListDialog(const music::ChordTypeList& types,
                                           const QString& userFolder, QWidget* parent)
    : QDialog(parent), m_types(types), m_userFolder(userFolder)
{
    setObjectName(QStringLiteral("chordFromListDialog"));
    setAccessibleName(tr("Add chord from list"));
    setWindowTitle(tr("Add Chord From List"));
    m_list = new QTreeWidget(this);
    m_list->setObjectName(QStringLiteral("chordPicker"));
    m_list->setAccessibleName(tr("Chord types"));
    m_list->setHeaderLabels({QStringLiteral("Chord"), QStringLiteral("Construction")});
    m_list->setRootIsDecorated(false);
    m_list->setToolTip(tr("Pick a chord type; right-click to sort the list or load another "
                          "(F6)."));
    m_list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_base = new QComboBox(this);
    m_base->setObjectName(QStringLiteral("chordPickerBase"));
    m_base->setAccessibleName(tr("Base note"));
    NoteNames::fill(m_base);
    m_octave = new QSpinBox(this);
    m_octave->setObjectName(QStringLiteral("chordPickerOctave"));
    m_octave->setAccessibleName(tr("Octave"));
    m_octave->setRange(0, 7);
    m_octave->setValue(4);
    m_octave->setToolTip(tr("The octave of the base note."));

    auto* form = new QFormLayout;
    form->addRow(tr("&Base note:"), m_base);
    form->addRow(tr("&Octave:"), m_octave);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_ok = buttons->button(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &CChordFromListDialog::apply);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QTreeWidget::itemActivated, this, [this] { apply(); });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_list, 1);
    layout->addLayout(form);
    layout->addWidget(buttons);
    resize(420, 460);

    buildMenu();
    refreshList();
}

void CChordFromListDialog::buildMenu()
{
    m_menu = ActionFactory::buildContextMenu("chordPicker", this, {});
    ActionFactory::onTriggered(m_menu, "picker.apply", this, [this] { apply(); });
    ActionFactory::onTriggered(m_menu, "picker.loadList", this, [this] { askAndLoad(); });
    const std::tuple<const char*, bool, bool> sorts[] = {
        {"picker.sortNameUp", false, true},
        {"picker.sortNameDown", false, false},
        {"picker.sortNotesUp", true, true},
        {"picker.sortNotesDown", true, false},
    };
    for (const auto& [id, byNotes, upwards] : sorts) {
        ActionFactory::onTriggered(m_menu, id, this,
                                   [this, byNotes, upwards] { sortList(byNotes, upwards); });
    }
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_list, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& point) { m_menu->popup(m_list->viewport()->mapToGlobal(point)); });
    auto* load = new QShortcut(QKeySequence(Qt::Key_F6), this);
    connect(load, &QShortcut::activated, this, [this] { askAndLoad(); });
}

void CChordFromListDialog::refreshList()
{
    const int row = m_list->currentIndex().row();
    m_list->clear();
    for (const music::ChordType& type : m_types.types()) {
        new QTreeWidgetItem(m_list, {QString::fromStdString(type.name()),
                                     QString::fromStdString(type.construction())});
    }
    const int count = m_list->topLevelItemCount();
    if (count > 0)
        m_list->setCurrentItem(m_list->topLevelItem(std::clamp(row, 0, count - 1)));
    m_ok->setEnabled(count > 0);
}

void CChordFromListDialog::sortList(bool byNotes, bool upwards)
{
    // The selected type stays selected wherever it goes.
    const int row = m_list->currentIndex().row();
    const bool hasRow = row >= 0 && row < static_cast<int>(m_types.types().size());
    const music::ChordType selected =
        hasRow ? m_types.at(static_cast<std::size_t>(row)) : music::ChordType();
    if (byNotes)
        m_types.sortByNotes(upwards);
    else
        m_types.sortByName(upwards);
    refreshList();
    if (!hasRow)
        return;
    const auto& list = m_types.types();
    const auto found = std::find(list.begin(), list.end(), selected);
    m_list->setCurrentItem(m_list->topLevelItem(static_cast<int>(found - list.begin())));
}

bool CChordFromListDialog::loadChordList(const QString& path)
{
    music::ChordTypeList loaded;
    music::Result result;
    {
        WaitCursor wait;
        result = loaded.load(path.toStdString());
    }
    if (!result) {
        MessageBoxes::error(this, QString::fromStdString(result.message()));
        return false;
    }
    m_types = std::move(loaded);
    m_list->setCurrentItem(nullptr);
    refreshList();
    return true;
}

void CChordFromListDialog::askAndLoad()
{
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Load Chord List"), m_userFolder,
        FileFilters::fromPairs(QString::fromLatin1(CTypeManagerDialog::kChordTypeFilter)));
    if (!path.isEmpty())
        loadChordList(path);
}

void CChordFromListDialog::apply()
{
    if (m_list->currentItem() != nullptr)
        accept();
}

music::Chord CChordFromListDialog::chord() const
{
    const int index = m_list->currentIndex().row();
    if (index < 0 || index >= static_cast<int>(m_types.types().size()))
        return {};
    const music::ChordType& type = m_types.at(static_cast<std::size_t>(index));
    const music::IntervalList intervals = type.intervals();
    if (!intervals.isUsable())
        return {};
    music::Chord chord = music::ChordCollection::makeChord(
        type, intervals, static_cast<music::PitchClass>(m_base->currentIndex()));
    // Generated chords start in octave 0; lift them while every note stays below 120.
    const int shift = m_octave->value() * 12;
    for (auto& slot : chord.slots) {
        if (!music::isEmptyNote(slot) && slot + shift < music::kEmptyNote)
            slot = static_cast<music::NoteValue>(slot + shift);
    }
    return chord;
}

} // namespace app
