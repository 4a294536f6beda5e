#include "app/PatternKeyMap.h"

#include <array>

namespace app {

namespace {

using Action = PatternKey::Action;

struct NoteKey
{
    int key;
    int pitchClass;
    int octaveOffset;
};

// clang-format off
constexpr std::array<NoteKey, 24> kNoteKeys = {{
    {Qt::Key_Z, 0, 0}, {Qt::Key_S, 1, 0}, {Qt::Key_X, 2, 0}, {Qt::Key_D, 3, 0},
    {Qt::Key_C, 4, 0}, {Qt::Key_V, 5, 0}, {Qt::Key_G, 6, 0}, {Qt::Key_B, 7, 0},
    {Qt::Key_H, 8, 0}, {Qt::Key_N, 9, 0}, {Qt::Key_J, 10, 0}, {Qt::Key_M, 11, 0},
    {Qt::Key_Q, 0, 1}, {Qt::Key_2, 1, 1}, {Qt::Key_W, 2, 1}, {Qt::Key_3, 3, 1},
    {Qt::Key_E, 4, 1}, {Qt::Key_R, 5, 1}, {Qt::Key_5, 6, 1}, {Qt::Key_T, 7, 1},
    {Qt::Key_6, 8, 1}, {Qt::Key_Y, 9, 1}, {Qt::Key_7, 10, 1}, {Qt::Key_U, 11, 1},
}};
// clang-format on

bool isDigit(int key)
{
    return key >= Qt::Key_0 && key <= Qt::Key_9;
}

} // namespace

PatternKey PatternKeyMap::map(int key, Qt::KeyboardModifiers modifiers, bool digitsPlayNotes)
{
    if (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return {};
    const bool keypad = modifiers.testFlag(Qt::KeypadModifier);

    if (isDigit(key) && (keypad || !digitsPlayNotes)) {
        const int digit = key - Qt::Key_0;
        if (digit >= 1 && digit <= 7)
            return {Action::ChordNote, digit - 1, 0};
        return {};
    }
    for (const NoteKey& note : kNoteKeys) {
        if (note.key == key)
            return {Action::FixedNote, note.pitchClass, note.octaveOffset};
    }
    switch (key) {
    case Qt::Key_O:
        return {Action::Off};
    case Qt::Key_P:
    case Qt::Key_Question:
        return {Action::Chance};
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return {Action::ShiftUp};
    case Qt::Key_Minus:
        return {Action::ShiftDown};
    case Qt::Key_Period:
        return {Action::Clear};
    case Qt::Key_Slash:
        return {Action::OctaveDown};
    case Qt::Key_Asterisk:
        return {Action::OctaveUp};
    default:
        return {};
    }
}

} // namespace app
