#pragma once

#include "music/IntervalList.h"

#include <string>
#include <utility>

namespace music {

/**
 * How a chord is built above its base note: the name that follows the note's name in a chord's
 * name ("m7" gives "Am7") and the construction string of interval symbols ("1;b3;5;b7;").
 */
class ChordType
{
public:
    ChordType() = default;
    ChordType(std::string name, std::string construction)
        : m_name(std::move(name)), m_construction(std::move(construction))
    {}

    const std::string& name() const { return m_name; }
    void setName(std::string name) { m_name = std::move(name); }
    const std::string& construction() const { return m_construction; }
    void setConstruction(std::string construction) { m_construction = std::move(construction); }

    /** The construction string parsed; the error result when it is not valid. */
    IntervalList intervals() const { return IntervalList::parse(m_construction); }

    friend bool operator==(const ChordType&, const ChordType&) = default;

private:
    std::string m_name;
    std::string m_construction;
};

} // namespace music
