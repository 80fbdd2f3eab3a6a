#pragma once

#include "access/CellCursor.h"
#include "access/PrViewerDrillCursor.h"
#include "access/SourceRows.h"

#include <cstdint>
#include <utility>

namespace tavix {

/// Source rows as the result of drillDown.
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

/// Source rows as the result of drillDownMatch.
class MatchRowCursor final : public CellCursor {
  public:
    /// Skips the first `skip` rows.
    MatchRowCursor(SourceRows rows, std::int64_t skip) : m_rows(std::move(rows)), m_skip(skip) {}

    bool next() override;
    [[nodiscard]] int getColumnCount() const override { return m_rows.columnCount(); }
    [[nodiscard]] KvbString getColumnName(int column) const override { return m_rows.name(column); }
    [[nodiscard]] bool isColumnNull(int column) const override { return m_rows.isNull(column); }
    [[nodiscard]] KvbString getWarning() const override { return m_rows.warning(); }

  protected:
    [[nodiscard]] KvbDatavar cell(int column) const override { return m_rows.value(column); }

  private:
    SourceRows m_rows;
    std::int64_t m_skip;
};

} // namespace tavix
