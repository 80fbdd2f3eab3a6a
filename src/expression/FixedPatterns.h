#pragma once

#include "base/Result.h"
#include "expression/Matcher.h"
#include "expression/PreparedFunction.h"

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
    [[nodiscard]] Prepared extraction(std::string_view pattern);
    [[nodiscard]] Prepared replacement(std::string_view pattern, std::string_view replacement);

  private:
    /// An automaton takes at worst a millisecond and about 100 KB; patterns without one match more slowly.
    [[nodiscard]] bool mayHaveAutomaton() const;
    [[nodiscard]] std::size_t expressions() const { return m_regulars.size() + m_searches; }
    /// The error of an expression with too many patterns; none while there is room for another one.
    [[nodiscard]] Status roomForAnother() const;

    std::map<std::string, std::shared_ptr<const Matcher>> m_regulars;
    std::map<std::string, std::shared_ptr<const Matcher>> m_wildcards;
    std::size_t m_searches = 0; ///< extractions and replacements
};

} // namespace tavix::expression
