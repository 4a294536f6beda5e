#include "app/KeyAudition.h"

#include "midi/MidiPortList.h"
#include "player/PartPlayer.h"

#include <algorithm>

namespace app {

KeyAudition::KeyAudition(std::shared_ptr<midi::MidiPortList> ports,
                         std::function<midi::MidiSettings()> settings, QObject* parent)
    : QObject(parent), m_ports(ports ? std::move(ports) : midi::MidiPortList::systemList()),
      m_settings(std::move(settings))
{
    setObjectName(QStringLiteral("keyAudition"));
    m_player = new player::PartPlayer(m_ports, this);
    m_player->setObjectName(QStringLiteral("auditionPlayer"));
    m_player->setTempo(120, 4);
    connect(m_player, &player::PartPlayer::failed, this, &KeyAudition::failed);
}

KeyAudition::~KeyAudition() = default;

part::Part KeyAudition::auditionPart(const std::vector<int>& notes)
{
    std::vector<int> sorted;
    for (int note : notes) {
        if (note >= 0 && note < music::kEmptyNote)
            sorted.push_back(note);
    }
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    if (sorted.size() > std::size_t(part::PartChord::kMaxNotes))
        sorted.resize(part::PartChord::kMaxNotes);

    part::Part p = part::Part::makeNew();
    p.setBaseOctave(0); // chord notes sound as stored: value = MIDI note
    part::PartChord chord;
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        chord.notes[i] = static_cast<music::NoteValue>(sorted[i]);
        p.patterns().pattern(0).setCell(
            static_cast<int>(i), 0, {part::CellKind::ChordNote, static_cast<std::uint8_t>(i), 0});
    }
    chord.noteCount = static_cast<std::uint8_t>(sorted.size());
    chord.setLength(kRows);
    p.append(chord);
    return p;
}

void KeyAudition::play(const std::vector<int>& notes)
{
    stop();
    const part::Part p = auditionPart(notes);
    if (p.chord(0).noteCount == 0)
        return;
    midi::MidiSettings settings = m_settings ? m_settings() : midi::MidiSettings();
    if (settings.deviceNumber() == midi::MidiSettings::kNoDevice) {
        if (m_ports->deviceNames().empty())
            return;
        settings.setDeviceNumber(0); // the built-in synth leads the list
    }
    m_player->setSettings(settings);
    m_player->playSingleChord(p, 0);
}

void KeyAudition::stop()
{
    m_player->stop();
}

bool KeyAudition::isPlaying() const
{
    return m_player->isPlaying();
}

} // namespace app
