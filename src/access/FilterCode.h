#pragma once

#include "expression/Program.h"

#include <string_view>

/// A filter text: a condition block, which may be missing, and behind it code for the rows of a distribution.
/// docs/formats/filter.md describes the block.
namespace tavix {

/// Stands in place of code when a condition list has a fault, before the sentence that names it.
inline constexpr std::string_view kCannotDisplay = "Cannot display expression:\r\n\r\n";

struct FilterCode {
    std::string_view text;
    int linesBefore = 0; ///< lines of the condition block
};
[[nodiscard]] FilterCode codeOf(std::string_view filterText);

/// The fields of a distribution's rows, in the order in which programs want them.
enum FilterColumn { ValueColumn, CountColumn, FilterColumns };

/// Compiles the code as a condition. Places are counted in the code, since the block is never shown beside it.
[[nodiscard]] expression::Compiled compileFilter(std::string_view filterText);

/// Why a condition list was saved without code: "Condition list cannot end with AND or OR". "" for all other texts.
[[nodiscard]] std::string_view faultOfUnfinished(std::string_view filterText);

} // namespace tavix
