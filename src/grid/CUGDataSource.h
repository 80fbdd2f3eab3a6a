#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tavix {

enum class CellAlignment { Left, Right, Center };

/// How a cell's text is meant.
enum class CellState : std::uint8_t {
    Ordinary,
    Null,    ///< stands for a null value: shown apart from a text of the same letters; kNullValue without a text
    Unknown, ///< stands for a figure that does not exist
};

/// Small pictures a cell may carry beside its text; drawn by the grid.
enum class CellIcon : std::uint8_t {
    None,
    Field,
    FieldInLookup, ///< a field that some collection holds
    KeyAnalysis,
    Redundancy,
    Table,
    QueryTable,
    FilterTable,
    Source,
    Catalog,
    Schema,
    Collection,
    BeyondFence,    ///< an outlier; stands at the cell's right edge, so that the values stay in line
    FarBeyondFence, ///< an extreme outlier; likewise
};

/// A cell without a bar.
inline constexpr double kNoBar = -1;

struct GridCell {
    std::string text;  ///< UTF-8
    std::string mark;  ///< a remark beside the text and not part of it: "(sample)"
    std::string order; ///< what the cell is sorted by in place of its text; "" for the text itself
    CellAlignment alignment = CellAlignment::Left;
    CellState state = CellState::Ordinary;
    CellIcon icon = CellIcon::None;
    bool alertMark = false;
    double bar = kNoBar; ///< the share of the cell's width that a bar behind the text takes, 0 to 1; none below 0

    bool operator==(const GridCell&) const = default;
};

/// What the cell is sorted by.
[[nodiscard]] inline std::string_view orderText(const GridCell& cell) {
    return cell.order.empty() ? cell.text : cell.order;
}

struct GridColumn {
    std::string heading;
    std::string mark; ///< a remark below the heading and not part of it: "(sample)", "of 373 non-null values"
    std::string key;  ///< names the column whatever its heading says; "" for the heading itself
    int width = 120;  ///< pixels at 96 dpi
    CellAlignment alignment = CellAlignment::Left;
    int parameter = -1;  ///< carried by the heading cell
    bool locked = false; ///< stays in view when the grid scrolls sideways
    std::string toolTip;
    bool takesRest = false; ///< wider than `width` where the grid has room, until the user drags it

    /// By what the order and the width that the user gave it are remembered.
    [[nodiscard]] const std::string& identity() const { return key.empty() ? heading : key; }

    bool operator==(const GridColumn&) const = default;
};

/// The rows behind a grid. The grid asks for what it paints and nothing else.
class CUGDataSource {
  public:
    virtual ~CUGDataSource() = default;

    [[nodiscard]] virtual int GetColumnCount() const = 0;
    [[nodiscard]] virtual std::int64_t GetRowCount() const = 0;
    [[nodiscard]] virtual GridColumn GetColumn(int column) const = 0;
    [[nodiscard]] virtual GridCell GetCell(int column, std::int64_t row) const = 0;
    /// What the row stands for, whatever the order of the rows; a grid keeps its selection by it while it sorts.
    [[nodiscard]] virtual std::int64_t GetRowKey(std::int64_t row) const { return row; }
    /// False when the rows cannot be sorted by this column; they then stay as they are.
    virtual bool Sort(int column, bool descending) = 0;
};

} // namespace tavix
