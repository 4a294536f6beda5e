"""Writes small part files (.prt) by hand for the MIDI checks, field by field:
the pattern list, the chord list, then base octave, current pattern, selection, tempo and the
twelve pitch-class flags, one number or text a line. Kept apart from the program's own writer so
that the checks do not lean on it."""

ROWS = 64
TRACKS = 8
NO_INDEX = 65000

NOTHING, CHORD_NOTE, OFF, FIXED_NOTE, CHANCE = 0, 1, 2, 3, 4


class Pattern:
    def __init__(self, name):
        self.name = name
        self.octaves = [0] * TRACKS
        # (track, row) -> (kind, value, octave byte)
        self.cells = {}

    def put(self, track, row, kind, value=0, octave=0):
        self.cells[(track, row)] = (kind, value, octave)
        return self

    def lines(self):
        out = [self.name, "64", "8"]
        for track in range(TRACKS):
            out.append(str(self.octaves[track]))
            for row in range(ROWS):
                kind, value, octave = self.cells.get((track, row), (0, 0, 0))
                out += [str(value), str(kind), str(octave)]
        return out


def part_text(patterns, chords, base_octave=5, bpm=120, tpb=4,
              selection=(NO_INDEX, NO_INDEX)):
    """chords: (name, [note values], pattern index, length in rows)."""
    lines = ["", str(len(patterns))]
    for pattern in patterns:
        lines += pattern.lines()
    lines += ["", str(len(chords))]
    for name, notes, pattern, length in chords:
        lines += [name, str(len(notes)), str(pattern), str(length)] + [str(n) for n in notes]
    lines += [str(base_octave), "0", str(selection[0]), str(selection[1]), str(bpm), str(tpb)]
    lines += ["1"] * 12
    return "\n".join(lines) + "\n"


def _scramble(value):
    """The 32-bit integer hash that spreads neighbouring seeds apart."""
    value &= 0xFFFFFFFF
    value ^= value >> 16
    value = (value * 0x7FEB352D) & 0xFFFFFFFF
    value ^= value >> 15
    value = (value * 0x846CA68B) & 0xFFFFFFFF
    value ^= value >> 16
    return value


class Random:
    """The program's 15-bit random source: a linear congruential generator whose state starts
    from the scrambled seed; random(n) = (next + 1) // (32000 // n), drawn again while not
    below n."""

    def __init__(self, seed):
        self.state = _scramble(seed)

    def next(self):
        self.state = (self.state * 214013 + 2531011) & 0xFFFFFFFF
        return (self.state >> 16) & 0x7FFF

    def random(self, n):
        divisor = 32000 // n
        while True:
            value = (self.next() + 1) // divisor
            if value < n:
                return value
