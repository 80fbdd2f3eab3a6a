#pragma once

#include <string>

namespace tavix::cli {

class Session;
struct ChosenField;

/// The value or pattern of the field that the user probably meant by `text`; "" when none is similar. Compares the most
/// frequent ones only.
[[nodiscard]] std::string nearestValue(Session& session, const ChosenField& field, const std::string& text,
                                       bool isPattern);

} // namespace tavix::cli
