# Writes small part files (.prt) by hand for the MIDI checks, field by field: the pattern list,
# the chord list, then base octave, current pattern, selection, tempo and the twelve
# pitch-class flags, one number or text a line. Kept apart from the program's own writer so
# that the checks do not lean on it.

CHORD_NOTE, OFF, FIXED_NOTE, CHANCE = 1, 2, 3, 4


class Pattern:
    def __init__(self, name):
        self.name = name
        self.octaves = [0] * 8  # per track
        self.cells = {}  # (track, row) -> (kind, value, octave byte)

    def put(self, track, row, kind, value=0, octave=0):
        self.cells[(track, row)] = (kind, value, octave)
        return self

    def lines(self):
        out = [self.name, "64", "8"]
        for track in range(8):
            out.append(str(self.octaves[track]))
            for row in range(64):
                kind, value, octave = self.cells.get((track, row), (0, 0, 0))
                out += [str(value), str(kind), str(octave)]
        return out


# chords: (name, [note values], pattern index, length in rows).
# No selection (65000 for its first and last chord).
def part_text(patterns, chords, base_octave=5, bpm=120, tpb=4):
    lines = ["", str(len(patterns))] + [line for p in patterns for line in p.lines()]
    lines += ["", str(len(chords))]
    for name, notes, pattern, length in chords:
        lines += [name, str(len(notes)), str(pattern), str(length)] + [str(n) for n in notes]
    lines += [str(base_octave), "0", "65000", "65000", str(bpm), str(tpb)]
    return "\n".join(lines + ["1"] * 12) + "\n"


# The program's 15-bit random source: a linear congruential generator whose state starts from
# the seed spread by a 32-bit integer hash; random(n) = (next + 1) // (32000 // n), drawn again
# while not below n.
class Random:
    def __init__(self, seed):
        value = seed & 0xFFFFFFFF
        value = ((value ^ (value >> 16)) * 0x7FEB352D) & 0xFFFFFFFF
        value = ((value ^ (value >> 15)) * 0x846CA68B) & 0xFFFFFFFF
        self.state = value ^ (value >> 16)

    def random(self, n):
        while True:
            self.state = (self.state * 214013 + 2531011) & 0xFFFFFFFF
            value = (((self.state >> 16) & 0x7FFF) + 1) // (32000 // n)
            if value < n:
                return value
