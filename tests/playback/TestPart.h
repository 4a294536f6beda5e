#pragma once

#include "part/Part.h"

/**
 * Two chords of four rows on one pattern, base octave 4: C E G, then F A C.
 * Row 0: track 0 plays chord note 0, track 1 chord note 1; row 2: track 0 stops.
 * Played as a part it sends, per step (on / off with notes):
 *   0: on 48, on 52    2: off 48
 *   4: on 53, off 52, on 57    6: off 53    end: off 57
 */
inline part::Part makeTestPart()
{
    part::Part p = part::Part::makeNew();
    p.setBaseOctave(4);
    part::Pattern& pattern = p.patterns().pattern(0);
    pattern.setCell(0, 0, {part::CellKind::ChordNote, 0, 0});
    pattern.setCell(1, 0, {part::CellKind::ChordNote, 1, 0});
    pattern.setCell(0, 2, {part::CellKind::Off, 0, 0});
    part::PartChord c;
    c.name = "C";
    c.setNotes({0, 4, 7});
    c.length = 4;
    part::PartChord f;
    f.name = "F";
    f.setNotes({5, 9, 12});
    f.length = 4;
    p.append(c);
    p.append(f);
    p.setTempo(120, 4);
    return p;
}
