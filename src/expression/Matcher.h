#pragma once

#include "expression/Scratch.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tavix::expression {

/// A pattern of a program, made ready once: what texts does it match? Shared by all evaluators, so without state.
class Matcher {
  public:
    Matcher() = default;
    Matcher(const Matcher&) = delete;
    Matcher& operator=(const Matcher&) = delete;
    virtual ~Matcher() = default;

    /// `isAscii`: whether the text is known to be ASCII. Tells in `scratch` when it gives up.
    [[nodiscard]] virtual bool matches(std::string_view text, bool isAscii, Scratch& scratch) const = 0;
    /// Bytes that every text that matches holds; empty when none are known. Looking for them spares most texts the
    /// rest.
    [[nodiscard]] virtual std::string_view requiredPart() const { return {}; }
};

/// What a regular expression may take.
struct RegularLimits {
    std::int64_t memory = 0; ///< bytes, now and while it matches
    bool mayHaveAutomaton = true;
};

/// A regular expression that has to match the whole text, in time linear in it; null, with the reason, when the pattern
/// is none.
[[nodiscard]] std::shared_ptr<const Matcher> makeRegularExpression(std::string_view pattern,
                                                                   const RegularLimits& limits, std::string& reason);

} // namespace tavix::expression
