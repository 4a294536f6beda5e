// The data files shipped with the program: enough valid, distinct entries, and a chord database
// that is exactly what regenerating it from them gives (tools/make-default-crd.sh).

#include "music/DefaultDatabase.h"
#include "music/FileBytes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace {

const std::filesystem::path kData = std::filesystem::path(TM_SOURCE_DIR) / "data";

} // namespace

TEST(ShippedData, ChordTypesAreManyValidAndDistinct)
{
    music::ChordTypeList types;
    ASSERT_TRUE(types.load(kData / music::ChordTypeList::kDefaultFileName).ok());
    EXPECT_GE(types.count(), 100);
    std::set<std::vector<std::uint8_t>> lists;
    std::set<std::string> names;
    for (const music::ChordType& type : types.types()) {
        const music::IntervalList intervals = type.intervals();
        EXPECT_TRUE(intervals.isUsable()) << type.name();
        EXPECT_TRUE(intervals.count() >= 2 && intervals.count() <= 5) << type.name();
        EXPECT_EQ(music::ChordTypeList::filterConstruction(type.construction()),
                  type.construction());
        EXPECT_TRUE(lists.insert(intervals.semitones()).second)
            << "same intervals: " << type.name();
        EXPECT_TRUE(names.insert(type.name()).second) << "same name: " << type.name();
    }
}

TEST(ShippedData, ScalesAreManyValidAndDistinct)
{
    music::ScaleList scales;
    ASSERT_TRUE(scales.load(kData / music::ScaleList::kDefaultFileName).ok());
    EXPECT_GE(scales.count(), 40);
    std::set<std::string> patterns;
    for (const music::ScaleType& scale : scales.scales()) {
        std::string pattern;
        EXPECT_TRUE(music::ScaleList::patternFromInput(scale.pattern(), pattern).ok())
            << scale.name();
        EXPECT_EQ(pattern.size(), 12u) << scale.name();
        EXPECT_EQ(scale.pattern()[0], 'x') << scale.name() << " must contain its root";
        EXPECT_TRUE(patterns.insert(scale.pattern()).second) << scale.name();
    }
    for (const std::string_view name : music::DefaultDatabase::kScaleGroups)
        EXPECT_NE(scales.find(name), nullptr) << name;
}

TEST(ShippedData, ChordDatabaseIsWhatRegeneratingGives)
{
    music::ChordTypeList types;
    music::ScaleList scales;
    ASSERT_TRUE(types.load(kData / music::ChordTypeList::kDefaultFileName).ok());
    ASSERT_TRUE(scales.load(kData / music::ScaleList::kDefaultFileName).ok());
    const std::string expected = music::DefaultDatabase::build(types, scales).toBytes();
    const auto shipped = music::readFileBytes(kData / music::ChordCollection::kDefaultFileName);
    EXPECT_TRUE(shipped == expected)
        << "data/default.crd is stale: cmake --build --preset dev --target regenerate-defaults";
}
