#include "expression/ByteAutomaton.h"
#include "expression/Matcher.h"

#include <re2/re2.h>

#include <optional>

namespace tavix::expression {

namespace {

re2::RE2::Options options(std::int64_t memory) {
    re2::RE2::Options made;
    made.set_log_errors(false);
    made.set_max_mem(memory);
    made.set_dot_nl(true);
    return made;
}

class RegularExpression : public Matcher {
  public:
    RegularExpression(std::string_view pattern, const RegularLimits& limits)
        : m_expression(re2::StringPiece(pattern.data(), pattern.size()), options(limits.memory)) {
        if (m_expression.ok() && limits.mayHaveAutomaton)
            m_automaton = ByteAutomaton::build(pattern);
        m_hasRange = m_expression.ok() && m_expression.PossibleMatchRange(&m_lowest, &m_highest, kRangeLength);
    }

    [[nodiscard]] bool isGood() const { return m_expression.ok(); }
    [[nodiscard]] const std::string& reason() const { return m_expression.error(); }
    [[nodiscard]] bool matches(std::string_view text, bool /*isAscii*/, Scratch& /*scratch*/) const override {
        if (m_automaton) {
            const ByteAutomaton::Answer answer = m_automaton->matches(text);
            if (answer != ByteAutomaton::Answer::Unknown)
                return answer == ByteAutomaton::Answer::Yes;
        }
        // When the pattern begins with fixed characters, comparing with them decides most texts.
        if (m_hasRange && (text < m_lowest || text > m_highest))
            return false;
        return re2::RE2::FullMatch(re2::StringPiece(text.data(), text.size()), m_expression);
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

std::shared_ptr<const Matcher> makeRegularExpression(std::string_view pattern, const RegularLimits& limits,
                                                     std::string& reason) {
    auto made = std::make_shared<RegularExpression>(pattern, limits);
    if (made->isGood())
        return made;
    reason = made->reason();
    return nullptr;
}

} // namespace tavix::expression
