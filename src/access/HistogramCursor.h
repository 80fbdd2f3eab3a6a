#pragma once

#include "access/CellCursor.h"
#include "base/Histogram.h"

#include <cstddef>
#include <optional>

namespace tavix {

/// The bins of a histogram in ascending order, as layout::HistogramBins. No rows without a histogram.
class HistogramCursor final : public CellCursor {
  public:
    explicit HistogramCursor(std::optional<Histogram> histogram);

    bool next() override;
    [[nodiscard]] int getColumnCount() const override;
    [[nodiscard]] KvbString getColumnName(int column) const override;
    [[nodiscard]] bool isColumnNull(int column) const override;

  protected:
    [[nodiscard]] KvbDatavar cell(int column) const override;

  private:
    [[nodiscard]] KvbDatavar border(std::size_t index) const;

    Histogram m_histogram;
    std::size_t m_next = 0;
};

} // namespace tavix
