#pragma once

#include <string>

namespace tavix::cli {

class Session;
struct FieldEntry;

/// Of the field's values, or its patterns, the one that was probably meant by a text that is none of them; "" when none
/// is near. Looks at the most frequent ones.
[[nodiscard]] std::string nearestValue(Session& session, const FieldEntry& field, const std::string& text,
                                       bool isPattern);

} // namespace tavix::cli
