#include "grid/ColumnFit.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>

namespace tavix {

namespace {

// A column of this width or less holds an icon or a letter, and keeps its width even when no row has one.
constexpr int kIconWidth = 40;
constexpr int kMostGrowth = 3;
constexpr std::int64_t kSampledRows = 200;
constexpr std::int64_t kSampledNames = 2000;
constexpr std::size_t kLongest = 3;
// A longer text is beyond every bound.
constexpr std::size_t kMostBytes = 512;
// What an icon takes of a cell, in characters.
constexpr std::size_t kIconCharacters = 3;

std::size_t charactersOf(std::string_view text) {
    text = text.substr(0, kMostBytes);
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; }));
}

std::size_t lengthOf(const GridCell& cell) {
    std::size_t length = charactersOf(shownText(cell));
    if (!cell.mark.empty())
        length += 1 + charactersOf(cell.mark);
    return length + (cell.icon == CellIcon::None ? 0 : kIconCharacters);
}

bool isBlankCell(const GridCell& cell) {
    if (cell.state == CellState::Unknown)
        return true;
    return cell.state == CellState::Ordinary && cell.text.empty() && cell.icon == CellIcon::None &&
           cell.picture.isEmpty() && cell.bar < 0;
}

/// Raises widths to their goals by equal amounts until the room is used up.
void growEvenly(std::vector<int>& widths, const std::vector<int>& goals, int room) {
    std::vector<std::size_t> growing;
    for (std::size_t at = 0; at < widths.size(); ++at) {
        if (widths[at] < goals[at])
            growing.push_back(at);
    }
    std::sort(growing.begin(), growing.end(),
              [&](std::size_t a, std::size_t b) { return goals[a] - widths[a] < goals[b] - widths[b]; });
    for (std::size_t i = 0; i < growing.size() && room > 0; ++i) {
        const int share = room / static_cast<int>(growing.size() - i);
        const int growth = std::min(share, goals[growing[i]] - widths[growing[i]]);
        widths[growing[i]] += growth;
        room -= growth;
    }
}

} // namespace

std::vector<int> fitColumns(std::span<const ColumnNeed> columns, int room, int bound) {
    std::vector<int> base;
    std::vector<int> wanted;
    std::vector<int> uncut;
    for (const ColumnNeed& column : columns) {
        const int most = std::max(kMostGrowth * column.least, bound);
        const int heading = std::min(column.heading, most);
        int least = std::max(column.least, heading);
        int full = std::max(least, column.content);
        if (column.isBlank && column.least > kIconWidth)
            least = full = std::max(heading, std::min(column.content, most));
        int grown = std::min(full, std::max(most, least));
        if (column.takesRest)
            full = grown = least;
        if (column.isName)
            least = grown;
        if (column.chosen)
            least = grown = full = *column.chosen;
        base.push_back(least);
        wanted.push_back(grown);
        uncut.push_back(full);
    }
    const auto sumOf = [](const std::vector<int>& widths) { return std::accumulate(widths.begin(), widths.end(), 0); };
    const int atLeast = sumOf(base);
    if (atLeast <= room && room < sumOf(wanted)) {
        growEvenly(base, wanted, room - atLeast);
        return base;
    }
    std::vector<int> widths = std::move(wanted);
    if (const int left = room - sumOf(widths); left > 0) {
        growEvenly(widths, uncut, left);
        const auto rest = std::find_if(columns.begin(), columns.end(),
                                       [](const ColumnNeed& column) { return column.takesRest && !column.chosen; });
        if (rest != columns.end())
            widths[static_cast<std::size_t>(rest - columns.begin())] += room - sumOf(widths);
    }
    return widths;
}

ColumnSample sampleColumn(const CUGDataSource& source, int column, bool isName) {
    ColumnSample sample;
    sample.isBlank = true;
    std::vector<std::pair<std::size_t, GridCell>> longest;
    const std::int64_t rows = source.GetRowCount();
    const std::int64_t sampled = std::min(rows, isName ? kSampledNames : kSampledRows);
    const std::int64_t most = std::min(rows, kSampledNames);
    for (std::int64_t row = 0; row < sampled || (row < most && sample.isBlank); ++row) {
        GridCell cell = source.GetCell(column, row);
        sample.isBlank = sample.isBlank && isBlankCell(cell);
        const std::size_t length = lengthOf(cell);
        if (length == 0 || (longest.size() == kLongest && length <= longest.back().first))
            continue;
        const auto place =
            std::find_if(longest.begin(), longest.end(), [length](const auto& other) { return length > other.first; });
        longest.emplace(place, length, std::move(cell));
        if (longest.size() > kLongest)
            longest.pop_back();
    }
    // The only row may be a message, and a list without rows says nothing about its columns.
    sample.isBlank = sample.isBlank && rows > 1 && most == rows;
    for (auto& [length, cell] : longest)
        sample.longest.push_back(std::move(cell));
    return sample;
}

} // namespace tavix
