// Every reader takes damaged input without crashing and without work out of proportion to the
// bytes it was given.

#include "music/ChordCollection.h"
#include "music/ChordTypeList.h"
#include "music/ScaleList.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

std::string validCrd()
{
    music::ChordTypeList types;
    types.add("maj", "1;3;5;");
    types.add("m7", "1;b3;5;b7;");
    music::ChordCollection collection;
    collection.generateList(types);
    std::array<bool, 12> ticks{};
    ticks[0] = ticks[4] = ticks[7] = true;
    collection.addScaleGroup(0, "scale", ticks, 0, true);
    return collection.toBytes();
}

std::string validCcl()
{
    music::ChordTypeList types;
    types.add("maj", "1;3;5;");
    types.add("7#9", "1;3;5;b7;#9th;");
    return types.toBytes();
}

std::string validScl()
{
    music::ScaleList scales;
    scales.add("major", "xoxoxxoxoxox");
    scales.add("blues", "xooxoxxxooxo");
    return scales.toBytes();
}

/** Reads `bytes` with every reader; they must return (the result itself may be either). */
void readWithAll(const std::string& bytes)
{
    music::ChordCollection collection;
    (void)collection.read(bytes);
    EXPECT_LE(collection.chordCount(), bytes.size());
    music::ChordTypeList types;
    (void)types.read(bytes);
    EXPECT_LE(types.types().size(), bytes.size());
    music::ScaleList scales;
    (void)scales.read(bytes);
    EXPECT_LE(scales.scales().size(), bytes.size());
}

} // namespace

TEST(Readers, SurviveEveryTruncation)
{
    for (const std::string& full : {validCrd(), validCcl(), validScl()}) {
        for (std::size_t length = 0; length <= full.size(); ++length)
            readWithAll(full.substr(0, length));
    }
}

TEST(Readers, SurviveRandomBytesAndRandomDamage)
{
    std::mt19937 random(20240601);
    const std::string valid[] = {validCrd(), validCcl(), validScl()};
    for (int round = 0; round < 300; ++round) {
        std::string bytes;
        if (round % 3 == 0) {
            bytes.resize(random() % 200);
            for (char& c : bytes)
                c = static_cast<char>(random() % 256);
        } else {
            bytes = valid[static_cast<std::size_t>(round) % 3];
            for (int flips = 0; flips < 8; ++flips) {
                const std::size_t at = random() % bytes.size();
                bytes[at] = "0123456789\n\r\0-x"[random() % 16];
            }
        }
        // Random bytes behind each magic reach the count and record code, not only the check.
        readWithAll(bytes);
        readWithAll("Tonalmancer_Chords\n" + bytes);
        readWithAll("Tonalmancer_ConstructChords\n" + bytes);
        readWithAll("Tonalmancer_Scales\n" + bytes);
    }
}

TEST(Readers, HugeCountsOnTinyFilesCostNothing)
{
    struct Case
    {
        const char* bytes;
    };
    const Case cases[] = {
        {"Tonalmancer_Chords\n65535\n"},
        {"Tonalmancer_Chords\n1\nG\n65535\n"},
        {"Tonalmancer_Chords\n1\nG\n1\nS\n65535\n1\n255\n"},
        {"Tonalmancer_Chords\n1\nG\n1\nS\n1\n0\nsub\n65535\nC\n255\n"},
    };
    for (const Case& c : cases) {
        music::ChordCollection collection;
        ASSERT_TRUE(collection.read(c.bytes).ok());
        std::size_t sections = 0;
        for (const auto& group : collection.baseGroups())
            sections += group.sections.size();
        EXPECT_LE(collection.baseGroups().size(), 1u) << c.bytes;
        EXPECT_LE(sections, 1u) << c.bytes;
        EXPECT_LE(collection.chordCount(), 1u) << c.bytes;
    }
}
