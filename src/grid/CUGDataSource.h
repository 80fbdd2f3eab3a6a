#pragma once

#include "base/AlertMark.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

enum class CellAlignment { Left, Right, Center };

/// What a cell's text represents.
enum class CellState : std::uint8_t {
    Ordinary,
    Null,    ///< a null value, drawn differently from a value of the same text; kNullValue when the text is empty
    Unknown, ///< a figure that does not exist
};

/// Small icons beside a cell's text.
enum class CellIcon : std::uint8_t {
    None,
    Field,
    FieldInLookup, ///< a field in at least one collection
    KeyAnalysis,
    Redundancy,
    Table,
    QueryTable,
    FilterTable,
    Source,
    Catalog,
    Schema,
    Collection,
    BeyondFence,    ///< an outlier; drawn at the cell's right edge to keep the values aligned
    FarBeyondFence, ///< an extreme outlier; likewise
};

/// A cell without a bar.
inline constexpr double kNoBar = -1;

/// A small drawing in a cell, with the cell's text as its meaning for readers and copies.
struct CellPicture {
    /// Parts of one bar from left to right, as shares of the cell's width; drawn in place of the text.
    std::vector<double> parts;
    /// Figures of a line from the oldest to the latest, NaN where there is none; drawn before the text.
    std::vector<double> line;

    [[nodiscard]] bool isEmpty() const { return parts.empty() && line.empty(); }
    bool operator==(const CellPicture&) const = default;
};

struct GridCell {
    std::string text;  ///< UTF-8; the full text, which is copied, searched and sorted by
    std::string shown; ///< painted in place of the text, which the tooltip then shows; "" to paint the text itself
    std::string mark;  ///< a remark after the text, not part of it: "(sample)"
    std::string order; ///< sort key in place of the text; "" for the text itself
    CellAlignment alignment = CellAlignment::Left;
    CellState state = CellState::Ordinary;
    CellIcon icon = CellIcon::None;
    AlertMark alert = AlertMark::None; ///< in the upper right corner; the tooltip of the source explains it
    double bar = kNoBar; ///< length of the bar behind the text as a share of the cell's width, 0 to 1; below 0: none
    double barBefore =
        kNoBar; ///< the same of an earlier run: drawn above `bar`, each half as high. Such a cell has no text

    CellPicture picture;

    bool operator==(const GridCell&) const = default;
};

/// The cell's sort key.
[[nodiscard]] inline std::string_view orderText(const GridCell& cell) {
    return cell.order.empty() ? cell.text : cell.order;
}

/// What is painted for the cell's text.
[[nodiscard]] inline const std::string& shownText(const GridCell& cell) {
    return cell.shown.empty() ? cell.text : cell.shown;
}

struct GridColumn {
    std::string heading;
    std::string mark; ///< a remark below the heading, not part of it: "(sample)", "of 373 non-null values"
    std::string key;  ///< identifies the column when its heading varies; "" for the heading itself
    int width = 120;  ///< pixels at 96 dpi
    CellAlignment alignment = CellAlignment::Left;
    int parameter = -1;  ///< of the source's own meaning; the grid ignores it
    bool locked = false; ///< stays in view when the grid scrolls sideways; leading columns only
    bool pinned = false; ///< likewise at the right edge, where there is room; trailing columns only
    std::string toolTip;
    bool takesRest = false;     ///< wider than `width` where the grid has room, until the user drags it
    bool isOptional = false;    ///< the user shows or hides it in the menu of the headings
    bool isShownAtFirst = true; ///< of an optional column: whether it is shown until the user chooses

    /// The key under which the user's sort order and width are remembered.
    [[nodiscard]] const std::string& identity() const { return key.empty() ? heading : key; }

    bool operator==(const GridColumn&) const = default;
};

/// The rows of a grid. The grid fetches only the cells that it paints.
class CUGDataSource {
  public:
    virtual ~CUGDataSource() = default;

    [[nodiscard]] virtual int GetColumnCount() const = 0;
    [[nodiscard]] virtual std::int64_t GetRowCount() const = 0;
    [[nodiscard]] virtual GridColumn GetColumn(int column) const = 0;
    [[nodiscard]] virtual GridCell GetCell(int column, std::int64_t row) const = 0;
    /// More lines for the tooltip of a cell, asked for when it is shown.
    [[nodiscard]] virtual std::string GetToolTip(int /*column*/, std::int64_t /*row*/) const { return {}; }
    /// Identifies the row in any order; the grid uses it to keep the selection while it sorts.
    [[nodiscard]] virtual std::int64_t GetRowKey(std::int64_t row) const { return row; }
    /// False when the rows cannot be sorted by this column; their order is then unchanged.
    virtual bool Sort(int column, bool descending) = 0;
};

} // namespace tavix
