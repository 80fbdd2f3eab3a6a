#pragma once

#include "expression/Program.h"

#include <cstdint>
#include <string_view>

/// A filter text: an optional condition block, then code for the rows of a distribution. docs/formats/filter.md
/// describes the block.
namespace tavix {

/// Replaces the code of a condition list with a fault; the sentence that names the fault follows.
inline constexpr std::string_view kCannotDisplay = "Cannot display expression:\r\n\r\n";

struct FilterCode {
    std::string_view text;
    int linesBefore = 0; ///< lines of the condition block
};
[[nodiscard]] FilterCode codeOf(std::string_view filterText);

/// The fields of a distribution's rows, in the order that programs require.
enum FilterColumn { ValueColumn, CountColumn, FilterColumns };

/// Compiles the code as a condition, in which now() means the date `now`. Error positions count within the code,
/// because the block is never shown beside it.
[[nodiscard]] expression::Compiled compileFilter(std::string_view filterText,
                                                 std::int64_t now = expression::thisMoment());

/// Why a condition list was saved without code: "Condition list cannot end with AND or OR". "" for all other texts.
[[nodiscard]] std::string_view faultOfUnfinished(std::string_view filterText);

} // namespace tavix
