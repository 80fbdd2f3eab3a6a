#pragma once

#include "access/StatementCursor.h"
#include "repository/DistributionStore.h"

#include <cstdint>

namespace tavix {

/// The rows of a stored distribution, in the order in which they are shown; a block is read when its first row is
/// asked for.
class DistributionCursor final : public ProfileCursor {
  public:
    /// Reads the first block at once, so that a distribution that cannot be read fails here. `rows` is its length;
    /// the layout is that of getFreqDist, getPatternDist or getPKFKAnalysisOutliers.
    [[nodiscard]] static Result<std::unique_ptr<DistributionCursor>> open(std::shared_ptr<ViewerSession> session,
                                                                          const repository::DistributionKey& key,
                                                                          std::int64_t rows,
                                                                          const layout::Layout& layout);

    bool next() override;
    [[nodiscard]] int getColumnCount() const override;
    [[nodiscard]] KvbString getColumnName(int column) const override;
    [[nodiscard]] KvbString getColumnValue(int column) const override;
    [[nodiscard]] int getColumnInt(int column) const override;
    [[nodiscard]] double getColumnDouble(int column) const override;
    [[nodiscard]] bool isColumnNull(int column) const override;
    [[nodiscard]] bool isColumnValid(int column) const override;

  private:
    enum class Role { None, Rank, Value, Count };

    DistributionCursor(std::shared_ptr<ViewerSession> session, const repository::DistributionKey& key,
                       std::int64_t rows, const layout::Layout& layout);
    /// What a column of the current row shows; None outside the columns and the rows.
    [[nodiscard]] Role role(int column) const;
    [[nodiscard]] std::int64_t number(Role shown) const;

    std::shared_ptr<ViewerSession> m_session;
    repository::DistributionReader m_reader;
    const layout::Layout& m_layout;
    bool m_hasRank;
    std::int64_t m_total;
    std::int64_t m_rank = 0;       ///< of the current row, from 1; beyond the total at the end
    std::size_t m_nextInBlock = 0; ///< the row of the block that next() comes to
    repository::ValueCount m_row;
};

} // namespace tavix
