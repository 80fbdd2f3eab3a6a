#pragma once

#include "expression/ExpressionError.h"

#include <optional>
#include <string_view>

/// What is to be said of a filter text before it is used, and asked of it while it is being written.
namespace tavix {

struct ExpressionCheck {
    /// Why the text cannot be evaluated for the rows of a distribution; nothing when it can, and for an empty one,
    /// which is no filter.
    std::optional<expression::ExpressionError> error;
    /// The first place of a text without error that probably does not mean what its author thinks.
    std::optional<expression::ExpressionError> remark;
    /// Places are counted in the code; before it the text has so many lines, those of its condition block.
    int linesBefore = 0;
};

[[nodiscard]] ExpressionCheck CheckFilterText(std::string_view filterText);

/// The beginning of a name at the end of `written`, what stands before the caret: "" where none can be meant, as in a
/// quoted text, a field's name, a comment or a number, and for a complete word of the language such as "if".
[[nodiscard]] std::string_view NameBeingWritten(std::string_view written);

} // namespace tavix
