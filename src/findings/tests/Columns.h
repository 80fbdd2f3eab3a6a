#pragma once

#include "base/Characters.h"
#include "base/DateTicks.h"
#include "expression/RowEvaluator.h"
#include "findings/FieldFindings.h"
#include "findings/ValueDetectors.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace tavix::findings::testing {

/// The moment of the runs in these tests: 2026-11-22.
inline const std::int64_t kNow = *parseDate("2026-11-22 12:00");

/// A condition over `Value`.
class Condition {
  public:
    explicit Condition(std::string_view text) {
        const expression::Field fields[] = {{"Value", expression::Type::Text}};
        const expression::Compiled compiled = expression::compile(text, fields, expression::Wanted::Condition, kNow);
        EXPECT_TRUE(compiled.ok()) << text << ": " << expression::describe(compiled.error);
        if (compiled.ok())
            m_evaluator = std::make_unique<expression::RowEvaluator>(*compiled.program);
    }
    [[nodiscard]] bool isTrue(std::string_view value) const { return isTrue(expression::Value::ofText(value)); }
    [[nodiscard]] bool isTrueOfNull() const { return isTrue(expression::Value{}); }

  private:
    [[nodiscard]] bool isTrue(expression::Value value) const {
        if (!m_evaluator)
            return false;
        const expression::Value row[] = {value};
        const expression::Value result = m_evaluator->evaluate(row);
        return !m_evaluator->hasFailed() && !result.isNull() && result.boolean;
    }
    std::unique_ptr<expression::RowEvaluator> m_evaluator;
};

} // namespace tavix::findings::testing
