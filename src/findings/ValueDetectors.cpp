#include "findings/ValueDetectors.h"

#include "base/Ascii.h"
#include "base/Characters.h"
#include "expression/RowEvaluator.h"
#include "findings/Placeholders.h"
#include "findings/ValueJudges.h"

#include <algorithm>
#include <array>
#include <mutex>
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

/// The condition of a test, compiled when the first value needs it.
const expression::Program& programOf(ValueTest test) {
    struct Compiled {
        std::once_flag once;
        std::optional<expression::Program> program;
    };
    static std::array<Compiled, kValueTestCount> compiled;
    Compiled& own = compiled[static_cast<std::size_t>(test)];
    std::call_once(own.once, [&] {
        const expression::Field fields[] = {{"Value", expression::Type::Text}};
        own.program = *expression::compile(conditionOf(test), fields, expression::Wanted::Condition, 0).program;
    });
    return *own.program;
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

void ValueDetectors::decide(ValueTest test, std::string_view text, std::uint64_t count) {
    if (meetsCondition(test, text))
        m_passed[static_cast<std::size_t>(test)].add(count);
}

template <ValueTest Test, Verdict (*Judge)(const Candidate&)>
void ValueDetectors::test(const Candidate& it, std::uint64_t count) {
    const Verdict verdict = Judge(it);
    if (verdict == Verdict::Yes)
        m_passed[static_cast<std::size_t>(Test)].add(count);
    else if (verdict == Verdict::Maybe)
        decide(Test, it.text, count);
}

void ValueDetectors::take(std::string_view text, ByteMask kinds, std::uint64_t count, std::uint64_t length,
                          bool isBlank) {
    if (text.empty()) {
        m_blank.add(count);
        return;
    }
    Candidate it{text, kinds};
    if (isBlank)
        m_blank.add(count);
    else
        takeShown(it, count, length);
    if (it.mask == kDigit) {
        m_passed[static_cast<std::size_t>(ValueTest::DigitsOnly)].add(count);
        test<ValueTest::ZeroPadded, judge::zeroPadded>(it, count);
        test<ValueTest::CardNumber, judge::cardNumber>(it, count);
        return;
    }
    if (it.has(kRare))
        testRare(it, count);
    if (it.has(kDigit)) {
        if (it.has(kLetters))
            testCode(it, count);
        else
            testNumber(it, count);
        if (it.hasOnly(kDigit | kDot | kHyphen | kColon | kSlash))
            return; // nearly all numbers and dates
    }
    if (it.has(kSpace))
        test<ValueTest::BlanksInside, judge::blanksInside>(it, count);
    test<ValueTest::BlanksAtEnds, judge::blanksAtEnds>(it, count);
    test<ValueTest::LeftOverDelimiter, judge::leftOver>(it, count);
    test<ValueTest::RunOfOneCharacter, judge::runOfOne>(it, count);
    test<ValueTest::NotUpperCase, judge::notUpperCase>(it, count);
    if (it.has(kDot | kColon))
        test<ValueTest::Url, judge::url>(it, count);
    if (mayBePlaceholder(text) && isPlaceholder(text))
        m_placeholders.add(text, count);
    if (!isBlank && it.has(kLetters | kBeyondAscii))
        m_words.add(text, count);
}

void ValueDetectors::takeShown(const Candidate& it, std::uint64_t count, std::uint64_t length) {
    m_shown.add(count);
    if (count > 1) {
        m_repeated.add(count);
        m_repeatedTexts.add(it.text, count);
        if (count > m_topCount || (count == m_topCount && it.text < m_topText)) {
            m_topText = it.text;
            m_topCount = count;
        }
    }
    if (it.has(kUpper))
        m_withCapitals.add(count);
    if (length < kLengths)
        m_lengths[length].add(count);
    else
        takeGreatLength(length, count);
}

/// Digits with signs, without letters.
void ValueDetectors::testNumber(const Candidate& it, std::uint64_t count) {
    constexpr std::size_t kShortestCode = 7; // 1.2.3.4
    if (it.text.size() >= kShortestCode) {
        test<ValueTest::IpAddress, judge::ipAddress>(it, count);
        if (!it.has(kColon)) { // as in times, and in none of these
            test<ValueTest::Phone, judge::phone>(it, count);
            test<ValueTest::CardNumber, judge::cardNumber>(it, count);
            test<ValueTest::NationalId, judge::nationalId>(it, count);
        }
    }
    test<ValueTest::MinusAfterNumber, judge::minusAfter>(it, count);
    if (it.has(kMoney | kBeyondAscii))
        test<ValueTest::NumberWithUnit, judge::numberWithUnit>(it, count);
}

/// Letters and digits.
void ValueDetectors::testCode(const Candidate& it, std::uint64_t count) {
    test<ValueTest::NumberWithUnit, judge::numberWithUnit>(it, count);
    test<ValueTest::Iban, judge::iban>(it, count);
    test<ValueTest::NationalId, judge::nationalId>(it, count);
    test<ValueTest::StreetAddress, judge::streetAddress>(it, count);
    test<ValueTest::IpAddress, judge::ipAddress>(it, count);
}

void ValueDetectors::testRare(Candidate& it, std::uint64_t count) {
    // Whole columns of addresses and phone numbers have these bytes; the other tests need different ones.
    constexpr ByteMask kUsual = kAt | kParenthesis | kPlus;
    if (it.has(kAt))
        test<ValueTest::EMail, judge::eMail>(it, count);
    if (it.has(kParenthesis))
        test<ValueTest::NumberInParentheses, judge::parentheses>(it, count);
    if (it.has(kPlus))
        test<ValueTest::ExponentForm, judge::exponentForm>(it, count);
    if (!it.has(kRare & ~kUsual))
        return;
    if (it.has(kBeyondAscii)) {
        it.rare = rareCharacters(it.text);
        test<ValueTest::InvisibleCharacters, judge::invisible>(it, count);
        test<ValueTest::UnusualSpaces, judge::unusualSpaces>(it, count);
        test<ValueTest::ReplacementCharacters, judge::replacements>(it, count);
        test<ValueTest::MisdecodedText, judge::misdecoded>(it, count);
        test<ValueTest::DecomposedAccents, judge::decomposed>(it, count);
        test<ValueTest::MixedScripts, judge::mixedScripts>(it, count);
    }
    test<ValueTest::LineBreaks, judge::lineBreaks>(it, count);
    test<ValueTest::ControlCharacters, judge::controlCharacters>(it, count);
    test<ValueTest::LostCharacters, judge::lostCharacters>(it, count);
    test<ValueTest::Markup, judge::markup>(it, count);
    test<ValueTest::Escapes, judge::escapes>(it, count);
    test<ValueTest::Quoted, judge::quoted>(it, count);
    test<ValueTest::Delimiters, judge::delimiters>(it, count);
    test<ValueTest::Structured, judge::structured>(it, count);
    test<ValueTest::SpreadsheetError, judge::spreadsheetError>(it, count);
    test<ValueTest::Formula, judge::formula>(it, count);
    test<ValueTest::ApostropheBeforeNumber, judge::apostrophe>(it, count);
}

std::vector<ValueDetectors::Length> ValueDetectors::longest() const {
    std::vector<Length> longest = m_longest;
    for (std::size_t length = kLengths; length-- > 0 && longest.size() < kGreatestLengths;)
        if (m_lengths[length].values > 0)
            longest.push_back({length, m_lengths[length]});
    return longest;
}

void ValueDetectors::takeGreatLength(std::uint64_t length, std::uint64_t count) {
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
