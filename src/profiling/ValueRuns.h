#pragma once

#include "base/Result.h"
#include "profiling/SpillFile.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

/// Sorted runs of counted values in a temporary file, and merging them (external merge sort).
namespace tavix::profiling {

/// A record of a run: a text with its count, and the key by which runs are sorted when it is not by text.
struct RunRecord {
    std::uint64_t key = 0;
    std::uint64_t count = 0;
    std::string_view text;
};

enum class RunOrder {
    Text,       ///< by the bytes of the text; records of equal texts are merged and their counts added
    Key,        ///< by the key, then in the order of the runs
    KeyInteger, ///< by the key, then by value as an integer of any size, then in the order of the runs
};

/// A sorted run in extents of the file.
class SortedRun {
  public:
    struct Extent {
        std::uint64_t offset = 0;
        std::uint64_t size = 0;
    };

    std::vector<Extent> extents;
    unsigned level = 0; ///< how often its records were merged
};

/// Writes one run. Records must come in its order.
class RunOutput {
  public:
    static constexpr std::size_t kBuffer = std::size_t{64} << 10;

    explicit RunOutput(SpillFile& file, std::size_t bufferSize = kBuffer);

    [[nodiscard]] Status add(const RunRecord& record);
    [[nodiscard]] Result<SortedRun> finish();

  private:
    Status flush();

    SpillFile& m_file;
    std::size_t m_bufferSize;
    std::vector<std::byte> m_buffer;
    SortedRun m_run;
};

/// Reads one run from its beginning.
class RunInput {
  public:
    RunInput(const SpillFile& file, const SortedRun& run, std::size_t bufferSize);

    /// False at the end. The text of the record lives until the next call.
    [[nodiscard]] Result<bool> next();
    [[nodiscard]] const RunRecord& record() const { return m_record; }

  private:
    Status need(std::size_t size);

    const SpillFile& m_file;
    const SortedRun* m_run;
    std::size_t m_extent = 0;
    std::uint64_t m_inExtent = 0;
    std::vector<std::byte> m_buffer;
    std::size_t m_at = 0;
    std::size_t m_end = 0;
    std::size_t m_bufferSize;
    RunRecord m_record;
};

/// Merges several runs into one sorted sequence of records.
class RunMerge {
  public:
    RunMerge(const SpillFile& file, std::span<const SortedRun> runs, RunOrder order, std::size_t memory);

    [[nodiscard]] Result<bool> next();
    /// Valid until the next call.
    [[nodiscard]] const RunRecord& record() const { return m_record; }

  private:
    struct Head {
        std::uint64_t key = 0; ///< of the record, or the first bytes of its text
        std::uint32_t input = 0;
    };
    [[nodiscard]] bool isBefore(const Head& left, const Head& right) const;
    [[nodiscard]] Head headOf(std::uint32_t input) const;
    [[nodiscard]] Status start();
    /// Advances the first input and restores the heap.
    [[nodiscard]] Status advance();
    void siftDown(std::size_t at);

    RunOrder m_order;
    std::vector<RunInput> m_inputs;
    std::vector<Head> m_heads; ///< a heap, the first record on top
    bool m_isStarted = false;
    bool m_isTopUsed = false;
    RunRecord m_record;
    std::vector<char> m_text; ///< the text of m_record while other inputs are read
};

/// The runs of one column in one order. There are never many, since runs of one level are merged into a larger one.
class RunSet {
  public:
    explicit RunSet(RunOrder order) : m_order(order) {}

    [[nodiscard]] bool isEmpty() const { return m_runs.empty(); }
    /// Adds the run that follows the others.
    [[nodiscard]] Status add(SpillFile& file, SortedRun run);
    [[nodiscard]] RunMerge merge(const SpillFile& file, std::size_t memory) const {
        return {file, m_runs, m_order, memory};
    }
    /// Frees the runs' space in the file.
    void release(SpillFile& file);

  private:
    RunOrder m_order;
    std::vector<SortedRun> m_runs;
};

/// The eight bytes from `from` on as a number with the same order; missing bytes count as 0.
[[nodiscard]] inline std::uint64_t prefixOf(std::string_view text, std::size_t from = 0) {
    std::uint64_t word = 0;
    if (text.size() >= from + sizeof word)
        std::memcpy(&word, text.data() + from, sizeof word);
    else if (text.size() > from)
        std::memcpy(&word, text.data() + from, text.size() - from);
    return __builtin_bswap64(word);
}

} // namespace tavix::profiling
