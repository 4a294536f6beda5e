#include "midi/StepEngine.h"

#include "midi/MidiEvent.h"
#include "music/RandomSource.h"

namespace midi {

namespace {

/** The status of a note off on `channel` (0..15). */
std::uint8_t noteOffStatus(std::uint8_t channel)
{
    return static_cast<std::uint8_t>(MidiEvent::kNoteOff | channel);
}

} // namespace

StepEngine::StepEngine(StepSink& sink) : m_sink(sink)
{
    m_sounding.fill(kNoNote);
    m_pending.reserve(2 * part::kTrackCount); // a step never makes more: nothing grows later
}

std::uint8_t StepEngine::soundingNote(int track) const
{
    if (track < 0 || track >= part::kTrackCount)
        return kNoNote;
    return m_sounding[static_cast<std::size_t>(track)];
}

bool StepEngine::resolveRange(const part::Part& part, std::uint16_t& first, std::uint16_t& last)
{
    const int count = part.count();
    if (count == 0)
        return false;
    if (first == part::kNoIndex)
        first = 0;
    if (last == part::kNoIndex || last >= count)
        last = static_cast<std::uint16_t>(count - 1);
    return first <= last;
}

bool StepEngine::startPart(const part::Part& part, std::uint16_t selectedChord)
{
    stop();
    std::uint16_t first = part.selectionFirst();
    std::uint16_t last = part.selectionLast();
    if (!resolveRange(part, first, last))
        return false;
    std::uint16_t start = selectedChord == part::kNoIndex ? 0 : selectedChord;
    if (start < first || start > last)
        start = first;
    return begin(part, start, last);
}

bool StepEngine::startSingleChord(const part::Part& part, std::uint16_t selectedChord)
{
    stop();
    const std::uint16_t start = selectedChord == part::kNoIndex ? 0 : selectedChord;
    if (start >= part.count())
        return false;
    return begin(part, start, start);
}

bool StepEngine::startRange(const part::Part& part, std::uint16_t first, std::uint16_t last)
{
    stop();
    if (!resolveRange(part, first, last))
        return false;
    return begin(part, first, last);
}

bool StepEngine::replay(std::uint16_t first, std::uint16_t last)
{
    stop();
    if (!resolveRange(m_part, first, last))
        return false;
    return beginHeld(first, last);
}

bool StepEngine::begin(const part::Part& part, std::uint16_t first, std::uint16_t last)
{
    m_part = part;
    return beginHeld(first, last);
}

bool StepEngine::beginHeld(std::uint16_t first, std::uint16_t last)
{
    m_lastChord = last;
    m_stepIndex = 0;
    if (!enterChord(first))
        return false;
    m_playing = true;
    renderCurrentRow();
    return true;
}

bool StepEngine::enterChord(int index)
{
    for (; index <= m_lastChord; ++index) {
        const part::PartChord& chord = m_part.chord(index);
        if (chord.rows() == 0)
            continue;
        m_currentChord = static_cast<std::uint16_t>(index);
        m_stepInChord = 0;
        m_chord = part::prepareChord(chord, m_options.indexOption);
        return true;
    }
    return false;
}

bool StepEngine::step()
{
    if (!m_playing)
        return false;
    ++m_stepInChord;
    if (m_stepInChord >= m_part.chord(m_currentChord).rows() && !enterChord(m_currentChord + 1)) {
        stop();
        return false;
    }
    ++m_stepIndex;
    renderCurrentRow();
    return true;
}

void StepEngine::stop()
{
    stopNotes(m_stepIndex + 1);
    m_playing = false;
}

void StepEngine::updatePart(const part::Part& part)
{
    m_part = part;
    fitToPart();
}

void StepEngine::swapPart(part::Part& part)
{
    std::swap(m_part, part);
    fitToPart();
}

void StepEngine::fitToPart()
{
    if (!m_playing)
        return;
    if (m_currentChord >= m_part.count()) {
        stop();
        return;
    }
    if (m_lastChord >= m_part.count())
        m_lastChord = static_cast<std::uint16_t>(m_part.count() - 1);
    m_chord = part::prepareChord(m_part.chord(m_currentChord), m_options.indexOption);
}

void StepEngine::renderCurrentRow()
{
    const part::RowEvents events =
        part::renderPartRow(m_part, m_chord, m_currentChord, m_stepInChord, m_options);
    const auto noteOn = static_cast<std::uint8_t>(MidiEvent::kNoteOn | m_channel);

    m_pending.clear();
    for (std::size_t track = 0; track < events.size(); ++track) {
        const part::TrackEvent& event = events[track];
        if (event.type == part::TrackEvent::Type::None)
            continue;
        if (event.type == part::TrackEvent::Type::Note && (event.note < 0 || event.note > 127))
            continue;
        std::uint8_t& sounding = m_sounding[track];
        if (sounding != kNoNote) {
            m_pending.push_back(
                {m_stepIndex, noteOffStatus(m_soundingChannel[track]), sounding, 0});
            sounding = kNoNote;
        }
        if (event.type == part::TrackEvent::Type::Note) {
            sounding = static_cast<std::uint8_t>(event.note);
            m_soundingChannel[track] = m_channel;
            m_pending.push_back({m_stepIndex, noteOn, sounding, 0});
        }
    }
    sendPending();
}

void StepEngine::sendPending()
{
    const int half = static_cast<int>(m_pending.size()) / 2;
    for (StepMessage& message : m_pending) {
        message.velocity = m_velocity - music::RandomSource::random(3) + half;
        if (m_velocity > 127)
            m_velocity = 127;
        m_sink.send(message);
    }
    m_pending.clear();
}

void StepEngine::stopNotes(std::uint32_t stepIndex)
{
    for (std::size_t track = 0; track < m_sounding.size(); ++track) {
        std::uint8_t& sounding = m_sounding[track];
        if (sounding == kNoNote)
            continue;
        m_sink.send({stepIndex, noteOffStatus(m_soundingChannel[track]), sounding, m_velocity - 1});
        sounding = kNoNote;
    }
}

} // namespace midi
