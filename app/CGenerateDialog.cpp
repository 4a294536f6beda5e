#include "app/CGenerateDialog.h"

#include "app/NoteNames.h"
#include "music/ChordCollection.h"
#include "music/ScaleList.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QVBoxLayout>

namespace app {

CGenerateDialog::CGenerateDialog(Mode mode, const music::ScaleList& scales, QWidget* parent)
    : QDialog(parent), m_scales(scales)
{
    setObjectName(QStringLiteral("generateDialog"));
    setWindowTitle(mode == Mode::List ? QStringLiteral("Generate List")
                                      : QStringLiteral("Generate Base"));
    m_name = new QLineEdit(QStringLiteral("noname"), this);
    m_name->setObjectName(QStringLiteral("generateName"));
    m_name->setAccessibleName(tr("Name of the base group"));
    if (mode == Mode::Base)
        m_name->selectAll();
    if (mode == Mode::List) {
        m_name->setEnabled(false);
        const auto text = [](std::string_view name) {
            return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
        };
        m_name->setToolTip(tr("Generate List names its base groups \"%1\" and \"%2\".")
                               .arg(text(music::ChordCollection::kSortedByChord),
                                    text(music::ChordCollection::kSortedByNote)));
    }
    m_scale = new QComboBox(this);
    m_scale->addItem(tr("(no scale)"));
    for (const music::ScaleType& scale : scales.scales())
        m_scale->addItem(QString::fromStdString(scale.name()));
    m_scale->setToolTip(tr("Limit the chords to the notes of a scale."));
    m_base = new QComboBox(this);
    NoteNames::fill(m_base);
    m_base->setToolTip(tr("The base note of the scale."));
    m_everyNote = new QCheckBox(tr("Chords on &every note of the scale only"), this);
    m_everyNote->setToolTip(QString::fromLatin1(kEveryNoteTip));
    m_onlyScaleNotes = new QCheckBox(tr("&Only chords of scale notes"), this);
    m_onlyScaleNotes->setToolTip(QString::fromLatin1(kOnlyScaleNotesTip));

    auto* form = new QFormLayout;
    form->addRow(tr("&Name:"), m_name);
    form->addRow(tr("S&cale:"), m_scale);
    form->addRow(tr("&Base note:"), m_base);
    form->addRow(QString(), m_everyNote);
    form->addRow(QString(), m_onlyScaleNotes);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);

    connect(m_scale, &QComboBox::currentIndexChanged, this, &CGenerateDialog::updateEnabled);
    updateEnabled();
}

void CGenerateDialog::updateEnabled()
{
    const bool hasScale = m_scale->currentIndex() > 0;
    m_base->setEnabled(hasScale);
    m_everyNote->setEnabled(hasScale);
    m_onlyScaleNotes->setEnabled(hasScale);
}

music::ChordDatabaseEdits::GenerateOptions CGenerateDialog::options() const
{
    music::ChordDatabaseEdits::GenerateOptions options;
    options.name = m_name->text().toStdString();
    const int scale = m_scale->currentIndex() - 1;
    if (scale >= 0 && scale < static_cast<int>(m_scales.scales().size())) {
        const auto base = static_cast<music::PitchClass>(m_base->currentData().toInt());
        options.scale = m_scales.at(static_cast<std::size_t>(scale)).ticksFrom(base);
        options.everyNoteInScale = m_everyNote->isChecked();
        options.onlyScaleNotes = m_onlyScaleNotes->isChecked();
    }
    return options;
}

} // namespace app
