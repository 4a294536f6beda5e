#include "part/ChordName.h"

#include "music/Note.h"

#include <array>

namespace part {

namespace {

constexpr std::array<int, 7> kLetterPitch = {9, 11, 0, 2, 4, 5, 7}; // A B C D E F G

/** A note name at the start of `text`: its pitch class and how many characters it takes. */
struct Root
{
    int pitchClass = 0;
    std::size_t size = 0;
};

std::optional<Root> rootAt(std::string_view text)
{
    if (text.empty() || text[0] < 'A' || text[0] > 'G')
        return std::nullopt;
    Root root{kLetterPitch[static_cast<std::size_t>(text[0] - 'A')], 1};
    if (text.size() > 1 && text[1] == '#') {
        root.pitchClass += 1;
        root.size = 2;
    } else if (text.size() > 1 && text[1] == 'b') {
        root.pitchClass += 11;
        root.size = 2;
    }
    root.pitchClass %= 12;
    return root;
}

std::string nameOf(int pitchClass, int halfNotes)
{
    return std::string(music::noteName(((pitchClass + halfNotes) % 12 + 12) % 12));
}

/** The net shift of a mark " [+k]" / "[-k]" at the end of the name, and where the mark starts. */
struct Mark
{
    int shift = 0;
    std::size_t start = std::string_view::npos;
};

Mark markOf(std::string_view name)
{
    Mark mark;
    if (name.size() < 4 || name.back() != ']')
        return mark;
    const std::size_t open = name.rfind('[');
    if (open == std::string_view::npos || open + 3 > name.size() - 1)
        return mark;
    const char sign = name[open + 1];
    if (sign != '+' && sign != '-')
        return mark;
    int value = 0;
    for (std::size_t i = open + 2; i + 1 < name.size(); ++i) {
        if (name[i] < '0' || name[i] > '9' || value > 1000)
            return mark;
        value = value * 10 + (name[i] - '0');
    }
    mark.shift = sign == '+' ? value : -value;
    mark.start = open > 0 && name[open - 1] == ' ' ? open - 1 : open;
    return mark;
}

/** A shift in half-notes as -5..+6, the way a musician counts it. */
int reduced(int halfNotes)
{
    int r = ((halfNotes % 12) + 12) % 12;
    return r > 6 ? r - 12 : r;
}

} // namespace

std::optional<std::string> ChordName::respell(std::string_view name, int halfNotes)
{
    const std::optional<Root> root = rootAt(name);
    if (!root)
        return std::nullopt;
    std::string_view rest = name.substr(root->size);
    std::string bass;
    // A slash bass is a note name and nothing else after the last slash; "6/9" is no bass.
    if (const std::size_t slash = rest.rfind('/'); slash != std::string_view::npos) {
        const std::string_view after = rest.substr(slash + 1);
        if (const std::optional<Root> b = rootAt(after); b && b->size == after.size()) {
            bass = "/" + nameOf(b->pitchClass, halfNotes);
            rest = rest.substr(0, slash);
        }
    }
    return nameOf(root->pitchClass, halfNotes) + std::string(rest) + bass;
}

bool ChordName::needsMark(std::string_view name, int halfNotes)
{
    return reduced(halfNotes) != 0 &&
           (markOf(name).start != std::string_view::npos || !rootAt(name).has_value());
}

std::string ChordName::transposed(std::string_view name, int halfNotes)
{
    if (reduced(halfNotes) == 0)
        return std::string(name);
    const Mark mark = markOf(name);
    if (mark.start == std::string_view::npos) {
        if (std::optional<std::string> respelled = respell(name, halfNotes))
            return *respelled;
    }
    // A marked name is never respelled: its root (if any) no longer tells the chord's pitch.
    const std::string_view base =
        mark.start == std::string_view::npos ? name : name.substr(0, mark.start);
    const int shift = reduced(mark.shift + halfNotes);
    if (shift == 0)
        return std::string(base);
    std::string out(base);
    if (!out.empty())
        out += ' ';
    out += '[';
    out += shift > 0 ? "+" : "-";
    out += std::to_string(shift > 0 ? shift : -shift);
    out += ']';
    return out;
}

} // namespace part
