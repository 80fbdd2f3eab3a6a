#include "expression/ByteAutomaton.h"
#include "expression/Matcher.h"
#include "expression/RegularOptions.h"

#include <re2/re2.h>

#include <optional>
#include <utility>

namespace tavix::expression {

namespace {

class RegularExpression : public Matcher {
  public:
    RegularExpression(std::string_view pattern, const RegularLimits& limits)
        : m_expression(pieceOf(pattern), regularOptions(limits.memory)) {
        if (m_expression.ok() && limits.mayHaveAutomaton)
            m_automaton = ByteAutomaton::build(pattern);
        m_hasRange = m_expression.ok() && m_expression.PossibleMatchRange(&m_lowest, &m_highest, kRangeLength);
    }

    [[nodiscard]] const re2::RE2& expression() const { return m_expression; }
    [[nodiscard]] bool matches(std::string_view text, bool /*isAscii*/, Scratch& /*scratch*/) const override {
        if (m_automaton) {
            const ByteAutomaton::Answer answer = m_automaton->matches(text);
            if (answer != ByteAutomaton::Answer::Unknown)
                return answer == ByteAutomaton::Answer::Yes;
        }
        // When the pattern begins with fixed characters, comparing with them decides most texts.
        if (m_hasRange && (text < m_lowest || text > m_highest))
            return false;
        return re2::RE2::FullMatch(pieceOf(text), m_expression);
    }

  private:
    static constexpr int kRangeLength = 8;

    re2::RE2 m_expression;
    std::optional<ByteAutomaton>
        m_automaton; ///< for most patterns; m_expression decides about texts that are not ASCII
    bool m_hasRange = false;
    std::string m_lowest;
    std::string m_highest;
};

} // namespace

Result<std::shared_ptr<const Matcher>> makeRegularExpression(std::string_view pattern, const RegularLimits& limits) {
    auto made = std::make_shared<RegularExpression>(pattern, limits);
    if (!made->expression().ok())
        return notARegularExpression(made->expression());
    return std::shared_ptr<const Matcher>(std::move(made));
}

} // namespace tavix::expression
