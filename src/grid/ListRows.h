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

/// The only row of a list whose figures were not calculated for the field, in state Unknown.
inline constexpr std::string_view kNotCalculated = "(Not calculated)";

/// The line above a list: what its figures refer to.
struct ListBase {
    std::string text; ///< "" without a line
    std::string toolTip;

    bool operator==(const ListBase&) const = default;
};

/// Rows of a list that are held in memory. A derived class keeps one record per row, in the order of reading, and makes
/// cells on demand; this class keeps the order on the screen. A row's key is the index of its record.
class ListRows : public CUGDataSource {
  public:
    /// Removes all rows.
    virtual void Clear() = 0;
    /// The message for the user when the last filling failed, else "".
    [[nodiscard]] const std::string& GetErrorText() const { return m_error; }
    /// A sentence that explains why there are no rows; "" when there are some.
    [[nodiscard]] std::string GetEmptyText() const;
    /// What the figures in the rows refer to.
    [[nodiscard]] virtual ListBase GetBase() const { return {}; }
    /// Whether the only row is a message in the first column.
    [[nodiscard]] bool IsPlaceholder() const { return m_isPlaceholder; }

    [[nodiscard]] int GetColumnCount() const override { return static_cast<int>(m_columns.size()); }
    [[nodiscard]] std::int64_t GetRowCount() const override { return static_cast<std::int64_t>(m_order.size()); }
    [[nodiscard]] GridColumn GetColumn(int column) const override;
    [[nodiscard]] GridCell GetCell(int column, std::int64_t row) const override;
    [[nodiscard]] std::int64_t GetRowKey(std::int64_t row) const override { return Record(row); }
    /// By CellOrderKey; unknown cells come last in both directions. Stable.
    bool Sort(int column, bool descending) override;

  protected:
    static constexpr std::int64_t kNoPin = -1;

    explicit ListRows(std::vector<GridColumn> columns, std::string_view emptyText = {})
        : m_columns(std::move(columns)), m_emptyText(emptyText) {}

    void SetToolTip(int column, std::string text);
    void SetMark(int column, std::string text);
    void SetColumns(std::vector<GridColumn> columns) { m_columns = std::move(columns); }
    void SetEmptyText(std::string_view text) { m_emptyText = text; }
    /// Shows `count` records. The pinned one stays last when the rows are sorted by the first column.
    void ShowRecords(std::size_t count, std::int64_t pinned = kNoPin);
    void ShowPlaceholder();
    /// Stores the error text: lead-in, blank line, reason. Returns false.
    bool Fail(std::string_view leadIn, std::string_view reason);
    /// The index of the row's record.
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
/// A count, right-aligned, painted in groups of digits.
[[nodiscard]] GridCell countCell(std::int64_t count);
/// Null is shown as kNullValue.
[[nodiscard]] GridCell valueCell(const KvbString& value);
/// A percentage with two places. `bar`: see GridCell.
[[nodiscard]] GridCell percentCell(double percent, double bar);

} // namespace tavix
