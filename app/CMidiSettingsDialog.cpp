#include "app/CMidiSettingsDialog.h"

#include "app/MessageBoxes.h"
#include "app/NoteRuleBox.h"
#include "app/ProgramTableModel.h"
#include "midi/MidiInPortList.h"
#include "player/PartPlayer.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>
#include <QVBoxLayout>

namespace app {

namespace {

QSpinBox* spinBox(QWidget* parent, const char* objectName, const QString& accessibleName,
                  const char* tip, int minimum, int maximum)
{
    auto* box = new QSpinBox(parent);
    box->setObjectName(QString::fromLatin1(objectName));
    box->setAccessibleName(accessibleName);
    box->setToolTip(QString::fromLatin1(tip));
    box->setRange(minimum, maximum);
    return box;
}

} // namespace

CMidiSettingsDialog::CMidiSettingsDialog(const midi::MidiSettings& settings,
                                         const part::RenderOptions& options,
                                         std::shared_ptr<midi::MidiPortList> ports, QWidget* parent)
    : QDialog(parent), m_settings(settings), m_options(options), m_ports(std::move(ports))
{
    setObjectName(QStringLiteral("midiSettingsDialog"));
    setWindowTitle(tr("Midi Settings"));
    setAccessibleName(windowTitle());
    m_testPlayer = m_ports ? std::make_unique<player::PartPlayer>(m_ports)
                           : std::make_unique<player::PartPlayer>();
    connect(m_testPlayer.get(), &player::PartPlayer::failed, this,
            [this](const QString& message) { MessageBoxes::error(this, message); });

    m_groups = new QVBoxLayout;
    m_groups->addWidget(createOutputGroup());
    m_rules = new NoteRuleBox(NoteRuleBox::kSettingsTexts, this);
    m_rules->setOptions(options);
    m_groups->addWidget(m_rules);
    m_groups->addWidget(createProgramTableGroup(), 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("midiSettingsButtons"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(m_groups, 1);
    layout->addWidget(buttons);
    resize(760, 620); // the program table's sixteen channels side by side
}

CMidiSettingsDialog::~CMidiSettingsDialog() = default;

QGroupBox* CMidiSettingsDialog::createOutputGroup()
{
    auto* group = new QGroupBox(tr("Output"), this);
    group->setObjectName(QStringLiteral("midiOutputGroup"));
    group->setAccessibleName(tr("Midi output"));

    m_device = new QComboBox(group);
    m_device->setObjectName(QStringLiteral("midiDevice"));
    m_device->setAccessibleName(tr("Output device"));
    m_device->setToolTip(QString::fromLatin1(kDeviceTip));
    const std::vector<std::string> names =
        m_ports ? m_ports->deviceNames() : midi::MidiPortList::systemList()->deviceNames();
    for (const std::string& name : names)
        m_device->addItem(QString::fromStdString(name));
    if (names.empty()) {
        m_device->addItem(QString::fromLatin1(kNoDeviceText));
        m_device->setEnabled(false);
    } else {
        m_device->setPlaceholderText(tr("Choose a device"));
        const std::uint16_t number = m_settings.deviceNumber();
        m_device->setCurrentIndex(number < names.size() ? number : -1);
    }

    m_port = spinBox(group, "midiPort", tr("Port"), kPortTip, 0, midi::MidiSettings::kPorts - 1);
    m_port->setValue(m_settings.port());
    m_channel =
        spinBox(group, "midiChannel", tr("Channel"), kChannelTip, 1, midi::MidiSettings::kChannels);
    m_channel->setValue((m_settings.channel() & 0x0F) + 1);
    m_program = spinBox(group, "midiProgram", tr("Program"), kProgramTip, 0, 127);
    m_program->setValue(m_settings.program() & 0x7F);

    m_test = new QPushButton(tr("&Test"), group);
    m_test->setObjectName(QStringLiteral("midiTest"));
    m_test->setAccessibleName(tr("Test"));
    m_test->setToolTip(tr("Plays a short chord on the chosen device."));
    m_test->setAutoDefault(false);
    m_test->setEnabled(!names.empty());
    connect(m_test, &QPushButton::clicked, this, [this] { playTest(); });

    auto* deviceRow = new QHBoxLayout;
    deviceRow->addWidget(m_device, 1);
    deviceRow->addWidget(m_test);
    auto* form = new QFormLayout(group);
    auto* deviceLabel = new QLabel(tr("&Device"), group);
    deviceLabel->setBuddy(m_device);
    form->addRow(deviceLabel, deviceRow);
    form->addRow(tr("&Port"), m_port);
    form->addRow(tr("&Channel"), m_channel);
    form->addRow(tr("P&rogram"), m_program);
    return group;
}

QGroupBox* CMidiSettingsDialog::createProgramTableGroup()
{
    auto* group = new QGroupBox(tr("Programs by port and channel"), this);
    group->setObjectName(QStringLiteral("programTableGroup"));
    group->setAccessibleName(tr("Program table"));
    m_tableModel = new ProgramTableModel(m_settings.programTable(), this);
    m_table = new QTableView(group);
    m_table->setObjectName(QStringLiteral("programTable"));
    m_table->setAccessibleName(tr("Program table"));
    m_table->setToolTip(tr("The program of every port and channel; playback stores the program "
                           "it starts with under its port and channel."));
    m_table->setModel(m_tableModel);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->setMinimumHeight(160);
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(m_table);
    return group;
}

void CMidiSettingsDialog::addGroup(QGroupBox* group)
{
    group->setParent(this);
    m_groups->insertWidget(m_groups->count() - 1, group);
}

void CMidiSettingsDialog::setInputPorts(const std::shared_ptr<midi::MidiInPortList>& inputs)
{
    if (!inputs || m_input != nullptr)
        return;
    auto* group = new QGroupBox(tr("Input"), this);
    group->setObjectName(QStringLiteral("midiInputGroup"));
    group->setAccessibleName(tr("Midi input"));
    m_input = new QComboBox(group);
    m_input->setObjectName(QStringLiteral("midiInputDevice"));
    m_input->setAccessibleName(tr("Input device"));
    m_input->setToolTip(tr("The MIDI keyboard whose notes the keyboard panel shows and names."));
    m_input->addItem(tr("None"), QString());
    for (const std::string& name : inputs->inputNames())
        m_input->addItem(QString::fromStdString(name), QString::fromStdString(name));
    const QString stored = QString::fromStdString(m_settings.inputDeviceName());
    int current = m_input->findData(stored);
    if (current < 0) {
        m_input->addItem(tr("%1 (not connected)").arg(stored), stored);
        current = m_input->count() - 1;
    }
    m_input->setCurrentIndex(current);
    auto* form = new QFormLayout(group);
    auto* label = new QLabel(tr("&Input device"), group);
    label->setBuddy(m_input);
    form->addRow(label, m_input);
    addGroup(group);
}

midi::MidiSettings CMidiSettingsDialog::settings() const
{
    midi::MidiSettings chosen = m_settings;
    if (m_device->isEnabled() && m_device->currentIndex() >= 0)
        chosen.setDeviceNumber(static_cast<std::uint16_t>(m_device->currentIndex()));
    chosen.setPort(static_cast<std::uint16_t>(m_port->value()));
    chosen.setChannel(static_cast<std::uint16_t>(m_channel->value() - 1));
    chosen.setProgram(static_cast<std::uint16_t>(m_program->value()));
    chosen.setProgramTable(m_tableModel->table());
    if (m_input != nullptr)
        chosen.setInputDeviceName(m_input->currentData().toString().toStdString());
    return chosen;
}

part::RenderOptions CMidiSettingsDialog::renderOptions() const
{
    return m_rules->applyTo(m_options);
}

part::Part CMidiSettingsDialog::testPart()
{
    part::Part p = part::Part::makeNew();
    p.setBaseOctave(5);
    for (std::uint8_t track = 0; track < 3; ++track)
        p.patterns().pattern(0).setCell(track, 0, {part::CellKind::ChordNote, track, 0});
    part::PartChord chord;
    chord.name = "C";
    chord.setNotes({0, 4, 7});
    chord.length = 4;
    p.append(chord);
    return p;
}

void CMidiSettingsDialog::playTest()
{
    const midi::MidiSettings chosen = settings();
    if (chosen.deviceNumber() == midi::MidiSettings::kNoDevice)
        return;
    m_testPlayer->setSettings(chosen);
    m_testPlayer->setRenderOptions(renderOptions());
    m_testPlayer->setTempo(120, 4); // four rows of 125 ms
    m_testPlayer->playSingleChord(testPart(), 0);
}

} // namespace app
