#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace tavix {

/// Fills `texts` with the texts of the cells of the records from `first` on. Called for all records in ascending order,
/// and then again for some; what it gave stays valid until the sort is over.
using CellTexts = std::function<void(std::uint32_t first, std::span<std::string_view> texts)>;

/// The records 0 to count - 1 in the order of CellOrderKey, or in its reverse; records of the same text stay in
/// ascending order either way. Keys are made once a record and sorted by their digits, texts once for each distinct
/// one, so that a million rows take a fraction of a second; the work is linear in the text but for the distinct texts.
[[nodiscard]] std::vector<std::uint32_t> sortedByText(std::uint32_t count, const CellTexts& textsFrom, bool descending);

} // namespace tavix
