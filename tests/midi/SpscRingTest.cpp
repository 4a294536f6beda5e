#include "midi/SpscRing.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

using midi::SpscRing;

TEST(SpscRing, HoldsOneLessThanItsSizeAndKeepsTheOrderAcrossTheWrap)
{
    SpscRing<int, 8> ring;
    EXPECT_TRUE(ring.empty());
    EXPECT_EQ(ring.front(), nullptr);
    ring.pop(); // nothing to drop: no harm

    // Several rounds, so the indices wrap around the end of the storage more than once.
    int next = 0;
    int expected = 0;
    for (int round = 0; round < 5; ++round) {
        for (int i = 0; i < 7; ++i)
            ASSERT_TRUE(ring.push(next++)) << "round " << round << ", item " << i;
        EXPECT_FALSE(ring.push(-1)) << "a full ring takes nothing more";
        for (int i = 0; i < (round % 2 == 0 ? 7 : 4); ++i) {
            ASSERT_NE(ring.front(), nullptr);
            EXPECT_EQ(*ring.front(), expected++);
            ring.pop();
        }
        // Odd rounds stop half-way above; the rest comes out in order all the same.
        while (!ring.empty()) {
            EXPECT_EQ(*ring.front(), expected++);
            ring.pop();
        }
    }
    EXPECT_EQ(expected, next);
    EXPECT_EQ((SpscRing<int, 8>::capacity()), 7u);
}

TEST(SpscRing, APayloadWrittenBeforeThePushIsSeenWholeOnTheOtherThread)
{
    // Each item carries its sequence number twice: a torn or early read shows as a mismatch.
    struct Item
    {
        std::uint64_t number;
        std::uint64_t check;
    };
    constexpr std::uint64_t kItems = 200'000;
    auto ring = std::make_unique<SpscRing<Item, 64>>();
    std::thread producer([&ring] {
        for (std::uint64_t i = 0; i < kItems;) {
            if (ring->push({i, ~i}))
                ++i;
            else
                std::this_thread::yield();
        }
    });
    std::uint64_t expected = 0;
    std::uint64_t bad = 0;
    while (expected < kItems) {
        const Item* item = ring->front();
        if (item == nullptr) {
            std::this_thread::yield();
            continue;
        }
        bad += item->number != expected || item->check != ~expected;
        ++expected;
        ring->pop();
    }
    producer.join();
    EXPECT_EQ(bad, 0u);
    EXPECT_TRUE(ring->empty());
}
