#include "drill/CDrillThruDataSrc.h"

#include "base/Characters.h"
#include "base/FreeMemory.h"
#include "grid/CellSort.h"
#include "grid/FoldedFinder.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <utility>

namespace tavix {

namespace {

constexpr int kDefaultWidth = 120;
constexpr int kMostWidth = 360;
// In pixels: about the width of a letter in the data font; the heading's arrow and the cell's margins.
constexpr int kLetterWidth = 7;
constexpr int kMargins = 30;
constexpr std::uint32_t kMeasuredRows = 200;

/// The approximate width of a text in letters: two for a wide East Asian character, none for a combining mark.
std::size_t letterWidths(std::string_view text) {
    std::size_t letters = 0;
    forEachCharacter(text, [&](std::int32_t character, std::string_view) {
        const int width = character < 0 ? 0 : u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
        const bool isMark =
            character >= 0x300 && (U_GET_GC_MASK(character) & (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK));
        letters += isMark ? 0U : width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2U : 1U;
    });
    return letters;
}

} // namespace

void CDrillThruDataSrc::SetRows(DrillRows rows) {
    m_rows = std::move(rows);
    freeMemory(m_order);
    m_shown.reset();
    m_widths.clear();
    for (std::size_t column = 0; column < m_rows.columns().size(); ++column)
        m_widths.push_back(WidthOf(column));
}

void CDrillThruDataSrc::ShowOnly(std::optional<std::vector<std::uint32_t>> rows) {
    m_shown = std::move(rows);
    freeMemory(m_order);
}

// Wider than the default if the heading or the first rows need it.
int CDrillThruDataSrc::WidthOf(std::size_t column) const {
    // A text of more bytes is wider than any column.
    const auto lettersOf = [](std::string_view text) { return letterWidths(cutToBytes(text, kMostWidth)); };
    std::size_t letters = lettersOf(m_rows.columns()[column].name);
    for (std::uint32_t row = 0; row < std::min(kMeasuredRows, m_rows.count()); ++row)
        letters = std::max(letters, lettersOf(m_rows.cell(static_cast<int>(column), row).text));
    const auto shown = static_cast<int>(std::min<std::size_t>(letters, kMostWidth));
    return std::clamp(shown * kLetterWidth + kMargins, kDefaultWidth, kMostWidth);
}

GridColumn CDrillThruDataSrc::GetColumn(int column) const {
    const auto at = static_cast<std::size_t>(column);
    GridColumn shown;
    shown.heading = m_rows.columns().at(at).name;
    shown.width = m_widths.at(at);
    shown.alignment = isNumeric(GetType(column)) ? CellAlignment::Right : CellAlignment::Left;
    return shown;
}

GridCell CDrillThruDataSrc::GetCell(int column, std::int64_t row) const {
    const DrillRows::Cell cell = GetText(column, row);
    GridCell shown;
    shown.text = cell.text;
    shown.alignment = isNumeric(GetType(column)) ? CellAlignment::Right : CellAlignment::Left;
    shown.state = cell.isNull ? CellState::Null : CellState::Ordinary;
    return shown;
}

bool CDrillThruDataSrc::Sort(int column, bool descending) {
    if (GetRowCount() < 2 || column < 0 || column >= GetColumnCount())
        return false;
    const auto textsFrom = [this, column](std::uint32_t first, std::span<std::string_view> texts) {
        if (!m_shown) {
            m_rows.texts(column, first, texts);
            return;
        }
        for (std::size_t at = 0; at < texts.size(); ++at)
            texts[at] = m_rows.cell(column, (*m_shown)[first + at]).text;
    };
    m_order = sortedByText(static_cast<std::uint32_t>(GetRowCount()), textsFrom, descending);
    if (m_shown) {
        for (std::uint32_t& record : m_order)
            record = (*m_shown)[record];
    }
    return true;
}

std::optional<CellPlace> findText(const CDrillThruDataSrc& source, std::string_view text, CellPlace from,
                                  SearchDirection direction, bool beyond, int column) {
    const std::int64_t columns = column == kAllColumns ? source.GetColumnCount() : 1;
    const std::int64_t cells = source.GetRowCount() * columns;
    if (text.empty() || cells == 0)
        return std::nullopt;
    const FoldedFinder finder(text);
    const std::int64_t step = direction == SearchDirection::Forward ? 1 : -1;
    const std::int64_t inRow = column == kAllColumns ? from.column : 0;
    std::int64_t at = std::clamp<std::int64_t>(from.row * columns + inRow, 0, cells - 1);
    if (beyond)
        at = (at + step + cells) % cells;
    for (std::int64_t left = cells; left > 0; --left, at = (at + step + cells) % cells) {
        const CellPlace place{at / columns, column == kAllColumns ? static_cast<int>(at % columns) : column};
        if (finder.isIn(source.GetText(place.column, place.row).text))
            return place;
    }
    return std::nullopt;
}

} // namespace tavix
