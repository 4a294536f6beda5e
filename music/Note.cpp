#include "music/Note.h"

#include <array>
#include <cctype>

namespace music {

namespace {

constexpr std::array<std::string_view, 12> kNoteNames = {"C",  "C#", "D",  "D#", "E",  "F",
                                                         "F#", "G",  "G#", "A",  "A#", "B"};

} // namespace

std::string_view noteName(int pitchClass)
{
    const int pc = ((pitchClass % 12) + 12) % 12;
    return kNoteNames[static_cast<std::size_t>(pc)];
}

std::optional<PitchClass> parseNoteName(std::string_view text)
{
    for (std::size_t pc = 0; pc < kNoteNames.size(); ++pc) {
        const std::string_view name = kNoteNames[pc];
        if (text.size() != name.size())
            continue;
        bool same = true;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (std::toupper(static_cast<unsigned char>(text[i])) != name[i])
                same = false;
        }
        if (same)
            return static_cast<PitchClass>(pc);
    }
    return std::nullopt;
}

std::string noteNameWithOctave(int value)
{
    if (value < 0 || isEmptyNote(value))
        return {};
    return std::string(noteName(pitchClassOf(value))) + std::to_string(octaveOf(value));
}

std::optional<NoteValue> parseNoteNameWithOctave(std::string_view text)
{
    if (text.size() < 2)
        return std::nullopt;
    const char octave = text.back();
    if (octave < '0' || octave > '9')
        return std::nullopt;
    const std::optional<PitchClass> pitchClass = parseNoteName(text.substr(0, text.size() - 1));
    if (!pitchClass)
        return std::nullopt;
    return noteValue(octave - '0', *pitchClass);
}

} // namespace music
