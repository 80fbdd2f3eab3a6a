#pragma once

#include "base/KvbString.h"
#include "grid/CUGDataSource.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavix {

/// What a list shows, in state Unknown, of a field for which its figures were not calculated.
inline constexpr std::string_view kNotCalculated = "(Not calculated)";

/// Rows of a list that are held in memory. A class derived from it keeps one record for each row, in the order in which
/// they were read, and makes cells of them when they are asked for; this one keeps the order on the screen. A row's key
/// is the index of its record.
class ListRows : public CUGDataSource {
  public:
    /// No rows.
    virtual void Clear() = 0;
    /// Why the last filling failed, as it is to be shown; "" when it did not.
    [[nodiscard]] const std::string& GetErrorText() const { return m_error; }
    /// A sentence that says why there are no rows; "" when there are.
    [[nodiscard]] std::string GetEmptyText() const;
    /// The one row is a message in the first column and stands for nothing.
    [[nodiscard]] bool IsPlaceholder() const { return m_isPlaceholder; }

    [[nodiscard]] int GetColumnCount() const override { return static_cast<int>(m_columns.size()); }
    [[nodiscard]] std::int64_t GetRowCount() const override { return static_cast<std::int64_t>(m_order.size()); }
    [[nodiscard]] GridColumn GetColumn(int column) const override;
    [[nodiscard]] GridCell GetCell(int column, std::int64_t row) const override;
    [[nodiscard]] std::int64_t GetRowKey(std::int64_t row) const override { return Record(row); }
    /// Numbers by value, then texts, then figures that do not exist, whatever the direction; equal rows stay in their
    /// order.
    bool Sort(int column, bool descending) override;

  protected:
    static constexpr std::int64_t kNoPin = -1;

    explicit ListRows(std::vector<GridColumn> columns, std::string_view emptyText = {})
        : m_columns(std::move(columns)), m_emptyText(emptyText) {}

    void SetToolTip(int column, std::string text);
    void SetMark(int column, std::string text);
    void SetColumns(std::vector<GridColumn> columns) { m_columns = std::move(columns); }
    void SetEmptyText(std::string_view text) { m_emptyText = text; }
    /// There are `count` records now. The pinned one stays last whenever the rows are sorted by the first column.
    void ShowRecords(std::size_t count, std::int64_t pinned = kNoPin);
    void ShowPlaceholder();
    /// Keeps the rows and the reason, after a lead-in and a blank line; false.
    bool Fail(std::string_view leadIn, std::string_view reason);
    /// The index of the record that a row shows.
    [[nodiscard]] std::uint32_t Record(std::int64_t row) const { return m_order.at(static_cast<std::size_t>(row)); }

  private:
    [[nodiscard]] virtual GridCell CellOf(int column, std::size_t record) const = 0;

    std::vector<GridColumn> m_columns;
    std::vector<std::uint32_t> m_order;
    std::int64_t m_pinned = kNoPin;
    bool m_isPlaceholder = false;
    std::string m_emptyText;
    std::string m_error;
};

[[nodiscard]] GridColumn listColumn(std::string_view heading, int width, CellAlignment = CellAlignment::Left);
[[nodiscard]] GridCell textCell(std::string_view text, CellAlignment = CellAlignment::Left);
/// Null is shown as kNullValue.
[[nodiscard]] GridCell valueCell(const KvbString& value);
/// A percentage with two places and a bar that is `bar` of the cell's width.
[[nodiscard]] GridCell percentCell(double percent, double bar);

} // namespace tavix
