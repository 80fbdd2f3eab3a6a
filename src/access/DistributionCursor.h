#pragma once

#include "access/DistributionFilter.h"
#include "access/PrViewDisplayMessage.h"
#include "access/StatementCursor.h"
#include "repository/DistributionStore.h"

#include <cstdint>

namespace tavix {

/// The rows of a stored distribution, or those that a filter lets pass, in the order in which they are shown; a block
/// is read when its first row is asked for.
class DistributionCursor final : public CellCursor {
  public:
    /// Reads the first block at once, so that a distribution that cannot be read fails here. `rows` is its length;
    /// the layout is that of getFreqDist, getPatternDist or getPKFKAnalysisOutliers. Without a filter all rows pass.
    /// `sink` may be null; it is told between blocks how many rows were looked at, and when it stops the walk, next()
    /// throws.
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
    /// Comes to the next block, of which perhaps no row passes; false behind the last one.
    bool enterBlock();
    /// What a column of the current row shows; None outside the columns and the rows.
    [[nodiscard]] Role role(int column) const;
    [[nodiscard]] bool isNullValue(Role shown) const;
    [[nodiscard]] std::int64_t number(Role shown) const;
    /// Tells the sink; false when the walk is not to go on.
    [[nodiscard]] bool goesOn() const;
    /// Throws when the viewer was closed.
    void requireOpen() const;

    std::shared_ptr<ViewerSession> m_session;
    repository::DistributionReader m_reader;
    const layout::Layout& m_layout;
    std::int64_t m_rows; ///< all of the distribution
    PrViewDisplayMessage* m_sink;
    bool m_hasRank;
    std::unique_ptr<DistributionFilter> m_filter; ///< null for all rows
    bool m_isEntered = false;                     ///< whether the rows of the first block are being walked
    bool m_isDone = false;                        ///< at the end, or after a failure
    std::span<const std::uint32_t> m_passing;     ///< with a filter: the rows of the block that pass
    std::size_t m_rowsInBlock = 0;                ///< that pass
    std::size_t m_nextInBlock = 0;                ///< of them, the one that next() comes to
    bool m_isOnRow = false;
    std::size_t m_row = 0; ///< of the block; only when there is a current row
};

} // namespace tavix
