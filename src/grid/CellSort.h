#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace tavix {

/// Fills `texts` with the cell texts of the records from `first` on. Called once for every record in ascending order,
/// then again for some. The texts must stay valid until the sort ends.
using CellTexts = std::function<void(std::uint32_t first, std::span<std::string_view> texts)>;

/// The records 0 to count - 1 in the order of CellOrderKey or its reverse; records of the same text stay in ascending
/// order either way. Numbers are radix sorted and each distinct text is sorted once, so a million rows take a fraction
/// of a second.
[[nodiscard]] std::vector<std::uint32_t> sortedByText(std::uint32_t count, const CellTexts& textsFrom, bool descending);

} // namespace tavix
