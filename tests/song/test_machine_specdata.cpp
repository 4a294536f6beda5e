#include "song_test_support.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "song/SpecDataStore.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

namespace {

namespace fs = std::filesystem;
using song::SpecDataStore;

// One entry written by hand from the format: "Bass" with data 01 02 and one attribute "A" = -2.
const std::string kOneEntry("\x01\x00"
                            "\x04\x00"
                            "Bass"
                            "\x02\x00\x00\x00\x01\x02"
                            "\x01\x00"
                            "A\x00\xFE\xFF\xFF\xFF",
                            2 + 2 + 4 + 4 + 2 + 2 + 2 + 4);

TEST(SpecDataStore, ReadsAndWritesTheByteLayout)
{
    SpecDataStore store;
    ASSERT_TRUE(store.loadFromBytes(kOneEntry).ok());
    ASSERT_EQ(store.size(), 1u);
    const song::SpecDataEntry* entry = store.find("BASS");
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->machineData, (std::vector<std::uint8_t>{1, 2}));
    EXPECT_EQ(entry->attributes, (decltype(entry->attributes){{"A", -2}}));
    EXPECT_EQ(store.toBytes(), kOneEntry);
}

TEST(SpecDataStore, RoundTripsThroughTheFileAndKeepsTheFirstMachinePerDll)
{
    const songtest::TempFolder folder("specdata");
    const fs::path& dir = folder.path();
    SpecDataStore store;
    ASSERT_TRUE(store.load(dir).ok());
    std::vector<std::uint8_t> big(70000);
    for (std::size_t i = 0; i < big.size(); ++i)
        big[i] = static_cast<std::uint8_t>(i * 7);
    store.add("Jeskola Bass 3", big, {{"Volume Ramp", 1}, {"", 0}, {"Max", 2147483647}});
    store.add("Empty", {}, {});
    store.add("jeskola bass 3", {9}, {}); // same DLL in another case: the first one stays
    ASSERT_TRUE(store.save(dir).ok());

    SpecDataStore again;
    ASSERT_TRUE(again.load(dir).ok());
    ASSERT_EQ(again.size(), 2u);
    EXPECT_EQ(again.entries()[0].machineData, big);
    EXPECT_EQ(again.entries()[0].attributes,
              (decltype(again.entries()[0].attributes){
                  {"Volume Ramp", 1}, {"", 0}, {"Max", 2147483647}}));
    EXPECT_TRUE(again.contains("EMPTY"));
    EXPECT_FALSE(again.contains("Jeskola"));
}

TEST(SpecDataStore, MissingFileIsCreatedEmpty)
{
    const songtest::TempFolder folder("specdata");
    SpecDataStore store;
    store.add("Old", {}, {});
    ASSERT_TRUE(store.load(folder.path()).ok());
    EXPECT_EQ(store.size(), 0u);
    EXPECT_EQ(music::readFileBytes(folder.path() / "specdata.dat"), std::string(2, '\0'));
}

TEST(SpecDataStore, RejectsDamagedBytesWithoutKeepingHalfAStore)
{
    std::string hugeData = kOneEntry;
    hugeData[8] = '\xFF';
    hugeData[11] = '\x7F'; // machine data size far beyond the file
    std::string manyAttributes = kOneEntry;
    manyAttributes[14] = '\xFF';
    manyAttributes[15] = '\xFF';
    std::string unterminated = kOneEntry.substr(0, kOneEntry.size() - 4);
    unterminated[17] = 'B'; // the attribute name's zero byte is gone

    const struct
    {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"empty", ""},
        {"one byte", std::string(1, '\0')},
        {"count above the entries", std::string("\x02\x00", 2) + kOneEntry.substr(2)},
        {"machine data past the end", hugeData},
        {"65535 attributes", manyAttributes},
        {"attribute name without its zero byte", unterminated},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        SpecDataStore store;
        store.add("Kept?", {}, {});
        const music::Result result = store.loadFromBytes(c.bytes);
        EXPECT_FALSE(result.ok());
        EXPECT_EQ(result.message(), "specdata.dat is damaged");
        EXPECT_EQ(store.size(), 0u);
    }
    // Every cut of a valid file fails cleanly.
    for (std::size_t length = 0; length < kOneEntry.size(); ++length) {
        SpecDataStore store;
        EXPECT_FALSE(store.loadFromBytes(kOneEntry.substr(0, length)).ok()) << length;
    }
}

} // namespace
