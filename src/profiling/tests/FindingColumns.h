#pragma once

#include "profiling/tests/RandomTable.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavix::profiling::testing {

using ColumnRows = std::vector<std::optional<std::string>>;

/// A word of three syllables; the first thousand are different.
[[nodiscard]] std::string wordOf(std::size_t i);
/// The day so many days after 2024-01-01.
[[nodiscard]] std::string dayAfter(std::int64_t days);

/// For each code of the catalogue about one field, a column that has it.
[[nodiscard]] const std::map<std::string, ColumnRows>& columnsWithFindings();
/// Columns as they should be, which have none.
[[nodiscard]] const std::map<std::string, ColumnRows>& soundColumns();

} // namespace tavix::profiling::testing
