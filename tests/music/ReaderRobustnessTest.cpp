// Every reader takes damaged input without crashing and without work out of proportion to the
// bytes it was given.

#include "music/ChordCollection.h"
#include "music/ChordTypeList.h"
#include "music/ScaleList.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

const std::string kValidCcl = "Tonalmancer_ConstructChords\n2\nmaj\n1;3;5;\n7#9\n1;3;5;b7;#9th;\n";
const std::string kValidScl = "Tonalmancer_Scales\n2\nmajor\nxoxoxxoxoxox\nblues\nxooxoxxxooxo\n";

std::string validCrd()
{
    music::ChordTypeList types;
    (void)types.read(kValidCcl);
    music::ChordCollection collection;
    collection.generateList(types);
    const std::array<bool, 12> ticks{true, false, false, false, true, false, false, true};
    (void)collection.addScaleGroup(0, "scale", ticks, 0, true);
    return collection.toBytes();
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

TEST(Readers, SurviveEveryTruncationRandomBytesAndRandomDamage)
{
    const std::string valid[] = {validCrd(), kValidCcl, kValidScl};
    for (const std::string& full : valid) {
        for (std::size_t length = 0; length <= full.size(); ++length)
            readWithAll(full.substr(0, length));
    }
    std::mt19937 random(20240601);
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
    const char* const cases[] = {
        "Tonalmancer_Chords\n65535\n",
        "Tonalmancer_Chords\n1\nG\n65535\n",
        "Tonalmancer_Chords\n1\nG\n1\nS\n65535\n1\n255\n",
        "Tonalmancer_Chords\n1\nG\n1\nS\n1\n0\nsub\n65535\nC\n255\n",
    };
    for (const std::string bytes : cases) {
        music::ChordCollection collection;
        ASSERT_TRUE(collection.read(bytes).ok());
        // At most one group, section and chord: written back, no more than the file held.
        EXPECT_LE(collection.toBytes().size(), bytes.size() + 16) << bytes;
    }
}
