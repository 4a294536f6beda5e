#pragma once

#include <Qt>

namespace app {

/** What a key pressed in the pattern grid asks for. */
struct PatternKey
{
    enum class Action
    {
        None,       // not a grid key: navigation, shortcuts and the rest go on as usual
        ChordNote,  // value = chord-note index 0..6
        FixedNote,  // value = pitch class 0..11, octaveOffset = 0 or 1 above the entry octave
        Off,        // an off-event
        Chance,     // chord note <-> chance chord note
        ShiftUp,    // chord note: shift two half-notes up (again: none); fixed note: octave + 1
        ShiftDown,  // chord note: shift two half-notes down (again: none); fixed note: octave - 1
        Clear,      // nothing in the cell
        OctaveDown, // the entry octave ("Def Octave") - 1
        OctaveUp,   // the entry octave + 1
    };

    Action action = Action::None;
    int value = 0;
    int octaveOffset = 0;

    friend bool operator==(const PatternKey&, const PatternKey&) = default;
};

/**
 * The grid's keys, laid out as on a tracker (letters as on a US keyboard):
 *
 *   1 .. 7           chord note 1 .. 7 (keypad digits too)
 *   Z S X D C V G B H N J M      C C# D D# E F F# G G# A A# B in the entry octave
 *   Q 2 W 3 E R 5 T 6 Y 7 U      the same one octave higher
 *   O                off           P or ?     chance on/off
 *   + (or =) / -     shift up / down (fixed notes: octave up / down)
 *   .                clear         / and *    entry octave down / up
 *
 * The digits 2 3 5 6 7 are chord notes unless `digitsPlayNotes` is set; then the digits of the
 * main row play the upper octave's sharps and chord notes come from the keypad. Keys held with
 * Ctrl, Alt or Meta are never grid keys.
 */
class PatternKeyMap
{
public:
    static PatternKey map(int key, Qt::KeyboardModifiers modifiers, bool digitsPlayNotes);
};

} // namespace app
