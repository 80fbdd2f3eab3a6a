#pragma once

#include "access/DistributionFilter.h"
#include "access/PrViewDisplayMessage.h"
#include "access/StatementCursor.h"
#include "repository/DistributionStore.h"

#include <cstdint>

namespace tavix {

/// The rows of a stored distribution, or those that pass a filter, in the order of the distribution; reads a block when
/// its first row is needed.
class DistributionCursor final : public CellCursor {
  public:
    /// Reads the first block, so that a distribution that cannot be read fails here. `rows` is its length; the layout
    /// is that of getFreqDist, getPatternDist or getPKFKAnalysisOutliers. Without a filter all rows pass. `sink` may be
    /// null; it receives the number of rows passed after each block, and if it stops the cursor, next() throws.
    [[nodiscard]] static Result<std::unique_ptr<DistributionCursor>>
    open(std::shared_ptr<ViewerSession> session, const repository::DistributionKey& key, std::int64_t rows,
         const layout::Layout& layout, std::unique_ptr<DistributionFilter> filter, PrViewDisplayMessage* sink);

    bool next() override;
    [[nodiscard]] int getColumnCount() const override;
    [[nodiscard]] KvbString getColumnName(int column) const override;
    [[nodiscard]] bool isColumnNull(int column) const override;
    [[nodiscard]] KvbString getWarning() const override;

  protected:
    [[nodiscard]] KvbDatavar cell(int column) const override;

  private:
    enum class Role { None, Rank, Value, Count };

    DistributionCursor(std::shared_ptr<ViewerSession> session, const repository::DistributionKey& key,
                       std::int64_t rows, const layout::Layout& layout, std::unique_ptr<DistributionFilter> filter,
                       PrViewDisplayMessage* sink);
    /// Enters the next block, in which perhaps no row passes; false after the last one.
    bool enterBlock();
    /// The content of a column in the current row; None outside the columns and the rows.
    [[nodiscard]] Role role(int column) const;
    [[nodiscard]] bool isNullValue(Role shown) const;
    [[nodiscard]] std::int64_t number(Role shown) const;
    /// Reports to the sink; false to stop.
    [[nodiscard]] bool goesOn() const;
    /// Throws if the viewer was closed.
    void requireOpen() const;

    std::shared_ptr<ViewerSession> m_session;
    repository::DistributionReader m_reader;
    const layout::Layout& m_layout;
    std::int64_t m_rows; ///< of the whole distribution
    PrViewDisplayMessage* m_sink;
    bool m_hasRank;
    std::unique_ptr<DistributionFilter> m_filter; ///< null for all rows
    bool m_isEntered = false;                     ///< whether the first block was entered
    bool m_isDone = false;                        ///< at the end, or after a failure
    std::span<const std::uint32_t> m_passing;     ///< with a filter: the rows of the block that pass
    std::size_t m_rowsInBlock = 0;                ///< those that pass
    std::size_t m_nextInBlock = 0;                ///< the index among them of the next row
    bool m_isOnRow = false;
    std::size_t m_row = 0; ///< of the block; only with a current row
};

} // namespace tavix
