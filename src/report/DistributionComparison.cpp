#include "report/DistributionComparison.h"

#include "base/Characters.h"

#include <xxhash.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <random>
#include <string>
#include <utility>

namespace tavix {

namespace {

/// A random seed, so that nobody can choose texts that collide.
std::uint64_t seed() {
    static const std::uint64_t kSeed = std::uint64_t{std::random_device()()} << 32 | std::random_device()();
    return kSeed;
}

struct Hash {
    std::uint64_t place = 0;
    std::uint64_t tag = 0; ///< both are 0 for null

    Hash(std::string_view text, bool isNull) {
        if (isNull)
            return;
        const XXH128_hash_t hash = XXH3_128bits_withSeed(text.data(), text.size(), seed());
        place = hash.low64;
        tag = hash.high64;
    }
    /// The part of the hashes, of `parts` equal ones, that this hash belongs to. Doubling `parts` halves each part.
    [[nodiscard]] std::uint64_t part(std::uint64_t parts) const { return (place >> 32) * parts >> 32; }
};

/// The texts of one side by their hashes. Open addressing with linear probing; a count of 0 marks a free slot.
class MatchTable {
  public:
    static constexpr std::size_t kSlotBytes = 16;

    /// `slots` is a power of two.
    explicit MatchTable(std::size_t slots) : m_slots(slots), m_mask(slots - 1) {}

    void clear() {
        std::fill(m_slots.begin(), m_slots.end(), Slot());
        m_used = m_open = 0;
        m_openRows = 0;
    }
    [[nodiscard]] std::size_t slots() const { return m_slots.size(); }
    [[nodiscard]] bool isFull() const { return m_used * 4 >= m_slots.size() * 3; }
    void insert(const Hash& hash, std::int64_t count) {
        Slot& slot = find(hash);
        if (!slot.isFree())
            return;
        slot = {hash.tag, static_cast<std::uint64_t>(count)};
        ++m_used;
        ++m_open;
        m_openRows += count;
    }
    /// Marks a text as met and returns its count; 0 when the table does not have it.
    std::int64_t meet(const Hash& hash) {
        Slot& slot = find(hash);
        if (slot.isFree())
            return 0;
        const auto count = static_cast<std::int64_t>(slot.count & ~kMet);
        if (!slot.isMet()) {
            --m_open;
            m_openRows -= count;
        }
        slot.count |= kMet;
        return count;
    }
    [[nodiscard]] bool isMet(const Hash& hash) { return find(hash).isMet(); }
    void prefetch(const Hash& hash) const {
        __builtin_prefetch(&m_slots[static_cast<std::size_t>(hash.place) & m_mask], 1);
    }
    /// The number of texts that were not met.
    [[nodiscard]] std::size_t open() const { return m_open; }
    [[nodiscard]] std::int64_t openRows() const { return m_openRows; }

  private:
    static constexpr std::uint64_t kMet = std::uint64_t{1} << 63;

    struct Slot {
        std::uint64_t tag = 0;
        std::uint64_t count = 0;

        [[nodiscard]] bool isFree() const { return count == 0; }
        [[nodiscard]] bool isMet() const { return (count & kMet) != 0; }
    };

    Slot& find(const Hash& hash) {
        for (std::size_t i = static_cast<std::size_t>(hash.place) & m_mask;; i = (i + 1) & m_mask)
            if (m_slots[i].isFree() || m_slots[i].tag == hash.tag)
                return m_slots[i];
    }

    std::vector<Slot> m_slots;
    std::size_t m_mask;
    std::size_t m_used = 0;
    std::size_t m_open = 0;
    std::int64_t m_openRows = 0;
};

KvbString exampleOf(std::string_view text, bool isNull) {
    if (isNull)
        return {};
    return shortened(text, kLongestText);
}

bool textIsLess(const KvbString& a, const KvbString& b) {
    return a.isNull() != b.isNull() ? a.isNull() : a.view() < b.view();
}

/// Keeps the best changes offered, in the order of `better`.
template <typename Better>
class TopList {
  public:
    TopList(std::size_t limit, Better better) : m_limit(limit), m_better(std::move(better)) {}

    /// Whether a change with these counts could be kept, asked before its text is copied.
    [[nodiscard]] bool mayTake(std::int64_t before, std::int64_t after) const {
        if (m_heap.size() < m_limit)
            return true;
        return m_limit > 0 && !m_better.byCounts(m_heap.front(), ValueChange{{}, before, after});
    }
    void offer(ValueChange change) {
        if (m_heap.size() == m_limit) {
            if (m_limit == 0 || !m_better(change, m_heap.front()))
                return;
            std::pop_heap(m_heap.begin(), m_heap.end(), m_better);
            m_heap.pop_back();
        }
        m_heap.push_back(std::move(change));
        std::push_heap(m_heap.begin(), m_heap.end(), m_better);
    }
    [[nodiscard]] std::vector<ValueChange> sorted() && {
        std::sort_heap(m_heap.begin(), m_heap.end(), m_better);
        return std::move(m_heap);
    }

  private:
    std::size_t m_limit;
    Better m_better;
    std::vector<ValueChange> m_heap; ///< the worst on top
};

struct MoreFrequent {
    [[nodiscard]] bool byCounts(const ValueChange& a, const ValueChange& b) const {
        return a.before + a.after > b.before + b.after;
    }
    [[nodiscard]] bool operator()(const ValueChange& a, const ValueChange& b) const {
        return byCounts(a, b) || (!byCounts(b, a) && textIsLess(a.text, b.text));
    }
};

/// The sum over texts that DistributionChanges::shareByGrowth is made of, in rows.
class Fluctuation {
  public:
    /// `before` and `after` are the rows of the two runs, in either order.
    Fluctuation(std::int64_t before, std::int64_t after)
        : m_added(static_cast<double>(std::abs(after - before)) /
                  static_cast<double>(std::max<std::int64_t>(1, std::min(before, after)))) {}

    /// A text of the run with fewer rows.
    void add(std::int64_t count) {
        // The texts come by descending count, so most of them have that of the one before.
        if (count != m_count) {
            m_count = count;
            m_rows = rowsOf(static_cast<double>(count) * m_added, count == 1);
        }
        m_sum += m_rows;
    }
    [[nodiscard]] double sum() const { return m_sum; }

  private:
    /// Half the mean deviation of a Poisson distribution: exact below 1, its limit above.
    static double rowsOf(double expected, bool isKey) {
        if (isKey)
            return expected;
        return expected < 1 ? expected * std::exp(-expected) : std::sqrt(expected / (2 * std::numbers::pi));
    }

    double m_added; ///< rows for each row
    std::int64_t m_count = -1;
    double m_rows = 0;
    double m_sum = 0;
};

/// Compares shares as whole numbers over their common denominator; rounding errors would order equal shares.
struct MovedFarther {
    __extension__ using Wide = __int128;

    std::int64_t rowsBefore;
    std::int64_t rowsAfter;

    [[nodiscard]] std::pair<Wide, std::int64_t> distance(const ValueChange& change) const {
        const Wide share = Wide{change.after} * rowsBefore - Wide{change.before} * rowsAfter;
        return {share < 0 ? -share : share, std::abs(change.after - change.before)};
    }
    [[nodiscard]] bool byCounts(const ValueChange& a, const ValueChange& b) const { return distance(a) > distance(b); }
    [[nodiscard]] bool operator()(const ValueChange& a, const ValueChange& b) const {
        const auto ofA = distance(a);
        const auto ofB = distance(b);
        return ofA > ofB || (ofA == ofB && textIsLess(a.text, b.text));
    }
};

std::size_t slotsFor(std::int64_t texts, std::size_t memory) {
    const std::size_t most = std::max<std::size_t>(memory / MatchTable::kSlotBytes, 64);
    std::size_t slots = 64;
    while (slots * 2 <= most && static_cast<double>(slots) * 0.7 < static_cast<double>(texts))
        slots *= 2;
    return slots;
}

/// Keeps the smaller side in a table and walks the larger one.
class Comparison {
  public:
    Comparison(CountedTexts& before, CountedTexts& after, const ComparisonLimits& limits)
        : m_isKeptBefore(before.size() <= after.size()),
          m_kept(m_isKeptBefore ? before : after),
          m_passing(m_isKeptBefore ? after : before),
          m_table(slotsFor(m_kept.size(), limits.memory)),
          m_top(limits.top),
          m_fill(std::max<std::int64_t>(1, static_cast<std::int64_t>(m_table.slots() * 7 / 10))),
          m_moved(limits.top, {before.rows(), after.rows()}),
          m_onlyKept(limits.top, {}),
          m_onlyPassing(limits.top, {}) {
        m_changes.rowsBefore = before.rows();
        m_changes.rowsAfter = after.rows();
    }

    DistributionChanges run() {
        const auto parts = static_cast<std::uint64_t>((m_kept.size() + m_fill - 1) / m_fill);
        for (std::uint64_t part = 0; part < std::max<std::uint64_t>(1, parts); ++part)
            matchPart(part, std::max<std::uint64_t>(1, parts));
        ofKept().top = std::move(m_onlyKept).sorted();
        ofPassing().top = std::move(m_onlyPassing).sorted();
        m_changes.moved.top = std::move(m_moved).sorted();
        const double before = static_cast<double>(m_changes.rowsBefore);
        const double after = static_cast<double>(m_changes.rowsAfter);
        if (before > 0 && after > 0) {
            m_changes.shareMoved = static_cast<double>(m_gained) / (before * after);
            if (before != after)
                m_changes.shareByGrowth = std::min(m_changes.shareMoved, m_fluctuation / std::max(before, after));
        } else {
            m_changes.shareMoved = before == after ? 0 : 1;
        }
        return std::move(m_changes);
    }

  private:
    __extension__ using Wide = __int128;

    /// The share that a text has gained, over the product of the rows of both runs.
    void gained(std::int64_t before, std::int64_t after) {
        m_gained += std::max<Wide>(0, Wide{after} * m_changes.rowsBefore - Wide{before} * m_changes.rowsAfter);
    }
    DistributionChanges::Group& ofKept() { return m_isKeptBefore ? m_changes.vanished : m_changes.appeared; }
    DistributionChanges::Group& ofPassing() { return m_isKeptBefore ? m_changes.appeared : m_changes.vanished; }

    template <typename List>
    static void offer(List& list, std::string_view text, bool isNull, std::int64_t before, std::int64_t after) {
        if (list.mayTake(before, after))
            list.offer({exampleOf(text, isNull), before, after});
    }
    void moved(std::string_view text, bool isNull, std::int64_t kept, std::int64_t passing) {
        const std::int64_t before = m_isKeptBefore ? kept : passing;
        const std::int64_t after = m_isKeptBefore ? passing : kept;
        ++m_changes.moved.texts;
        m_changes.moved.rowsBefore += before;
        m_changes.moved.rowsAfter += after;
        offer(m_moved, text, isNull, before, after);
    }
    void onlyPassing(std::string_view text, bool isNull, std::int64_t count) {
        ++ofPassing().texts;
        (m_isKeptBefore ? ofPassing().rowsAfter : ofPassing().rowsBefore) += count;
        offer(m_onlyPassing, text, isNull, m_isKeptBefore ? 0 : count, m_isKeptBefore ? count : 0);
    }
    /// Derived from the table, which saves another walk over all texts.
    void countOnlyKept() {
        if (!m_isKeptBefore)
            gained(0, m_table.openRows());
        ofKept().texts += static_cast<std::int64_t>(m_table.open());
        (m_isKeptBefore ? ofKept().rowsBefore : ofKept().rowsAfter) += m_table.openRows();
    }

    /// Calls `visit(hash, text, isNull, count)` for the texts of a part until it returns false. Their slots are far
    /// apart in memory, so a batch of slots is prefetched before the first one is read.
    template <typename Visit>
    void walkPart(CountedTexts& side, std::uint64_t part, std::uint64_t parts, const Visit& visit) {
        m_batch.clear();
        m_batchText.clear();
        bool goesOn = true;
        const auto work = [&] {
            for (const Waiting& one : m_batch) {
                const std::string_view text = std::string_view(m_batchText).substr(one.begin, one.length);
                if (goesOn && !visit(one.hash, text, one.isNull, one.count))
                    goesOn = false;
            }
            m_batch.clear();
            m_batchText.clear();
            return goesOn;
        };
        side.walk([&](std::string_view text, bool isNull, std::int64_t count) {
            const Hash hash(text, isNull);
            if (count <= 0 || hash.part(parts) != part)
                return true;
            m_table.prefetch(hash);
            const std::string_view kept = text.substr(0, kLongestText + 1);
            m_batch.push_back({hash, count, m_batchText.size(), kept.size(), isNull});
            m_batchText += kept;
            return m_batch.size() < kBatch || work();
        });
        work();
    }

    void matchPart(std::uint64_t part, std::uint64_t parts) {
        m_table.clear();
        bool fits = true;
        const bool isKeptShorter = (m_changes.rowsBefore < m_changes.rowsAfter) == m_isKeptBefore;
        Fluctuation fluctuation(m_changes.rowsBefore, m_changes.rowsAfter);
        walkPart(m_kept, part, parts, [&](const Hash& hash, std::string_view, bool, std::int64_t count) {
            fits = !m_table.isFull();
            if (fits) {
                m_table.insert(hash, count);
                if (isKeptShorter)
                    fluctuation.add(count);
            }
            return fits;
        });
        if (!fits) {
            matchPart(2 * part, 2 * parts);
            matchPart(2 * part + 1, 2 * parts);
            return;
        }
        walkPart(m_passing, part, parts, [&](const Hash& hash, std::string_view text, bool isNull, std::int64_t count) {
            const std::int64_t kept = m_table.meet(hash);
            gained(m_isKeptBefore ? kept : count, m_isKeptBefore ? count : kept);
            if (!isKeptShorter)
                fluctuation.add(count);
            if (kept == 0)
                onlyPassing(text, isNull, count);
            else if (kept != count)
                moved(text, isNull, kept, count);
            return true;
        });
        m_fluctuation += fluctuation.sum();
        countOnlyKept();
        std::size_t wanted = std::min(m_table.open(), m_top);
        if (wanted == 0)
            return;
        // The texts are walked by descending count.
        walkPart(m_kept, part, parts, [&](const Hash& hash, std::string_view text, bool isNull, std::int64_t count) {
            if (m_table.isMet(hash))
                return true;
            offer(m_onlyKept, text, isNull, m_isKeptBefore ? count : 0, m_isKeptBefore ? 0 : count);
            return --wanted > 0;
        });
    }

    static constexpr std::size_t kBatch = 256;

    struct Waiting {
        Hash hash;
        std::int64_t count;
        std::size_t begin; ///< in m_batchText
        std::size_t length;
        bool isNull;
    };

    bool m_isKeptBefore;
    CountedTexts& m_kept;
    CountedTexts& m_passing;
    MatchTable m_table;
    std::size_t m_top;
    std::int64_t m_fill; ///< texts that a part should have
    TopList<MovedFarther> m_moved;
    TopList<MoreFrequent> m_onlyKept;
    TopList<MoreFrequent> m_onlyPassing;
    Wide m_gained = 0;
    double m_fluctuation = 0;
    DistributionChanges m_changes;
    std::vector<Waiting> m_batch;
    std::string m_batchText; ///< of each text the part that may be shown
};

} // namespace

DistributionChanges compareDistributions(CountedTexts& before, CountedTexts& after, const ComparisonLimits& limits) {
    return Comparison(before, after, limits).run();
}

} // namespace tavix
