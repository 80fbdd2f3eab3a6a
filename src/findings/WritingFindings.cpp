#include "base/Ascii.h"
#include "findings/FieldRules.h"

namespace tavix::findings {

namespace {

struct WritingRule {
    std::string_view code;
    ValueTest test;
    double least; ///< of the rows with a value, from 0 to 1
    double most;
    Likelihood likelihood;
};

constexpr double kFew = 0.1;
constexpr double kHalf = 0.5;

/// A value test that is a finding when the share of its rows is within these bounds. What concerns most values of a
/// field is how the field is meant; only what is never meant has no upper bound.
constexpr WritingRule kRules[] = {
    {"blanks-at-ends", ValueTest::BlanksAtEnds, 0, 1, Likelihood::Definite},
    {"blanks-inside", ValueTest::BlanksInside, 0, kHalf, Likelihood::Possible},
    {"line-breaks", ValueTest::LineBreaks, 0, 1, Likelihood::Possible},
    {"control-characters", ValueTest::ControlCharacters, 0, 1, Likelihood::Likely},
    {"invisible-characters", ValueTest::InvisibleCharacters, 0, 1, Likelihood::Likely},
    {"unusual-spaces", ValueTest::UnusualSpaces, 0, 1, Likelihood::Likely},
    {"replacement-characters", ValueTest::ReplacementCharacters, 0, 1, Likelihood::Definite},
    {"misdecoded-text", ValueTest::MisdecodedText, 0, 1, Likelihood::Likely},
    {"lost-characters", ValueTest::LostCharacters, 0, kFew, Likelihood::Possible},
    {"decomposed-accents", ValueTest::DecomposedAccents, 0, 1, Likelihood::Possible},
    {"mixed-scripts", ValueTest::MixedScripts, 0, kFew, Likelihood::Likely},
    {"markup", ValueTest::Markup, 0, 1, Likelihood::Likely},
    {"escape-sequences", ValueTest::Escapes, 0, 1, Likelihood::Likely},
    {"delimiters-inside", ValueTest::Delimiters, 0, 1, Likelihood::Possible},
    {"structured-values", ValueTest::Structured, 0, 1, Likelihood::Possible},
    {"left-over-delimiters", ValueTest::LeftOverDelimiter, 0, kHalf, Likelihood::Likely},
    {"spreadsheet-errors", ValueTest::SpreadsheetError, 0, 1, Likelihood::Definite},
    {"formulas", ValueTest::Formula, 0, 1, Likelihood::Likely},
    {"numbers-in-exponent-form", ValueTest::ExponentForm, 0, kHalf, Likelihood::Likely},
    {"apostrophe-before-numbers", ValueTest::ApostropheBeforeNumber, 0, 1, Likelihood::Likely},
    {"numbers-in-parentheses", ValueTest::NumberInParentheses, 0, 1, Likelihood::Possible},
    {"minus-after-numbers", ValueTest::MinusAfterNumber, 0, 1, Likelihood::Likely},
    {"numbers-with-units", ValueTest::NumberWithUnit, 0.8, 1, Likelihood::Likely},
};

struct KindRule {
    std::string_view code;      ///< for a field that mostly holds such values; empty: no finding
    std::string_view amongCode; ///< for a few of them among other texts; empty: no finding
    ValueTest test;
    double least; ///< the share of rows for `code`
    Likelihood likelihood;
    Likelihood amongLikelihood;
};

constexpr KindRule kKinds[] = {
    {"email-addresses", "emails-among-others", ValueTest::EMail, kHalf, Likelihood::Likely, Likelihood::Likely},
    {"phone-numbers", "phones-among-others", ValueTest::Phone, kHalf, Likelihood::Likely, Likelihood::Possible},
    {"", "urls-among-others", ValueTest::Url, kHalf, Likelihood::Possible, Likelihood::Possible},
    // Versions of programs look the same, but rarely all of a field have four parts.
    {"ip-addresses", "", ValueTest::IpAddress, 0.9, Likelihood::Likely, Likelihood::Possible},
    // One in ten other numbers of this length and beginning passes the check digit.
    {"card-numbers", "", ValueTest::CardNumber, kHalf, Likelihood::Likely, Likelihood::Possible},
    // Two check digits are no coincidence.
    {"bank-accounts", "", ValueTest::Iban, 0, Likelihood::Likely, Likelihood::Likely},
    {"national-ids", "", ValueTest::NationalId, kHalf, Likelihood::Likely, Likelihood::Possible},
    {"street-addresses", "", ValueTest::StreetAddress, kHalf, Likelihood::Possible, Likelihood::Possible},
};

std::string conditionText(ValueTest test) {
    return std::string(conditionOf(test));
}

/// "12 kg" in most rows makes a number with a unit; in a text field of another reading it is chance.
void addZeroPadded(FieldCase& field) {
    constexpr double kNearlyAll = 0.95;
    const Hits& padded = field.values.passed(ValueTest::ZeroPadded);
    if (padded.values > 1 && field.shareOf(field.values.passed(ValueTest::DigitsOnly)) >= kNearlyAll)
        field.add("zero-padded-numbers", Likelihood::Definite, padded, conditionText(ValueTest::ZeroPadded));
}

void addQuoted(FieldCase& field) {
    constexpr double kMoreThanTitles = 0.05;
    const Hits& quoted = field.values.passed(ValueTest::Quoted);
    if (quoted.values > 0)
        field.add("quoted-values", field.shareOf(quoted) >= kMoreThanTitles ? Likelihood::Likely : Likelihood::Possible,
                  quoted, conditionText(ValueTest::Quoted));
}

/// One spelling without small letters, and a few values with some.
void addOddCase(FieldCase& field) {
    constexpr double kNearlyAll = 0.9;
    constexpr double kVeryFew = 0.02;
    constexpr std::uint64_t kLeastValues = 20; ///< an abbreviation beside a few names proves no custom
    const Hits& others = field.values.passed(ValueTest::NotUpperCase);
    if (others.rows > 0 && field.values.shown().rows >= kLeastForShares && field.shareOf(others) <= kVeryFew &&
        field.values.shown().values >= others.values + kLeastValues &&
        field.shareOf(field.values.withCapitals()) >= kNearlyAll)
        field.add("odd-case", Likelihood::Possible, others, conditionText(ValueTest::NotUpperCase));
}

} // namespace

void addWriting(FieldCase& field) {
    for (const WritingRule& rule : kRules) {
        const Hits& hits = field.values.passed(rule.test);
        const double share = field.shareOf(hits);
        if (hits.values > 0 && share >= rule.least && share <= rule.most)
            field.add(rule.code, rule.likelihood, hits, conditionText(rule.test));
    }
    addZeroPadded(field);
    addQuoted(field);
    addOddCase(field);
}

void addKinds(FieldCase& field) {
    for (const KindRule& rule : kKinds) {
        const Hits& hits = field.values.passed(rule.test);
        if (hits.values == 0)
            continue;
        const double share = field.shareOf(hits);
        if (!rule.code.empty() && share >= rule.least)
            field.add(rule.code, rule.likelihood, hits, conditionText(rule.test));
        else if (!rule.amongCode.empty() && share <= kFew && field.isText())
            field.add(rule.amongCode, rule.amongLikelihood, hits, conditionText(rule.test));
    }
    const Hits& streets = field.values.passed(ValueTest::StreetAddress);
    if (streets.values > 0 && field.shareOf(streets) <= kFew &&
        asciiLower(field.figures.name).find("name") != std::string::npos)
        field.add("addresses-among-names", Likelihood::Possible, streets, conditionText(ValueTest::StreetAddress));
}

} // namespace tavix::findings
