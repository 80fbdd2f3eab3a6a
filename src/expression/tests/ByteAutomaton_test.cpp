#include "expression/ByteAutomaton.h"

#include <gtest/gtest.h>
#include <re2/re2.h>

#include <random>
#include <string>

namespace tavix::expression {
namespace {

using Answer = ByteAutomaton::Answer;

class RandomPatterns {
  public:
    std::string pattern(int depth) {
        std::string all;
        for (std::size_t i = below(4) + (depth == 0 ? 1 : 0); i > 0; --i)
            all += atom(depth) + quantifier();
        if (depth > 0 && below(4) == 0)
            all += "|" + pattern(depth - 1);
        return all;
    }
    std::string text() {
        std::string made;
        for (std::size_t i = below(9); i > 0; --i)
            made += std::string_view("aAbBzZ059 -.\\\n\t_k]")[below(18)];
        if (below(20) == 0)
            made += "\xC3\xA9";
        return made;
    }
    std::size_t below(std::size_t bound) { return std::uniform_int_distribution<std::size_t>(0, bound - 1)(m_random); }

  private:
    std::string atom(int depth) {
        static constexpr const char* kAtoms[] = {
            "a",    "b",    "A",       "5",    "\\.",   ".",    "-",       "\\d",       "\\w",       "\\s", "\\S",
            "[ab]", "[^a]", "[a-z5-]", "\\\\", "[\\d]", "[-a]", "[^\\w.]", "[A-Z0-9_]", "[^\\Da-b]", "\\D"};
        if (depth > 0 && below(4) == 0)
            return (below(2) == 0 ? "(" : "(?:") + pattern(depth - 1) + ")";
        return kAtoms[below(std::size(kAtoms))];
    }
    std::string quantifier() {
        static constexpr const char* kQuantifiers[] = {"*", "+", "?", "{2}", "{1,3}", "{0,2}", "{2,}", "*?", "+?"};
        return below(2) == 0 ? "" : kQuantifiers[below(std::size(kQuantifiers))];
    }

    std::mt19937 m_random{20261121};
};

TEST(ByteAutomaton, SaysOfRandomPatternsWhatTheGeneralMatcherSays) {
    RandomPatterns random;
    int built = 0;
    int matching = 0;
    for (int i = 0; i < 3000; ++i) {
        std::string pattern = random.pattern(2);
        if (random.below(4) == 0)
            pattern = "(?i)" + pattern;
        if (random.below(8) == 0)
            pattern = "^" + pattern + "$";
        re2::RE2::Options options;
        options.set_dot_nl(true);
        options.set_log_errors(false);
        const re2::RE2 general(pattern, options);
        const auto automaton = ByteAutomaton::build(pattern);
        if (!general.ok() || !automaton)
            continue;
        ++built;
        for (int t = 0; t < 60; ++t) {
            const std::string text = random.text();
            const Answer answer = automaton->matches(text);
            if (answer == Answer::Unknown) {
                ASSERT_NE(text.find('\xC3'), std::string::npos) << pattern;
                continue;
            }
            const bool expected = re2::RE2::FullMatch(text, general);
            matching += expected ? 1 : 0;
            ASSERT_EQ(answer == Answer::Yes, expected) << pattern << "\n" << text;
        }
    }
    EXPECT_GT(built, 2000);
    EXPECT_GT(matching, 5000);
}

TEST(ByteAutomaton, LeavesToOthersWhatItDoesNotKnow) {
    for (const char* pattern : {"a\\b", "\\pL", "[[:alpha:]]", "(?P<n>a)", "(?s:a)", "\xC3\xA9", "[]a]", "a^b", "a$b",
                                "a{,5}", "\\x41", "\\Qa\\E", "a{300}", "(a?){100}[ab]*b[ab]{12}"})
        EXPECT_FALSE(ByteAutomaton::build(pattern)) << pattern;
    const std::string deep = std::string(1000, '(') + std::string(1000, ')');
    EXPECT_FALSE(ByteAutomaton::build(deep));
}

} // namespace
} // namespace tavix::expression
