#pragma once

#include "base/Result.h"
#include "expression/Matcher.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>

namespace tavix::expression {

/// The patterns of one expression that are known before it is evaluated. Equal ones are made once, and all together are
/// bounded in the time and memory that they take, now and while they match.
class FixedPatterns {
  public:
    using Made = Result<std::shared_ptr<const Matcher>>;

    /// Errors are sentences for the author.
    [[nodiscard]] Made regular(const std::string& pattern);
    [[nodiscard]] Made wildcard(const std::string& pattern);

  private:
    /// Each takes a millisecond and some 100 KB at worst; patterns without one are slower to match.
    [[nodiscard]] bool mayHaveAutomaton() const;

    std::map<std::string, std::shared_ptr<const Matcher>> m_regulars;
    std::map<std::string, std::shared_ptr<const Matcher>> m_wildcards;
};

} // namespace tavix::expression
