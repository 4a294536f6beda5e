#include "app/CMidiFileDialog.h"

#include "app/NoteRuleBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

namespace app {

namespace {

constexpr int kVelocitySteps = 8; // 16 .. 128

} // namespace

CMidiFileDialog::CMidiFileDialog(const midi::MidiSettings& settings,
                                 const part::RenderOptions& options, QWidget* parent)
    : QDialog(parent), m_settings(settings), m_options(options)
{
    setObjectName(QStringLiteral("midiFileDialog"));
    setWindowTitle(tr("Create Midi File"));
    setAccessibleName(windowTitle());

    auto* notes = new QGroupBox(tr("Notes"), this);
    notes->setObjectName(QStringLiteral("midiFileNotes"));
    notes->setAccessibleName(tr("Notes"));
    m_channel = new QSpinBox(notes);
    m_channel->setObjectName(QStringLiteral("midiFileChannel"));
    m_channel->setAccessibleName(tr("Channel"));
    m_channel->setToolTip(QString::fromLatin1(kChannelTip));
    m_channel->setRange(1, midi::MidiSettings::kChannels);
    m_channel->setValue((settings.midiFileChannel() & 0x0F) + 1);
    m_velocity = new QComboBox(notes);
    m_velocity->setObjectName(QStringLiteral("midiFileVelocity"));
    m_velocity->setAccessibleName(tr("Velocity"));
    m_velocity->setToolTip(QString::fromLatin1(kVelocityTip));
    for (int i = 0; i < kVelocitySteps; ++i)
        m_velocity->addItem(QString::number(velocityAt(i)));
    m_velocity->setCurrentIndex(indexOfVelocity(settings.velocity()));
    m_writeBpm = new QCheckBox(tr("Write &BPM"), notes);
    m_writeBpm->setObjectName(QStringLiteral("midiFileWriteBpm"));
    m_writeBpm->setToolTip(QString::fromLatin1(kWriteBpmTip));
    m_writeBpm->setChecked(settings.writeBpm() != 0);
    m_markers = new QCheckBox(tr("Write chord names as &markers"), notes);
    m_markers->setObjectName(QStringLiteral("midiFileMarkers"));
    m_markers->setAccessibleName(tr("Write chord names as markers"));
    m_markers->setToolTip(QString::fromLatin1(kMarkersTip));
    auto* form = new QFormLayout(notes);
    form->addRow(tr("&Channel"), m_channel);
    form->addRow(tr("&Velocity"), m_velocity);
    form->addRow(m_writeBpm);
    form->addRow(m_markers);

    m_rules = new NoteRuleBox(NoteRuleBox::kMidiFileTexts, this);
    m_rules->setOptions(options);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("midiFileButtons"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(notes);
    layout->addWidget(m_rules);
    layout->addWidget(buttons);
}

int CMidiFileDialog::indexOfVelocity(int velocity)
{
    return std::clamp(velocity / 16 - 1, 0, kVelocitySteps - 1);
}

midi::MidiSettings CMidiFileDialog::settings() const
{
    midi::MidiSettings chosen = m_settings;
    chosen.setMidiFileChannel(static_cast<std::uint16_t>(m_channel->value() - 1));
    chosen.setVelocity(static_cast<std::uint16_t>(velocityAt(m_velocity->currentIndex())));
    chosen.setWriteBpm(m_writeBpm->isChecked() ? 1 : 0);
    return chosen;
}

part::RenderOptions CMidiFileDialog::renderOptions() const
{
    return m_rules->applyTo(m_options);
}

bool CMidiFileDialog::writeChordNames() const
{
    return m_markers->isChecked();
}

void CMidiFileDialog::setWriteChordNames(bool on)
{
    m_markers->setChecked(on);
}

} // namespace app
