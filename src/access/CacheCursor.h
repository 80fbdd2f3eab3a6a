#pragma once

#include "access/CellCursor.h"

#include <cstddef>
#include <list>
#include <vector>

namespace tavix {

/// A self-contained copy of a whole result, readable after its source was freed. By contract, a result without rows
/// has no columns, and next() after the end starts over at the first row.
class CacheCursor final : public CellCursor {
  public:
    /// Reads `source` to its end and passes on its exceptions.
    explicit CacheCursor(ProfileCursor& source);

    bool next() override;
    [[nodiscard]] int getColumnCount() const override;
    [[nodiscard]] KvbString getColumnName(int column) const override;
    /// An empty text for null and without a current row.
    [[nodiscard]] KvbString getColumnValue(int column) const override;
    [[nodiscard]] bool isColumnNull(int column) const override;
    [[nodiscard]] bool isColumnValid(int column) const override;
    [[nodiscard]] KvbString getWarning() const override { return m_warning; }

    [[nodiscard]] std::size_t getRowCount() const { return m_rows.size(); }
    /// Replaces a value of the current row; does nothing without one or outside its columns.
    void setColumnValue(int column, KvbDatavar value);

  protected:
    [[nodiscard]] KvbDatavar cell(int column) const override;

  private:
    using Row = std::vector<KvbDatavar>;
    /// Null without a current row and outside its columns.
    [[nodiscard]] const KvbDatavar* find(int column) const;

    std::list<Row> m_rows;
    std::list<Row>::iterator m_current = m_rows.end();
    std::vector<KvbString> m_names;
    KvbString m_warning;
};

} // namespace tavix
