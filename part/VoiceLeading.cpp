#include "part/VoiceLeading.h"

#include "part/ChordVoicer.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>

namespace part {

namespace {

constexpr int kMaxPairs = PartChord::kMaxNotes;

/** Which voice of the first chord goes to which voice of the second, in order. */
struct Matching
{
    std::array<std::uint8_t, kMaxPairs> from{};
    std::array<std::uint8_t, kMaxPairs> to{};
    int count = 0;
};

/**
 * Matches every voice of the larger chord to one voice of the smaller, in order and covering
 * every voice of the smaller, with the least movement. Equal counts give bass to bass and so on.
 */
Matching matchVoices(const Voicing& a, const Voicing& b)
{
    Matching m;
    if (a.count == b.count) {
        for (std::uint8_t i = 0; i < a.count; ++i) {
            m.from[i] = i;
            m.to[i] = i;
        }
        m.count = a.count;
        return m;
    }
    const bool aIsSmall = a.count < b.count;
    const Voicing& small = aIsSmall ? a : b;
    const Voicing& large = aIsSmall ? b : a;
    const int s = small.count;
    const int l = large.count;
    constexpr int kInfinite = std::numeric_limits<int>::max() / 2;
    // best[j][i]: least movement of large voices 0..j with large voice j matched to small voice i.
    std::array<std::array<int, PartChord::kMaxNotes>, PartChord::kMaxNotes> best{};
    for (int j = 0; j < l; ++j) {
        for (int i = 0; i < s; ++i) {
            const int distance = std::abs(large.notes[static_cast<std::size_t>(j)] -
                                          small.notes[static_cast<std::size_t>(i)]);
            int before = kInfinite;
            if (j == 0)
                before = i == 0 ? 0 : kInfinite;
            else {
                before = best[j - 1u][static_cast<std::size_t>(i)];
                if (i > 0)
                    before = std::min(before, best[j - 1u][i - 1u]);
            }
            best[static_cast<std::size_t>(j)][static_cast<std::size_t>(i)] =
                before >= kInfinite ? kInfinite : before + distance;
        }
    }
    // Walk back from the two top voices; on a tie the lower voices keep sharing one partner.
    int i = s - 1;
    m.count = l;
    for (int j = l - 1; j >= 0; --j) {
        const auto pair = static_cast<std::size_t>(j);
        m.from[pair] = static_cast<std::uint8_t>(aIsSmall ? i : j);
        m.to[pair] = static_cast<std::uint8_t>(aIsSmall ? j : i);
        if (j > 0 && i > 0 && best[j - 1u][i - 1u] < best[j - 1u][static_cast<std::size_t>(i)])
            --i;
    }
    return m;
}

int direction(int from, int to)
{
    return (to > from) - (to < from);
}

bool isPerfect(int interval)
{
    const int cls = interval % 12;
    return cls == 0 || cls == 7;
}

/** Lexicographic: the cost first, then the drift from the anchor as a tie-break. */
struct Score
{
    long long cost = 0;
    long long drift = 0;

    friend auto operator<=>(const Score&, const Score&) = default;
};

/** The indices of the chords that have notes. */
std::vector<int> chordsWithNotes(const std::vector<PartChord>& chords)
{
    std::vector<int> indices;
    for (std::size_t i = 0; i < chords.size(); ++i) {
        if (chords[i].noteCount > 0)
            indices.push_back(static_cast<int>(i));
    }
    return indices;
}

} // namespace

int VoiceLeadingCost::total() const
{
    return movement * VoiceLeading::kMovementWeight + parallels * VoiceLeading::kParallelPenalty +
           crossings * VoiceLeading::kCrossingPenalty;
}

VoiceLeadingCost& VoiceLeadingCost::operator+=(const VoiceLeadingCost& other)
{
    movement += other.movement;
    parallels += other.parallels;
    crossings += other.crossings;
    return *this;
}

VoiceLeadingCost VoiceLeading::transitionCost(const Voicing& from, const Voicing& to)
{
    VoiceLeadingCost cost;
    if (from.count == 0 || to.count == 0)
        return cost;
    const Matching m = matchVoices(from, to);
    const auto x = [&](int pair) {
        return int(from.notes[m.from[static_cast<std::size_t>(pair)]]);
    };
    const auto y = [&](int pair) { return int(to.notes[m.to[static_cast<std::size_t>(pair)]]); };
    const auto distinctVoices = [&](int p, int q) {
        return m.from[static_cast<std::size_t>(p)] != m.from[static_cast<std::size_t>(q)] &&
               m.to[static_cast<std::size_t>(p)] != m.to[static_cast<std::size_t>(q)];
    };

    for (int p = 0; p < m.count; ++p) {
        cost.movement += std::abs(y(p) - x(p));
        for (int q = p + 1; q < m.count; ++q) {
            if (!distinctVoices(p, q))
                continue;
            const int motion = direction(x(p), y(p));
            const int before = x(q) - x(p);
            const int after = y(q) - y(p);
            if (motion != 0 && motion == direction(x(q), y(q)) && isPerfect(before) &&
                isPerfect(after) && before % 12 == after % 12)
                ++cost.parallels;
        }
        if (p + 1 < m.count && distinctVoices(p, p + 1)) {
            if (y(p) > x(p + 1))
                ++cost.crossings;
            if (y(p + 1) < x(p))
                ++cost.crossings;
        }
    }
    return cost;
}

VoiceLeadingCost VoiceLeading::runCost(const std::vector<PartChord>& chords)
{
    VoiceLeadingCost cost;
    bool havePrevious = false;
    Voicing previous;
    for (const PartChord& chord : chords) {
        if (chord.noteCount == 0)
            continue;
        const Voicing current = ChordVoicer::sortedNotes(chord);
        if (havePrevious)
            cost += transitionCost(previous, current);
        previous = current;
        havePrevious = true;
    }
    return cost;
}

music::Result VoiceLeading::lead(const std::vector<PartChord>& chords,
                                 const VoicingOptions& options, bool keepFirst,
                                 std::vector<PartChord>& out, int indexBase)
{
    if (const music::Result checked = ChordVoicer::checkOptions(options); !checked)
        return checked;
    const std::vector<int> voiced = chordsWithNotes(chords);
    if (voiced.empty()) {
        out = chords;
        return music::Result::success();
    }

    std::vector<std::vector<Voicing>> choices(voiced.size());
    for (std::size_t k = 0; k < voiced.size(); ++k) {
        const PartChord& chord = chords[static_cast<std::size_t>(voiced[k])];
        if (k == 0 && keepFirst)
            choices[k].push_back(ChordVoicer::sortedNotes(chord));
        else
            choices[k] = ChordVoicer::candidates(chord, options);
        if (choices[k].empty()) {
            return music::Result::failure(
                ChordVoicer::noVoicingMessage(chord, options, voiced[k] + indexBase));
        }
    }

    const Voicing& kept = choices.front().front();
    const long long anchor =
        keepFirst ? kept.lowest() + kept.highest() : int(options.low) + int(options.high);
    const auto drift = [&](const Voicing& v) {
        return std::llabs(v.lowest() + v.highest() - anchor);
    };

    // score[j]: the best run ending in option j of the chord at hand; from[k][j]: its predecessor.
    std::vector<Score> score;
    for (const Voicing& v : choices.front())
        score.push_back({0, drift(v)});
    std::vector<std::vector<int>> from(voiced.size());
    for (std::size_t k = 1; k < voiced.size(); ++k) {
        const std::vector<Voicing>& previous = choices[k - 1];
        const std::vector<Voicing>& current = choices[k];
        std::vector<Score> next(current.size());
        from[k].assign(current.size(), 0);
        for (std::size_t j = 0; j < current.size(); ++j) {
            const long long ownDrift = drift(current[j]);
            Score best{std::numeric_limits<long long>::max(), 0};
            for (std::size_t i = 0; i < previous.size(); ++i) {
                const Score candidate{score[i].cost +
                                          transitionCost(previous[i], current[j]).total(),
                                      score[i].drift + ownDrift};
                if (candidate < best) {
                    best = candidate;
                    from[k][j] = static_cast<int>(i);
                }
            }
            next[j] = best;
        }
        score = std::move(next);
    }

    std::vector<PartChord> result = chords;
    int choice = static_cast<int>(std::min_element(score.begin(), score.end()) - score.begin());
    for (std::size_t k = voiced.size(); k-- > 0;) {
        if (k > 0 || !keepFirst) {
            PartChord& chord = result[static_cast<std::size_t>(voiced[k])];
            chord = ChordVoicer::withNotes(chord, choices[k][static_cast<std::size_t>(choice)]);
        }
        if (k > 0)
            choice = from[k][static_cast<std::size_t>(choice)];
    }
    out = std::move(result);
    return music::Result::success();
}

music::Result VoiceLeading::voiceEach(const std::vector<PartChord>& chords,
                                      const VoicingOptions& options, bool keepFirst,
                                      std::vector<PartChord>& out, int indexBase)
{
    if (const music::Result checked = ChordVoicer::checkOptions(options); !checked)
        return checked;
    std::vector<PartChord> result = chords;
    bool first = true;
    for (std::size_t i = 0; i < result.size(); ++i) {
        if (result[i].noteCount == 0)
            continue;
        const bool keep = first && keepFirst;
        first = false;
        if (keep)
            continue;
        Voicing voicing;
        const music::Result voicedOne =
            ChordVoicer::voice(result[i], options, voicing, static_cast<int>(i) + indexBase);
        if (!voicedOne)
            return voicedOne;
        result[i] = ChordVoicer::withNotes(result[i], voicing);
    }
    out = std::move(result);
    return music::Result::success();
}

music::Result VoiceLeading::voicePart(const Part& part, int first, int last,
                                      const VoicingOptions& options, bool leadVoices,
                                      bool keepFirst, VoicedRun& out)
{
    if (first == kNoIndex)
        first = 0;
    if (last == kNoIndex || last >= part.count())
        last = part.count() - 1;
    if (first < 0 || first > last)
        return music::Result::failure(std::string(kEmptyRangeMessage));

    const std::vector<PartChord> run(part.chords().begin() + first,
                                     part.chords().begin() + last + 1);
    std::vector<PartChord> voiced;
    const music::Result result = leadVoices ? lead(run, options, keepFirst, voiced, first)
                                            : voiceEach(run, options, keepFirst, voiced, first);
    if (!result)
        return result;
    out.first = first;
    out.before = runCost(run);
    out.after = runCost(voiced);
    out.chords = std::move(voiced);
    return music::Result::success();
}

void VoiceLeading::apply(const VoicedRun& run, Part& part)
{
    for (std::size_t i = 0; i < run.chords.size(); ++i) {
        const int index = run.first + static_cast<int>(i);
        if (index >= 0 && index < part.count())
            part.chord(index) = run.chords[i];
    }
}

} // namespace part
