#pragma once

#include "base/Result.h"
#include "expression/Matcher.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>

namespace tavix::expression {

/// The constant patterns of one expression. Equal ones are compiled once, and their total time and memory are bounded,
/// now and while they match.
class FixedPatterns {
  public:
    using Made = Result<std::shared_ptr<const Matcher>>;

    /// Errors are messages for the author.
    [[nodiscard]] Made regular(const std::string& pattern);
    [[nodiscard]] Made wildcard(const std::string& pattern);

  private:
    /// An automaton takes at worst a millisecond and about 100 KB; patterns without one match more slowly.
    [[nodiscard]] bool mayHaveAutomaton() const;

    std::map<std::string, std::shared_ptr<const Matcher>> m_regulars;
    std::map<std::string, std::shared_ptr<const Matcher>> m_wildcards;
};

} // namespace tavix::expression
