#pragma once

#include "base/Result.h"
#include "expression/RowEvaluator.h"
#include "filter/QuickSearch.h"

#include <memory>
#include <string_view>

namespace tavix {

/// Applies a quick search to texts that are in memory, with the same code as a filter of values. For one thread.
class QuickMatcher {
  public:
    /// Fails as QuickFilter does.
    [[nodiscard]] static Result<std::unique_ptr<QuickMatcher>> make(const QuickTerm& term);

    /// Whether the value is what the term names; a negation is not applied, see isNegated().
    [[nodiscard]] bool isNamed(std::string_view text, bool isNull);
    /// Whether the term asks for all values but those.
    [[nodiscard]] bool isNegated() const { return m_isNegated; }

  private:
    QuickMatcher(const expression::Program& program, bool isNegated) : m_evaluator(program), m_isNegated(isNegated) {}

    expression::RowEvaluator m_evaluator;
    bool m_isNegated;
};

} // namespace tavix
