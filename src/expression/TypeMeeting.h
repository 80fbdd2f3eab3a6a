#pragma once

#include "expression/Folder.h"
#include "expression/Node.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The one place that decides what values of different types become where an expression puts them beside each other.
/// docs/expressions.md, "Types", says it to users.
namespace tavix::expression {

enum class Meeting : std::uint8_t {
    Compared, ///< the two sides of a comparison; integers and reals may stay beside each other
    Ordered,  ///< the arguments of min and max
    Equated,  ///< those of inlist and nullif
    Chosen,   ///< one of them is the result: coalesce, ifnull, the results of an if
};

struct Met {
    Type type = Type::Null;           ///< of all values now
    std::optional<std::size_t> clash; ///< the value that cannot stand beside the others
    Type clashesWith = Type::Null;    ///< the type of one of them
    /// A fixed text beside a date that is none; set together with `clash`.
    std::string notDate;
};

/// Brings the values to one type.
[[nodiscard]] Met bringTogether(std::vector<NodePtr>& values, Meeting meeting, Folder& folder);

/// What the author of such values should know, before they are brought together; "" when they mean what they say.
/// `isOrder`: they are compared by < or the like.
[[nodiscard]] std::string remarkOnMeeting(const std::vector<NodePtr>& values, bool isOrder);

} // namespace tavix::expression
