#pragma once

#include "expression/ExpressionError.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavix {

struct ExpressionCheck {
    /// Why the text cannot be evaluated for the rows of a distribution. An empty text, which is not a filter, has none.
    std::optional<expression::ExpressionError> error;
    /// The first place in a correct text that probably does not mean what its author thinks.
    std::optional<expression::ExpressionError> remark;
    /// Places count from the first line of the code; the condition block takes so many lines before it.
    int linesBefore = 0;
};

[[nodiscard]] ExpressionCheck CheckFilterText(std::string_view filterText);

/// What the dialog says about the text that is being edited.
struct ExpressionNotice {
    enum class Kind : std::uint8_t { Fine, Warning, Error };

    Kind kind = Kind::Fine;
    std::string text;                                 ///< one line
    std::optional<expression::ExpressionError> fault; ///< with its place in the whole text; none when all is fine
};

[[nodiscard]] ExpressionNotice NoticeOn(std::string_view filterText);

} // namespace tavix
