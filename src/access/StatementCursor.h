#pragma once

#include "access/CellCursor.h"
#include "access/Layouts.h"
#include "access/PrViewDisplayMessage.h"
#include "base/Result.h"
#include "sql/Connection.h"

#include <cstdint>
#include <memory>

namespace tavix {

/// The open repository of a viewer. Cursors share it, so that one that outlives its viewer fails instead of crashing.
struct ViewerSession {
    std::unique_ptr<sql::Connection> connection;
    std::shared_ptr<bool> closed;         ///< set when the viewer closes; shared by all connections that it has used
    PrViewDisplayMessage* sink = nullptr; ///< called by every cursor without a sink of its own
};

/// The rows of a query, read as they are requested.
class StatementCursor final : public CellCursor {
  public:
    /// Reads the first row, so that a query that cannot run fails here. `statement` is bound and belongs to the
    /// session; its columns are those of the layout.
    [[nodiscard]] static Result<std::unique_ptr<StatementCursor>>
    open(std::shared_ptr<ViewerSession> session, sql::Statement statement, const layout::Layout& layout);

    bool next() override;
    [[nodiscard]] int getColumnCount() const override;
    [[nodiscard]] KvbString getColumnName(int column) const override;
    [[nodiscard]] bool isColumnNull(int column) const override;

  protected:
    [[nodiscard]] KvbDatavar cell(int column) const override;

  private:
    enum class Position { BeforeFirst, OnRow, AtEnd };

    StatementCursor(std::shared_ptr<ViewerSession> session, sql::Statement statement, const layout::Layout& layout,
                    bool hasRow);
    /// Whether there is a value to read.
    [[nodiscard]] bool holds(int column) const;
    [[nodiscard]] bool isDate(int column) const;
    [[nodiscard]] double date(int column) const;

    std::shared_ptr<ViewerSession> m_session; // before the statement, which must be destroyed first
    sql::Statement m_statement;
    const layout::Layout& m_layout;
    Position m_position;
    std::int64_t m_rows = 0; ///< read so far
};

} // namespace tavix
