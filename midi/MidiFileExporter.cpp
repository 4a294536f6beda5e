#include "midi/MidiFileExporter.h"

#include "midi/StepEngine.h"
#include "midi/VariableLengthQuantity.h"
#include "music/Utf8Path.h"

#include <string>

namespace midi {

namespace {

/** Stores the engine's messages as note events with the running delta of the note track. */
class FileStepSink : public StepSink
{
public:
    FileStepSink(MidiFile& file, std::uint32_t ticksPerStep)
        : m_file(file), m_ticksPerStep(ticksPerStep)
    {}

    void send(const StepMessage& message) override
    {
        // The running delta counts from step -1, so a silent first step adds one step to the
        // next event; the events of step 0 itself are all written at 0.
        std::uint32_t delta = 0;
        if (message.step != 0 && static_cast<std::int64_t>(message.step) != m_lastEventStep)
            delta = static_cast<std::uint32_t>(message.step - m_lastEventStep) * m_ticksPerStep;
        m_lastEventStep = message.step;

        const std::uint32_t packed =
            MidiEvent::packMessage(message.channel(), message.note, message.velocityByte());
        if (message.isNoteOn())
            m_file.addNoteOn(delta, packed);
        else
            m_file.addNoteOff(delta, packed);
    }

private:
    MidiFile& m_file;
    std::uint32_t m_ticksPerStep;
    std::int64_t m_lastEventStep = -1;
};

music::Result fail(std::string_view message)
{
    return music::Result::failure(std::string(message));
}

/** A marker with each chord's name at its first step; returns the tick of the last marker. */
std::uint64_t addChordMarkers(const part::Part& part, int first, int last, std::uint32_t step,
                              MidiFile& file)
{
    std::uint64_t tick = 0;
    std::uint64_t lastMarker = 0;
    for (int i = first; i <= last; ++i) {
        const part::PartChord& chord = part.chord(i);
        if (chord.length > 0 && !chord.name.empty()) {
            file.addMarker(static_cast<std::uint32_t>(tick - lastMarker), chord.name);
            lastMarker = tick;
        }
        tick += std::uint64_t{chord.length} * step;
    }
    return lastMarker;
}

} // namespace

std::uint32_t MidiFileExporter::ticksPerStep(std::uint16_t ticksPerBeat)
{
    return ticksPerBeat == 0 ? 0 : MidiFile::kDivision / ticksPerBeat;
}

music::Result MidiFileExporter::build(const part::Part& part, MidiFile& file)
{
    return build(part, file, part.name());
}

music::Result MidiFileExporter::build(const part::Part& part, MidiFile& file,
                                      std::string_view sequenceName)
{
    file.initialise();
    if (part.count() == 0)
        return fail(kNoChordsMessage);
    // Above 96 ticks per beat a step would last 0 ticks and every note would start at once.
    if (m_options.ticksPerBeat == 0 || m_options.ticksPerBeat > MidiFile::kDivision)
        return fail(kZeroTicksMessage);
    // Below 4 BPM the tempo no longer fits the event's 24 bits.
    if (m_options.writeBpm && m_options.beatsPerMinute < 4)
        return fail(kSlowTempoMessage);

    std::uint16_t first = m_options.rangeFirst;
    std::uint16_t last = m_options.rangeLast;
    if (!StepEngine::resolveRange(part, first, last))
        return fail(kEmptyRangeMessage);
    std::uint64_t rows = 0;
    for (int i = first; i <= last; ++i)
        rows += static_cast<std::uint64_t>(part.chord(i).rows());
    const std::uint32_t step = ticksPerStep(m_options.ticksPerBeat);
    if ((rows + 1) * step > VariableLengthQuantity::kMaximum)
        return fail(kTooLongMessage);

    file.addTrack();
    if (m_options.writeChordNames && !sequenceName.empty())
        file.addTrackName(0, sequenceName);
    file.addTimeSignature(0, kTimeSignature);
    if (m_options.writeBpm)
        file.addTempo(60000000u / m_options.beatsPerMinute, 0);
    const std::uint64_t lastMarker =
        m_options.writeChordNames ? addChordMarkers(part, first, last, step, file) : 0;
    file.addEndOfTrack(static_cast<std::uint32_t>((rows + 1) * step - lastMarker));

    file.addTrack();
    file.addTrackName(0, kTrackName);
    FileStepSink sink(file, step);
    StepEngine engine(sink);
    engine.setRenderOptions(m_options.render);
    engine.setChannel(m_options.channel);
    engine.setVelocity(m_options.velocity);
    if (engine.startRange(part, first, last)) {
        while (engine.step()) {
        }
    }
    file.addEndOfTrack(0);
    m_options.velocity = engine.velocity();
    return music::Result::success();
}

music::Result MidiFileExporter::write(const part::Part& part, const std::filesystem::path& path)
{
    MidiFile file;
    const std::string sequenceName =
        part.name().empty() ? music::utf8FromPath(path.stem()) : part.name();
    const music::Result built = build(part, file, sequenceName);
    if (!built)
        return built;
    const music::Result saved = file.save(path);
    file.release();
    return saved;
}

} // namespace midi
