#pragma once

#include "music/TextLineReader.h"
#include "part/Part.h"
#include "part/Pattern.h"
#include "part/PatternList.h"

#include <string>

namespace part {

/**
 * The blocks the part, pattern preset and part preset files are made of. One value a line:
 * texts as they are, numbers in decimal (unsigned fields as unsigned values), each followed by a
 * line feed. Readers never fail: missing lines read as empty texts and zeros. So that a short,
 * hostile file cannot make them allocate without bound, lists stop at the end of the data: a
 * pattern or chord is only created while bytes remain to read it from.
 */
namespace textformat {

/** Lines in one pattern block: name, rows, tracks and 8 x (octave + 64 x 3 cell lines). */
inline constexpr int kPatternBlockLines = 3 + kTrackCount * (1 + kRowCount * 3);

void writePattern(std::string& out, const Pattern& pattern);
/** Reads one block; the declared row and track counts are skipped (always 64 x 8). */
Pattern readPattern(music::TextLineReader& in);

void writePatternList(std::string& out, const PatternList& list);
/** Replaces `list` by the block read. */
void readPatternList(music::TextLineReader& in, PatternList& list);

/** Writes the chord list block: the part's name, its chord count and the chords. */
void writeChordList(std::string& out, const Part& part);
/** Replaces the part's name and chords by the block read. */
void readChordList(music::TextLineReader& in, Part& part);

void writeFlags(std::string& out, const PitchClassFlags& flags);
PitchClassFlags readFlags(music::TextLineReader& in);

void writeNumber(std::string& out, long long value);
void writeText(std::string& out, const std::string& text);

} // namespace textformat

} // namespace part
