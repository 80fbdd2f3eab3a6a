#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Looks up the names that a user types. Names match exactly.
namespace tavix::cli {

/// The position of `wanted` in `names`. Throws a CommandError that lists the known names unless there is exactly one.
/// `what` is the kind of thing ("job").
[[nodiscard]] std::size_t pickByName(std::string_view what, std::string_view wanted,
                                     std::span<const std::string> names);

/// `names` quoted and joined by commas; the first ten, then how many more.
[[nodiscard]] std::string listNames(std::span<const std::string> names);

/// One reading of "TABLE.FIELD".
struct FieldAddress {
    std::string table;
    std::string field;

    bool operator==(const FieldAddress&) const = default;
};

/// All readings of `text` as TABLE.FIELD with one of `tables`, the longest table name first: both names may contain
/// dots. Either part may be in double quotes, in which "" is a quote.
[[nodiscard]] std::vector<FieldAddress> readFieldAddress(std::string_view text, std::span<const std::string> tables);

} // namespace tavix::cli
