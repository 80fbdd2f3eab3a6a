#pragma once

#include "source/RowReader.h"

#include <cstdint>
#include <memory>
#include <string>

namespace tavix::source {

/// Which rows of a table are taken.
struct Sample {
    enum class Kind {
        All,
        First,  ///< the first `number` rows
        Every,  ///< rows 1, 1 + number, 1 + 2 * number, ...
        Random, ///< each row with the probability `percent` / 100, the same rows for the same seed
    };

    Kind kind = Kind::All;
    std::int64_t number = 0;
    double percent = 0;
    std::uint64_t seed = 0;

    bool operator==(const Sample&) const = default;

    /// `record` counts from 1.
    [[nodiscard]] bool takes(std::int64_t record) const;
    /// "the first 1000 rows", "every 10th row", "a random 5 % of the rows, seed 42"; empty for all.
    [[nodiscard]] std::string text() const;
};

/// The rows of another reader that a sample takes. All rows are read, so that it is known how many there are.
class SampledReader final : public RowReader {
  public:
    SampledReader(std::unique_ptr<RowReader> reader, const Sample& sample)
        : m_reader(std::move(reader)), m_sample(sample) {}

    [[nodiscard]] std::span<const std::string> columnNames() const override { return m_reader->columnNames(); }
    /// Blocks know the numbers of their rows.
    [[nodiscard]] Result<bool> read(RowBlock& block) override;
    [[nodiscard]] std::int64_t position() const override { return m_reader->position(); }
    [[nodiscard]] std::int64_t total() const override { return m_reader->total(); }
    [[nodiscard]] std::span<const DamagedRow> damagedRows() const override { return m_reader->damagedRows(); }
    [[nodiscard]] std::int64_t damagedRowCount() const override { return m_reader->damagedRowCount(); }

    /// Rows that were read, taken or not.
    [[nodiscard]] std::int64_t rowsSeen() const { return m_rowsSeen; }

  private:
    std::unique_ptr<RowReader> m_reader;
    Sample m_sample;
    std::int64_t m_rowsSeen = 0;
};

} // namespace tavix::source
