#pragma once

#include "source/RowReader.h"
#include "source/Sample.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace tavix::source {

/// The rows of another reader that a sample selects. Reads all rows, so that their number is known.
class SampledReader final : public RowReader {
  public:
    SampledReader(std::unique_ptr<RowReader> reader, const Sample& sample)
        : m_reader(std::move(reader)), m_sample(sample) {}

    [[nodiscard]] std::span<const std::string> columnNames() const override { return m_reader->columnNames(); }
    /// Blocks contain the numbers of their rows.
    [[nodiscard]] Result<bool> read(RowBlock& block) override;
    [[nodiscard]] std::int64_t position() const override { return m_reader->position(); }
    [[nodiscard]] std::int64_t total() const override { return m_reader->total(); }
    [[nodiscard]] std::span<const DamagedRow> damagedRows() const override { return m_reader->damagedRows(); }
    [[nodiscard]] std::int64_t damagedRowCount() const override { return m_reader->damagedRowCount(); }

    /// Rows read, selected or not.
    [[nodiscard]] std::int64_t rowsSeen() const { return m_rowsSeen; }

  private:
    std::unique_ptr<RowReader> m_reader;
    Sample m_sample;
    std::int64_t m_rowsSeen = 0;
};

} // namespace tavix::source
