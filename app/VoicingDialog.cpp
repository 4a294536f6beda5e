#include "app/VoicingDialog.h"

#include "app/NoteNames.h"
#include "app/NoteSpinBox.h"
#include "part/ChordVoicer.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QVBoxLayout>

#include <algorithm>

namespace app {

namespace {

const QString kGroup = QStringLiteral("voicing/");
constexpr int kOctave = 12;

QString noteText(int value)
{
    return QString::fromStdString(music::noteNameWithOctave(value));
}

QString notesText(const part::PartChord& chord)
{
    QStringList names;
    for (int i = 0; i < chord.noteCount; ++i)
        names << noteText(chord.notes[static_cast<std::size_t>(i)]);
    return names.isEmpty() ? QObject::tr("(no notes)") : names.join(QLatin1Char(' '));
}

QLabel* textLabel(QWidget* parent, const char* name, const QString& accessibleName)
{
    auto* label = new QLabel(parent);
    label->setObjectName(QString::fromLatin1(name));
    label->setAccessibleName(accessibleName);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

VoicingDialog::VoicingDialog(const part::Part& part, std::vector<int> indices, int previewIndex,
                             bool leadVoices, QWidget* parent)
    : QDialog(parent), m_part(part), m_indices(std::move(indices)), m_previewIndex(previewIndex)
{
    setObjectName(QStringLiteral("voicingDialog"));
    setWindowTitle(leadVoices ? tr("Voice Leading") : tr("Voicing"));
    setAccessibleName(windowTitle());

    m_style = new QComboBox(this);
    m_style->setObjectName(QStringLiteral("voicingStyle"));
    m_style->setAccessibleName(tr("Style"));
    for (part::VoicingStyle style :
         {part::VoicingStyle::Close, part::VoicingStyle::Open, part::VoicingStyle::Drop2,
          part::VoicingStyle::Drop3, part::VoicingStyle::Spread})
        m_style->addItem(QString::fromLatin1(part::ChordVoicer::styleLabel(style).data()),
                         static_cast<int>(style));
    m_style->setToolTip(tr("close: the notes within an octave; drop-2 and drop-3: the second or "
                           "third voice from the top an octave lower; open: every second voice "
                           "lower; spread: the bass an octave lower."));

    const auto noteBox = [this](const char* name, const QString& accessible, const QString& tip) {
        auto* box = new NoteSpinBox(this);
        box->setObjectName(QString::fromLatin1(name));
        box->setAccessibleName(accessible);
        box->setToolTip(tip);
        return box;
    };
    m_low = noteBox("voicingLow", tr("Lowest note"),
                    tr("No note lies below this one. Octaves count from the part's base octave: "
                       "C0 is its C."));
    m_high = noteBox("voicingHigh", tr("Highest note"), tr("No note lies above this one."));
    m_rangeText = textLabel(this, "voicingRangeText", tr("The range sounds"));

    m_bass = new QComboBox(this);
    m_bass->setObjectName(QStringLiteral("voicingBass"));
    m_bass->setAccessibleName(tr("Bass"));
    m_bass->addItem(tr("any note"), static_cast<int>(part::BassRule::Any));
    m_bass->addItem(tr("the root"), static_cast<int>(part::BassRule::Root));
    m_bass->addItem(tr("this note:"), static_cast<int>(part::BassRule::Note));
    m_bassNote = new QComboBox(this);
    m_bassNote->setObjectName(QStringLiteral("voicingBassNote"));
    m_bassNote->setAccessibleName(tr("Bass note"));
    NoteNames::fill(m_bassNote);
    m_bassNote->setToolTip(tr("Added below a chord that lacks it (a slash chord)."));

    m_keepFirst = new QCheckBox(tr("&Keep the first chord as it is"), this);
    m_keepFirst->setObjectName(QStringLiteral("voicingKeepFirst"));
    m_keepFirst->setAccessibleName(tr("Keep the first chord"));
    m_lead = new QCheckBox(tr("&Lead the voices (least movement over all chords)"), this);
    m_lead->setObjectName(QStringLiteral("voicingLead"));
    m_lead->setAccessibleName(tr("Lead the voices"));

    m_movement = textLabel(this, "voicingMovement", tr("Movement"));
    m_preview = textLabel(this, "voicingPreview", tr("Preview"));
    m_preview->setFrameShape(QFrame::StyledPanel);
    m_preview->setMinimumWidth(420);
    m_preview->setMargin(4);
    m_preview->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto* range = new QHBoxLayout;
    range->addWidget(m_low);
    range->addWidget(new QLabel(tr("to"), this));
    range->addWidget(m_high);
    range->addStretch(1);
    auto* bass = new QHBoxLayout;
    bass->addWidget(m_bass);
    bass->addWidget(m_bassNote);
    bass->addStretch(1);
    auto* form = new QFormLayout;
    form->addRow(tr("&Style:"), m_style);
    auto* rangeLabel = new QLabel(tr("&Range:"), this);
    rangeLabel->setBuddy(m_low);
    form->addRow(rangeLabel, range);
    form->addRow(QString(), m_rangeText);
    auto* bassLabel = new QLabel(tr("&Bass:"), this);
    bassLabel->setBuddy(m_bass);
    form->addRow(bassLabel, bass);
    form->addRow(m_keepFirst);
    form->addRow(m_lead);

    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_buttons->setObjectName(QStringLiteral("voicingButtons"));
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_movement);
    layout->addWidget(m_preview, 1);
    layout->addWidget(m_buttons);

    restoreFields();
    m_lead->setChecked(leadVoices);
    connect(m_style, &QComboBox::currentIndexChanged, this, [this] { refresh(); });
    connect(m_low, &QSpinBox::valueChanged, this, [this] { refresh(); });
    connect(m_high, &QSpinBox::valueChanged, this, [this] { refresh(); });
    connect(m_bass, &QComboBox::currentIndexChanged, this, [this] { refresh(); });
    connect(m_bassNote, &QComboBox::currentIndexChanged, this, [this] { refresh(); });
    connect(m_keepFirst, &QCheckBox::toggled, this, [this] { refresh(); });
    connect(m_lead, &QCheckBox::toggled, this, [this](bool lead) {
        setWindowTitle(lead ? tr("Voice Leading") : tr("Voicing"));
        refresh();
    });
    refresh();
}

void VoicingDialog::restoreFields()
{
    const QSettings settings;
    const part::VoicingOptions defaults;
    m_style->setCurrentIndex(std::clamp(settings.value(kGroup + QStringLiteral("style"), 0).toInt(),
                                        0, m_style->count() - 1));
    m_low->setValue(settings.value(kGroup + QStringLiteral("low"), defaults.low).toInt());
    m_high->setValue(settings.value(kGroup + QStringLiteral("high"), defaults.high).toInt());
    m_bass->setCurrentIndex(
        std::clamp(settings.value(kGroup + QStringLiteral("bass"), 0).toInt(), 0, 2));
    m_bassNote->setCurrentIndex(
        std::clamp(settings.value(kGroup + QStringLiteral("bassNote"), 0).toInt(), 0, 11));
    m_keepFirst->setChecked(settings.value(kGroup + QStringLiteral("keepFirst"), false).toBool());
}

void VoicingDialog::accept()
{
    QSettings settings;
    settings.setValue(kGroup + QStringLiteral("style"), m_style->currentIndex());
    settings.setValue(kGroup + QStringLiteral("low"), m_low->value());
    settings.setValue(kGroup + QStringLiteral("high"), m_high->value());
    settings.setValue(kGroup + QStringLiteral("bass"), m_bass->currentIndex());
    settings.setValue(kGroup + QStringLiteral("bassNote"), m_bassNote->currentIndex());
    settings.setValue(kGroup + QStringLiteral("keepFirst"), m_keepFirst->isChecked());
    QDialog::accept();
}

part::VoicingOptions VoicingDialog::options() const
{
    part::VoicingOptions options;
    options.style = static_cast<part::VoicingStyle>(m_style->currentData().toInt());
    options.low = static_cast<music::NoteValue>(m_low->value());
    options.high = static_cast<music::NoteValue>(m_high->value());
    options.bass = static_cast<part::BassRule>(m_bass->currentData().toInt());
    options.bassNote = static_cast<music::PitchClass>(m_bassNote->currentData().toInt());
    return options;
}

bool VoicingDialog::leadVoices() const
{
    return m_lead->isChecked();
}

bool VoicingDialog::keepFirst() const
{
    return m_keepFirst->isChecked();
}

QPushButton* VoicingDialog::okButton() const
{
    return m_buttons->button(QDialogButtonBox::Ok);
}

QString VoicingDialog::soundingRange(int low, int high, int baseOctave)
{
    return QStringLiteral("%1..%2").arg(noteText(low + kOctave * baseOctave),
                                        noteText(high + kOctave * baseOctave));
}

void VoicingDialog::refresh()
{
    const int base = m_part.baseOctave();
    m_bassNote->setEnabled(options().bass == part::BassRule::Note);
    m_rangeText->setText(tr("With the part's base octave %1 this range sounds %2 (track octave "
                            "settings aside).")
                             .arg(base)
                             .arg(soundingRange(m_low->value(), m_high->value(), base)));
    m_outcome = VoicingCommands::voice(m_part, m_indices, options(), leadVoices(), keepFirst());
    okButton()->setEnabled(static_cast<bool>(m_outcome.result) && !m_outcome.indices.empty());
    if (!m_outcome.result) {
        m_movement->setText(QString::fromStdString(m_outcome.result.message()));
        m_preview->clear();
        return;
    }
    m_movement->setText(
        tr("%1 chords. Movement %2 → %3 half-notes, parallel fifths/octaves %4 → %5, "
           "crossings %6 → %7.")
            .arg(m_outcome.indices.size())
            .arg(m_outcome.before.movement)
            .arg(m_outcome.after.movement)
            .arg(m_outcome.before.parallels)
            .arg(m_outcome.after.parallels)
            .arg(m_outcome.before.crossings)
            .arg(m_outcome.after.crossings));
    QStringList lines;
    std::vector<int> previewNotes;
    QString previewCaption;
    for (std::size_t k = 0; k < m_outcome.indices.size(); ++k) {
        const int index = m_outcome.indices[k];
        const part::PartChord& after = m_outcome.chords[k];
        if (k < std::size_t(kPreviewChords)) {
            lines << tr("%1 %2: %3  →  %4")
                         .arg(index + 1)
                         .arg(QString::fromStdString(after.name), notesText(m_part.chord(index)),
                              notesText(after));
        }
        if (index == m_previewIndex || (previewCaption.isEmpty() && k == 0)) {
            previewNotes.clear();
            for (int i = 0; i < after.noteCount; ++i)
                previewNotes.push_back(after.notes[static_cast<std::size_t>(i)] + kOctave * base);
            previewCaption = tr("%1 of chord %2: %3")
                                 .arg(windowTitle())
                                 .arg(index + 1)
                                 .arg(QString::fromStdString(after.name));
        }
    }
    if (m_outcome.indices.size() > std::size_t(kPreviewChords))
        lines << tr("… and %1 more.").arg(m_outcome.indices.size() - kPreviewChords);
    m_preview->setText(lines.join(QLatin1Char('\n')));
    Q_EMIT previewChanged(previewNotes, previewCaption);
}

} // namespace app
