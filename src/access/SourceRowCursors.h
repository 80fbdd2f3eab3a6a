#pragma once

#include "access/PrViewerDrillCursor.h"
#include "access/ProfileCursor.h"
#include "access/SourceRows.h"

#include <cstdint>
#include <utility>

namespace tavix {

/// Source rows as drillDown gives them.
class DrillRowCursor final : public PrViewerDrillCursor {
  public:
    explicit DrillRowCursor(SourceRows rows) : m_rows(std::move(rows)) {}

    bool next() override { return m_rows.next(); }
    [[nodiscard]] int getColumnCount() const override { return m_rows.columnCount(); }
    [[nodiscard]] KvbString getColumnName(int column) const override { return m_rows.name(column); }
    [[nodiscard]] KvbString getColumnValue(int column) const override { return m_rows.value(column); }
    [[nodiscard]] kvbType getColumnType(int column) const override { return m_rows.type(column); }
    [[nodiscard]] KvbString getWarning() const override { return m_rows.warning(); }
    [[nodiscard]] bool isComplete() const override { return m_rows.isComplete(); }

  private:
    SourceRows m_rows;
};

/// Source rows as drillDownMatch gives them.
class MatchRowCursor final : public ProfileCursor {
  public:
    /// Passes over the first rows, as many as `skip` says.
    MatchRowCursor(SourceRows rows, std::int64_t skip) : m_rows(std::move(rows)), m_skip(skip) {}

    bool next() override;
    [[nodiscard]] int getColumnCount() const override { return m_rows.columnCount(); }
    [[nodiscard]] KvbString getColumnName(int column) const override { return m_rows.name(column); }
    [[nodiscard]] KvbString getColumnValue(int column) const override { return m_rows.value(column); }
    [[nodiscard]] int getColumnInt(int column) const override;
    [[nodiscard]] double getColumnDouble(int column) const override;
    [[nodiscard]] bool isColumnNull(int column) const override { return m_rows.value(column).isNull(); }
    [[nodiscard]] bool isColumnValid(int column) const override { return column >= 0 && column < m_rows.columnCount(); }
    [[nodiscard]] KvbString getWarning() const override { return m_rows.warning(); }

  private:
    SourceRows m_rows;
    std::int64_t m_skip;
};

} // namespace tavix
