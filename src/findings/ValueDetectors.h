#pragma once

#include "base/ByteMask.h"
#include "findings/Finding.h"
#include "findings/ValueLists.h"
#include "findings/ValueTests.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::findings {

/// Examines the distinct values of a field, one by one and in any order.
class ValueDetectors {
  public:
    ValueDetectors();
    ~ValueDetectors();
    ValueDetectors(const ValueDetectors&) = delete;
    ValueDetectors& operator=(const ValueDetectors&) = delete;

    /// Takes a distinct value, its byteMask(), its number of rows and of characters, and whether it is empty or blank.
    void take(std::string_view text, ByteMask kinds, std::uint64_t count, std::uint64_t length, bool isBlank);
    /// Takes some of the values of a pattern; a pattern may come again.
    void takePattern(std::string_view pattern, Hits hits);

    // After the last value.
    [[nodiscard]] const Hits& passed(ValueTest test) const { return m_passed[static_cast<std::size_t>(test)]; }
    [[nodiscard]] const Hits& shown() const { return m_shown; }               ///< neither null, empty nor blank
    [[nodiscard]] const Hits& blank() const { return m_blank; }               ///< empty or blank
    [[nodiscard]] const Hits& repeated() const { return m_repeated; }         ///< shown values of more than one row
    [[nodiscard]] const Hits& withCapitals() const { return m_withCapitals; } ///< shown values with a letter A to Z
    /// The most frequent shown value, the first by code point among equals; none if every row has another value.
    [[nodiscard]] Counted top() const { return {m_topText, m_topCount}; }
    /// The texts of repeated(), if they are few.
    [[nodiscard]] const TextList& repeatedTexts() const { return m_repeatedTexts; }
    /// The shown values with a letter, if the field has few values.
    [[nodiscard]] const TextList& words() const { return m_words; }
    /// Words that are often written where a value is unknown.
    [[nodiscard]] const TextList& placeholders() const { return m_placeholders; }

    struct Length {
        std::uint64_t length = 0;
        Hits hits;
    };
    static constexpr std::size_t kLengths = 65;
    /// The greatest lengths, in descending order.
    [[nodiscard]] std::vector<Length> longest() const;
    /// The shown values of each length below kLengths.
    [[nodiscard]] const std::array<Hits, kLengths>& lengths() const { return m_lengths; }

    struct Pattern {
        std::string pattern;
        Hits hits;
    };
    /// The patterns of the shown values; none if they are many.
    [[nodiscard]] const std::vector<Pattern>& patterns() const { return m_patterns; }

  private:
    template <ValueTest Test, Verdict (*Judge)(const Candidate&)>
    void test(const Candidate& it, std::uint64_t count);
    void decide(ValueTest test, std::string_view text, std::uint64_t count);
    void takeShown(const Candidate& it, std::uint64_t count, std::uint64_t length);
    void testNumber(const Candidate& it, std::uint64_t count);
    void testCode(const Candidate& it, std::uint64_t count);
    void testRare(Candidate& it, std::uint64_t count);
    void takeGreatLength(std::uint64_t length, std::uint64_t count);
    [[nodiscard]] bool meetsCondition(ValueTest test, std::string_view text);

    class Evaluators;
    std::unique_ptr<Evaluators> m_evaluators; ///< made when the first value needs one
    std::array<Hits, kValueTestCount> m_passed{};
    Hits m_shown;
    Hits m_blank;
    Hits m_repeated;
    Hits m_withCapitals;
    std::string m_topText;
    std::uint64_t m_topCount = 0;
    TextList m_repeatedTexts;
    TextList m_words;
    TextList m_placeholders;
    std::vector<Length> m_longest; ///< those of kLengths and more
    std::array<Hits, kLengths> m_lengths{};
    std::vector<Pattern> m_patterns;
    bool m_hasManyPatterns = false;
};

} // namespace tavix::findings
