#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace part {

/**
 * Chord names as they follow a transposition. A name starts with its root, a letter A..G with an
 * optional "#" (or a typed flat "b"), and may end in a slash bass ("Am7/G"); both are respelled
 * with the program's sharp note names. Everything else of the name ("m7", "maj9", "6/9") stays.
 */
class ChordName
{
public:
    /**
     * The name with its root (and slash bass) moved by `halfNotes`: "Am7" +2 is "Bm7", "F#m" +2
     * is "G#m", "Bbm" +2 is "Cm", "C/E" +1 is "C#/F". Nothing when the name has no root.
     */
    static std::optional<std::string> respell(std::string_view name, int halfNotes);

    /**
     * The name a chord gets when its notes move by `halfNotes`. Respelled where possible; a name
     * without a root ("Intro", "(m3)") is kept and marked with the net shift it has had, " [+2]";
     * the mark adds up over transpositions and goes away when they cancel ("Intro [+2]" -2 is
     * "Intro"), so transposing back restores the name. Whole octaves change no name.
     */
    static std::string transposed(std::string_view name, int halfNotes);

    /** True when `transposed` would keep and mark the name rather than respell it. */
    static bool needsMark(std::string_view name, int halfNotes);
};

} // namespace part
