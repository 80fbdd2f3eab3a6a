#pragma once

#include "base/Result.h"
#include "expression/Scratch.h"

#include <cstdint>
#include <memory>
#include <string_view>

namespace tavix::expression {

/// A compiled pattern of a program. All evaluators share it, so it has no state.
class Matcher {
  public:
    Matcher() = default;
    Matcher(const Matcher&) = delete;
    Matcher& operator=(const Matcher&) = delete;
    virtual ~Matcher() = default;

    /// `isAscii`: whether the text is known to be ASCII. Leaves a failure in `scratch` when it gives up.
    [[nodiscard]] virtual bool matches(std::string_view text, bool isAscii, Scratch& scratch) const = 0;
    /// Bytes that every matching text contains; empty when none are known. Searching for them first rules out most
    /// texts.
    [[nodiscard]] virtual std::string_view requiredPart() const { return {}; }
};

struct RegularLimits {
    std::int64_t memory = 0; ///< bytes, including those while it matches
    bool mayHaveAutomaton = true;
};

/// Compiles a regular expression that must match the whole text, in linear time. The error is a message for the author.
[[nodiscard]] Result<std::shared_ptr<const Matcher>> makeRegularExpression(std::string_view pattern,
                                                                           const RegularLimits& limits);

} // namespace tavix::expression
