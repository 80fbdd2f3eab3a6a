#pragma once

#include "base/Result.h"
#include "profiling/KeyedSort.h"
#include "profiling/StopSignal.h"
#include "profiling/ValueRuns.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::profiling {

/// The distinct values of a column in some order, in batches, as often as needed from the beginning.
class ValueWalk {
  public:
    struct Row {
        std::uint64_t key = 0; ///< see ValueKey.h; meaningless in a walk by text
        std::uint64_t count = 0;
    };

    virtual ~ValueWalk() = default;

    [[nodiscard]] virtual Status rewind() = 0;
    /// The next batch, empty at the end; valid until the next call.
    [[nodiscard]] virtual Result<std::span<const Row>> next() = 0;
    /// The text of a row of the last batch.
    [[nodiscard]] virtual std::string_view text(std::size_t row) const = 0;
};

/// Calls use(batch), which returns a Status, for every batch from the beginning on. Fails with StopSignal::stopped().
template <typename Use>
Status forEachBatch(ValueWalk& walk, StopSignal& stop, Use use) {
    if (Status status = walk.rewind(); !status)
        return status;
    for (;;) {
        const auto batch = walk.next();
        if (!batch)
            return batch.error();
        if (stop.isStopped())
            return StopSignal::stopped();
        if (batch->empty())
            return {};
        if (Status status = use(*batch); !status)
            return status;
    }
}

/// Walks values in memory. The arguments must outlive it.
class EntryWalk final : public ValueWalk {
  public:
    EntryWalk(const EntryList& entries, std::span<const Keyed> order) : m_entries(entries), m_order(order) {}

    [[nodiscard]] Status rewind() override;
    [[nodiscard]] Result<std::span<const Row>> next() override;
    [[nodiscard]] std::string_view text(std::size_t row) const override {
        return m_entries[m_order[m_first + row].index].text();
    }

  private:
    const EntryList& m_entries;
    std::span<const Keyed> m_order;
    std::size_t m_first = 0;
    std::vector<Row> m_rows;
};

/// Walks the merged runs in a file.
class RunWalk final : public ValueWalk {
  public:
    RunWalk(const RunSet& runs, const SpillFile& file, std::size_t memory)
        : m_runs(runs), m_file(file), m_memory(memory) {}

    [[nodiscard]] Status rewind() override;
    [[nodiscard]] Result<std::span<const Row>> next() override;
    [[nodiscard]] std::string_view text(std::size_t row) const override {
        const std::size_t begin = row == 0 ? 0 : m_ends[row - 1];
        return std::string_view(m_texts).substr(begin, m_ends[row] - begin);
    }

  private:
    const RunSet& m_runs;
    const SpillFile& m_file;
    std::size_t m_memory;
    std::optional<RunMerge> m_merge;
    std::vector<Row> m_rows;
    std::string m_texts;
    std::vector<std::size_t> m_ends;
};

} // namespace tavix::profiling
