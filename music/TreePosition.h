#pragma once

#include <compare>

namespace music {

/**
 * An item of a chord collection's tree, by indices: a base group, a section of it, a subsection
 * of that, or a chord. The levels below the item are -1. Positions order as the tree is walked:
 * an item comes before its children, and children in index order.
 */
struct TreePosition
{
    int baseGroup = -1;
    int section = -1;
    int subsection = -1;
    int chord = -1;

    static TreePosition ofBaseGroup(int b) { return {b, -1, -1, -1}; }
    static TreePosition ofSection(int b, int s) { return {b, s, -1, -1}; }
    static TreePosition ofSubsection(int b, int s, int u) { return {b, s, u, -1}; }
    static TreePosition ofChord(int b, int s, int u, int c) { return {b, s, u, c}; }

    bool isChord() const { return chord >= 0; }
    bool isSection() const { return section >= 0 && subsection < 0; }

    friend auto operator<=>(const TreePosition&, const TreePosition&) = default;
};

} // namespace music
