#include "findings/ValueDetectors.h"

#include "base/Ascii.h"
#include "base/Characters.h"
#include "expression/RowEvaluator.h"
#include "findings/Placeholders.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace tavix::findings {

namespace {

using namespace byte_kind; // NOLINT(google-build-using-namespace): a table of these

/// Lists of variants are made of categories; a field with more values than this has none that a reader could use.
constexpr std::size_t kMostWords = 10'000;
/// Bytes. Longer texts are prose.
constexpr std::size_t kLongestWord = 120;
constexpr std::size_t kMostPatterns = 16;
/// Enough to compare the greatest length with those below it.
constexpr std::size_t kGreatestLengths = 6;

/// The conditions of all tests; compiled once, when the first value needs one.
const expression::Program& programOf(ValueTest test) {
    static const std::vector<expression::Program> kPrograms = [] {
        const expression::Field fields[] = {{"Value", expression::Type::Text}};
        std::vector<expression::Program> programs;
        for (const ValueTestInfo& info : valueTests())
            programs.push_back(*expression::compile(info.condition, fields, expression::Wanted::Condition, 0).program);
        return programs;
    }();
    return kPrograms[static_cast<std::size_t>(test)];
}

bool mayBeBlank(char first) {
    const auto byte = static_cast<unsigned char>(first);
    return byte <= ' ' || byte >= 0x7F;
}

} // namespace

class ValueDetectors::Evaluators {
  public:
    bool meets(ValueTest test, std::string_view text) {
        std::unique_ptr<expression::RowEvaluator>& evaluator = m_evaluators[static_cast<std::size_t>(test)];
        if (!evaluator)
            evaluator = std::make_unique<expression::RowEvaluator>(programOf(test));
        const expression::Value row[] = {expression::Value::ofText(text)};
        const expression::Value result = evaluator->evaluate(row);
        return !result.isNull() && result.boolean;
    }

  private:
    std::array<std::unique_ptr<expression::RowEvaluator>, kValueTestCount> m_evaluators;
};

ValueDetectors::ValueDetectors()
    : m_repeatedTexts(kMostListed, kLongestWord),
      m_words(kMostWords, kLongestWord),
      m_placeholders(kMostListed, kLongestWord) {}

ValueDetectors::~ValueDetectors() = default;

bool ValueDetectors::meetsCondition(ValueTest test, std::string_view text) {
    if (!m_evaluators)
        m_evaluators = std::make_unique<Evaluators>();
    return m_evaluators->meets(test, text);
}

void ValueDetectors::test(const Candidate& candidate, ValueTest test, std::uint64_t count) {
    const Verdict verdict = valueTests()[static_cast<std::size_t>(test)].judge(candidate);
    if (verdict == Verdict::Yes || (verdict == Verdict::Maybe && meetsCondition(test, candidate.text)))
        m_passed[static_cast<std::size_t>(test)].add(count);
}

void ValueDetectors::take(std::string_view text, std::uint64_t count, std::uint64_t length) {
    if (text.empty()) {
        m_blank.add(count);
        return;
    }
    Candidate it{text, byteMask(text)};
    const bool blank = mayBeBlank(text.front()) && isBlank(text);
    (blank ? m_blank : m_shown).add(count);
    if (!blank) {
        if (count > 1) {
            m_repeated.add(count);
            m_repeatedTexts.add(text, count);
            if (count > m_topCount || (count == m_topCount && text < m_topText)) {
                m_topText = text;
                m_topCount = count;
            }
        }
        if (it.has(kUpper))
            m_withCapitals.add(count);
        takeLength(length, count);
    }
    if (it.mask == kDigit) {
        m_passed[static_cast<std::size_t>(ValueTest::DigitsOnly)].add(count);
        test(it, ValueTest::ZeroPadded, count);
        if (text.size() > 14)
            test(it, ValueTest::CardNumber, count);
        return;
    }
    if (it.has(kRare))
        testRare(it, count);
    if (it.has(kDigit)) {
        const bool isCode = it.has(kLetters);
        for (const ValueTest one : isCode ? testsOfCodes() : testsOfNumbers())
            test(it, one, count);
    }
    if (it.has(kDigit) && it.hasOnly(kDigit | kDot | kHyphen | kColon | kSlash))
        return; // nearly all numbers and dates
    if (it.has(kSpace))
        test(it, ValueTest::BlanksInside, count);
    test(it, ValueTest::BlanksAtEnds, count);
    test(it, ValueTest::LeftOverDelimiter, count);
    test(it, ValueTest::RunOfOneCharacter, count);
    test(it, ValueTest::NotUpperCase, count);
    if (it.has(kDot | kColon))
        test(it, ValueTest::Url, count);
    if (isPlaceholder(text))
        m_placeholders.add(text, count);
    if (!blank && it.has(kLetters | kBeyondAscii))
        m_words.add(text, count);
}

void ValueDetectors::testRare(Candidate& candidate, std::uint64_t count) {
    if (candidate.has(kBeyondAscii))
        candidate.rare = rareCharacters(candidate.text);
    for (const ValueTest one : testsOfRareBytes())
        test(candidate, one, count);
}

void ValueDetectors::takeLength(std::uint64_t length, std::uint64_t count) {
    if (length < kLengths)
        m_lengths[length].add(count);
    if (m_longest.size() == kGreatestLengths && length < m_longest.back().length)
        return;
    const auto at = std::find_if(m_longest.begin(), m_longest.end(),
                                 [length](const Length& other) { return other.length <= length; });
    if (at != m_longest.end() && at->length == length) {
        at->hits.add(count);
        return;
    }
    // A length that is dropped here has this many greater ones and is never among the greatest again.
    m_longest.insert(at, {length, {1, count}});
    if (m_longest.size() > kGreatestLengths)
        m_longest.pop_back();
}

void ValueDetectors::takePattern(std::string_view pattern, Hits hits) {
    if (m_hasManyPatterns || isBlank(pattern))
        return;
    const auto addTo = [&](Pattern& entry) {
        entry.hits.values += hits.values;
        entry.hits.rows += hits.rows;
    };
    for (std::size_t i = 0; i < m_patterns.size(); ++i)
        if (m_patterns[i].pattern == pattern) {
            addTo(m_patterns[i]);
            return;
        }
    m_hasManyPatterns = m_patterns.size() == kMostPatterns;
    if (m_hasManyPatterns)
        m_patterns = {};
    else
        m_patterns.push_back({std::string(pattern), hits});
}

} // namespace tavix::findings
