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

/// Sorted lists of counted values in a temporary file, and the merging of them.
namespace tavix::profiling {

/// What one list says: a text with its count, and the key by which lists of another order than the texts' are sorted.
struct RunRecord {
    std::uint64_t key = 0;
    std::uint64_t count = 0;
    std::string_view text;
};

enum class RunOrder {
    Text,       ///< by the bytes of the text; equal texts become one, with the sum of their counts
    Key,        ///< by the key; equal keys in the order of the lists
    KeyInteger, ///< by the key, then by value as an integer of any size, then in the order of the lists
};

/// A sorted list in pieces of the file.
class SortedRun {
  public:
    struct Extent {
        std::uint64_t offset = 0;
        std::uint64_t size = 0;
    };

    std::vector<Extent> extents;
    unsigned level = 0; ///< how often its records were merged already
};

/// Writes one list. Records come in its order.
class RunOutput {
  public:
    RunOutput(SpillFile& file, std::size_t bufferSize);

    [[nodiscard]] Status add(const RunRecord& record);
    [[nodiscard]] Result<SortedRun> finish();

  private:
    Status flush();

    SpillFile& m_file;
    std::size_t m_bufferSize;
    std::vector<std::byte> m_buffer;
    SortedRun m_run;
};

/// Reads one list from its beginning.
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

/// The records of several lists as one sorted list.
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
    /// Moves the first input on and finds the new first.
    [[nodiscard]] Status advance();
    void siftDown(std::size_t at);

    RunOrder m_order;
    std::vector<RunInput> m_inputs;
    std::vector<Head> m_heads; ///< a heap, the first record on top
    bool m_isStarted = false;
    bool m_isTopUsed = false;
    RunRecord m_record;
    std::vector<char> m_text; ///< of m_record while further inputs are asked for the same text
};

/// The lists of one column in one order. There are never many: lists of the same size are merged to a larger one.
class RunSet {
  public:
    explicit RunSet(RunOrder order) : m_order(order) {}

    [[nodiscard]] bool isEmpty() const { return m_runs.empty(); }
    /// Takes the list that follows the ones before.
    [[nodiscard]] Status add(SpillFile& file, SortedRun run);
    [[nodiscard]] RunMerge merge(const SpillFile& file, std::size_t memory) const {
        return {file, m_runs, m_order, memory};
    }
    /// Gives the space back.
    void release(SpillFile& file);

  private:
    RunOrder m_order;
    std::vector<SortedRun> m_runs;
};

/// The first eight bytes from `from` on as a number that is ordered as they are; missing ones count as 0.
[[nodiscard]] inline std::uint64_t prefixOf(std::string_view text, std::size_t from = 0) {
    std::uint64_t word = 0;
    if (text.size() >= from + sizeof word)
        std::memcpy(&word, text.data() + from, sizeof word);
    else if (text.size() > from)
        std::memcpy(&word, text.data() + from, text.size() - from);
    return __builtin_bswap64(word);
}

} // namespace tavix::profiling
