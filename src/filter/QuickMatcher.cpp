#include "filter/QuickMatcher.h"

#include "access/FilterCode.h"

#include <array>

namespace tavix {

Result<std::unique_ptr<QuickMatcher>> QuickMatcher::make(const QuickTerm& term) {
    QuickTerm positive = term;
    positive.isNegated = false;
    const Result<std::string> filter = QuickFilter(positive, DistributionKind::Frequency);
    if (!filter)
        return filter.error();
    const expression::Compiled compiled = compileFilter(*filter);
    if (!compiled.ok())
        return Error{compiled.error.message};
    return std::unique_ptr<QuickMatcher>(new QuickMatcher(*compiled.program, term.isNegated));
}

bool QuickMatcher::isNamed(std::string_view text, bool isNull) {
    using expression::Value;
    const std::array<Value, FilterColumns> row = {isNull ? Value() : Value::ofText(text), Value::ofInteger(1)};
    const Value result = m_evaluator.evaluate(row);
    return result.type == expression::Type::Boolean && result.boolean;
}

} // namespace tavix
