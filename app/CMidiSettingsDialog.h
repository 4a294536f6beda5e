#pragma once

#include "midi/MidiSettings.h"
#include "part/Part.h"
#include "part/RenderOptions.h"

#include <QDialog>

#include <memory>

class QComboBox;
class QGroupBox;
class QPushButton;
class QSpinBox;
class QTableView;
class QVBoxLayout;

namespace midi {
class MidiInPortList;
}

namespace player {
class PartPlayer;
}

namespace app {

class NoteRuleBox;
class ProgramTableModel;

/**
 * "Midi Settings": the output device (the built-in synth first, then the system's ports by their
 * stable names), port, channel (shown 1..16), program, the note rules (index overflow, upper
 * limit) and the program table by port and channel. "Test" plays a short chord on the device as
 * chosen, without closing the dialog. The dialog is a column of group boxes, so that more
 * settings (a MIDI input) take one more group.
 *
 * A stored device number that names no device any more is kept unless another is chosen.
 *
 * With input ports given (setInputPorts), an "Input" group chooses the MIDI input device by its
 * stable name, or "None"; a stored name that the system does not list now stays offered (marked
 * "not connected") and chosen, so that a keyboard unplugged for the moment is not forgotten.
 */
class CMidiSettingsDialog : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kNoDeviceText = "No midi device available";
    static constexpr const char* kDeviceTip = "Midi output device.";
    static constexpr const char* kPortTip = "The midi output port.";
    static constexpr const char* kChannelTip = "The midi output channel.";
    static constexpr const char* kProgramTip = "The midi program.";

    /** Device names come from `ports` (enumerated anew), which the Test button plays through. */
    CMidiSettingsDialog(const midi::MidiSettings& settings, const part::RenderOptions& options,
                        std::shared_ptr<midi::MidiPortList> ports, QWidget* parent = nullptr);
    ~CMidiSettingsDialog() override;

    /** The settings given, with device, port, channel, program and program table as chosen. */
    midi::MidiSettings settings() const;
    /** The render options given, with the index option and upper limit as chosen. */
    part::RenderOptions renderOptions() const;

    /** Adds a group of further settings below the others. */
    void addGroup(QGroupBox* group);
    /** Adds the input group, listing the input devices of `inputs` (enumerated anew). */
    void setInputPorts(const std::shared_ptr<midi::MidiInPortList>& inputs);

    /** The chord "Test" plays: C, E and G for four rows. */
    static part::Part testPart();

    QComboBox* deviceBox() const { return m_device; }
    QSpinBox* portBox() const { return m_port; }
    QSpinBox* channelBox() const { return m_channel; }
    QSpinBox* programBox() const { return m_program; }
    NoteRuleBox* noteRules() const { return m_rules; }
    QTableView* programTable() const { return m_table; }
    ProgramTableModel* programTableModel() const { return m_tableModel; }
    QPushButton* testButton() const { return m_test; }
    /** The input device choice; nullptr until setInputPorts. Item data: the stable name. */
    QComboBox* inputBox() const { return m_input; }
    player::PartPlayer& testPlayer() const { return *m_testPlayer; }

private:
    QGroupBox* createOutputGroup();
    QGroupBox* createProgramTableGroup();
    void playTest();

    midi::MidiSettings m_settings;
    part::RenderOptions m_options;
    QVBoxLayout* m_groups = nullptr;
    QComboBox* m_device = nullptr;
    QSpinBox* m_port = nullptr;
    QSpinBox* m_channel = nullptr;
    QSpinBox* m_program = nullptr;
    QPushButton* m_test = nullptr;
    QComboBox* m_input = nullptr;
    NoteRuleBox* m_rules = nullptr;
    QTableView* m_table = nullptr;
    ProgramTableModel* m_tableModel = nullptr;
    std::unique_ptr<player::PartPlayer> m_testPlayer;
    std::shared_ptr<midi::MidiPortList> m_ports;
};

} // namespace app
