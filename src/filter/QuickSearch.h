#pragma once

#include "base/Result.h"
#include "report/DistributionKind.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The language of the search fields above lists, one condition on a line:
///
///     text          contains the text, ignoring case (in patterns, where case is the meaning, with it)
///     =x  <>x  !=x  is, is not exactly x
///     >x  >=x  <x  <=x   compares as numbers if x is a number, as dates if it is a date, else as texts
///     1~9  1..9  a..m    from the first to the second, both included
///     ~expression  /expression/   contains a match of the regular expression
///     null  !null  not null  empty  !empty  not empty
///
/// Quotes make any text literal: "null" contains these letters, >"10" compares as texts. A quote within is doubled.
namespace tavix {

/// What was typed, understood.
struct QuickTerm {
    enum class Kind : std::uint8_t {
        Contains,
        Equals,
        Null,
        Greater,
        GreaterOrEqual,
        Less,
        LessOrEqual,
        Range,
        Matches, ///< the regular expression
    };
    /// How the values of a comparison or a range compare.
    enum class Order : std::uint8_t { Text, Number, Date };

    Kind kind = Kind::Contains;
    bool isNegated = false; ///< of Equals and Null only
    Order order = Order::Text;
    std::string value;
    std::string last; ///< the end of a range

    bool operator==(const QuickTerm&) const = default;
};

/// Bytes; a longer text is refused.
inline constexpr std::size_t kLongestQuickSearch = 4096;

/// Nothing for a blank text. Fails with a message for the user; a regular expression is checked by QuickFilter.
[[nodiscard]] Result<std::optional<QuickTerm>> ParseQuickSearch(std::string_view typed);

/// The filter text of a term: conditions, so that the dialog shows them as such, where these can express it, else an
/// expression. Fails when the regular expression is not valid, and when the language cannot write the value.
[[nodiscard]] Result<std::string> QuickFilter(const QuickTerm& term, DistributionKind kind);
/// The filter text of what was typed; "" for a blank text.
[[nodiscard]] Result<std::string> QuickFilter(std::string_view typed, DistributionKind kind);

/// What to type for a filter text, so that QuickFilter gives exactly that text again; nothing when the language of the
/// field cannot express it. "" for "".
[[nodiscard]] std::optional<std::string> QuickSearchOf(std::string_view filterText, DistributionKind kind);

} // namespace tavix
