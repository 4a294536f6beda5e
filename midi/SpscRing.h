#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <type_traits>

namespace midi {

/**
 * A bounded lock-free queue for exactly one producer thread and one consumer thread (the player
 * and JACK's process callback, or the player and the window). Nothing is allocated after
 * construction and no call blocks, so both ends may run on a real-time thread.
 *
 * Holds up to Capacity - 1 items; Capacity is a power of two. The producer may change threads
 * (and so may the consumer) when the hand-over itself synchronises, as starting or joining a
 * thread does.
 */
template <typename T, std::size_t Capacity> class SpscRing
{
    static_assert(Capacity >= 2 && (Capacity & (Capacity - 1)) == 0, "a power of two");
    static_assert(std::is_trivially_copyable_v<T>, "items are copied in and out");

public:
    /** Producer: false, and nothing queued, when the ring is full. */
    bool push(const T& item)
    {
        const std::size_t tail = m_tail.load(std::memory_order_relaxed);
        const std::size_t next = (tail + 1) & kMask;
        if (next == m_head.load(std::memory_order_acquire))
            return false;
        m_items[tail] = item;
        m_tail.store(next, std::memory_order_release);
        return true;
    }

    /** Consumer: the oldest item, or null when the ring is empty. Valid until `pop`. */
    const T* front() const
    {
        const std::size_t head = m_head.load(std::memory_order_relaxed);
        if (head == m_tail.load(std::memory_order_acquire))
            return nullptr;
        return &m_items[head];
    }

    /** Consumer: drops the oldest item; nothing when the ring is empty. */
    void pop()
    {
        const std::size_t head = m_head.load(std::memory_order_relaxed);
        if (head == m_tail.load(std::memory_order_acquire))
            return;
        m_head.store((head + 1) & kMask, std::memory_order_release);
    }

    /** Either side: whether nothing is queued (a snapshot). */
    bool empty() const
    {
        return m_head.load(std::memory_order_acquire) == m_tail.load(std::memory_order_acquire);
    }

    static constexpr std::size_t capacity() { return Capacity - 1; }

private:
    static constexpr std::size_t kMask = Capacity - 1;
    static constexpr std::size_t kCacheLine = 64;
    // The two indices sit a cache line apart so the two threads do not share one (padding rather
    // than alignas, which some compilers warn about).
    std::atomic<std::size_t> m_head{0}; // written by the consumer
    [[maybe_unused]] char m_headPadding[kCacheLine - sizeof(std::atomic<std::size_t>)]{};
    std::atomic<std::size_t> m_tail{0}; // written by the producer
    [[maybe_unused]] char m_tailPadding[kCacheLine - sizeof(std::atomic<std::size_t>)]{};
    std::array<T, Capacity> m_items{};
};

} // namespace midi
