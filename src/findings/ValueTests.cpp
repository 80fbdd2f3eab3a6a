#include "findings/ValueTests.h"

#include "base/Ascii.h"
#include "base/Characters.h"

#include <algorithm>

namespace tavix::findings {

namespace {

using namespace byte_kind; // NOLINT(google-build-using-namespace): a table of these

constexpr Verdict maybe(bool may) {
    return may ? Verdict::Maybe : Verdict::No;
}
constexpr Verdict surely(bool is) {
    return is ? Verdict::Yes : Verdict::No;
}

Verdict blanksAtEnds(const Candidate& it) {
    const auto isLow = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    return maybe(isLow(it.text.front()) || isLow(it.text.back()) || it.rare.space);
}
Verdict blanksInside(const Candidate& it) {
    return maybe(it.has(kSpace) && it.text.find("  ") != std::string_view::npos);
}
Verdict lineBreaks(const Candidate& it) {
    return surely(it.has(kLineBreak));
}
Verdict controlCharacters(const Candidate& it) {
    return surely(it.has(kControl) || it.rare.control);
}
Verdict invisible(const Candidate& it) {
    return surely(it.rare.invisible);
}
Verdict unusualSpaces(const Candidate& it) {
    return surely(it.rare.unusualSpace);
}
Verdict replacements(const Candidate& it) {
    return surely(it.rare.replacement);
}
Verdict misdecoded(const Candidate& it) {
    return maybe(it.rare.misdecoded);
}
Verdict lostCharacters(const Candidate& it) {
    return maybe(it.has(kQuestion) && !it.has(kSlash | kEquals | kAmpersand) && it.has(kLetters | kBeyondAscii));
}
Verdict decomposed(const Candidate& it) {
    return surely(it.rare.mark);
}
Verdict mixedScripts(const Candidate& it) {
    return maybe(it.rare.cyrillic && it.has(kLetters));
}
Verdict markup(const Candidate& it) {
    return maybe(it.has(kAmpersand | kLess));
}
Verdict escapes(const Candidate& it) {
    return maybe(it.has(kBackslash));
}
Verdict quoted(const Candidate& it) {
    const char first = it.text.front();
    return surely(it.text.size() > 1 && (first == '"' || first == '\'') && it.text.back() == first);
}
Verdict delimiters(const Candidate& it) {
    return surely(it.has(kDelimiter));
}
Verdict structured(const Candidate& it) {
    const char first = it.text.front();
    return maybe(it.text.size() > 2 && (first == '{' || first == '[' || first == '<'));
}
Verdict leftOver(const Candidate& it) {
    return surely(it.text.size() > 1 && (it.text.back() == ',' || it.text.back() == ';'));
}
Verdict spreadsheetError(const Candidate& it) {
    return maybe(it.text.front() == '#' && it.text.size() < 10);
}
Verdict formula(const Candidate& it) {
    return maybe(it.text.front() == '=' && it.text.size() > 1);
}
Verdict exponentForm(const Candidate& it) {
    return maybe(it.has(kPlus) && it.has(kDigit) && it.has(kLetters) && isAsciiDigit(it.text.back()));
}
Verdict apostrophe(const Candidate& it) {
    return maybe(it.text.front() == '\'' && it.has(kDigit) && !it.has(kLetters));
}
Verdict parentheses(const Candidate& it) {
    return maybe(it.text.front() == '(' && it.text.back() == ')' && it.has(kDigit) && !it.has(kLetters));
}
Verdict minusAfter(const Candidate& it) {
    return maybe(it.text.back() == '-' && isAsciiDigit(it.text.front()) && !it.has(kLetters | kSpace));
}
Verdict numberWithUnit(const Candidate& it) {
    const char first = it.text.front();
    if (!it.has(kDigit))
        return Verdict::No;
    const bool isAfter = (isAsciiDigit(first) || first == '-' || first == '+') && !isAsciiDigit(it.text.back());
    return maybe(isAfter ? it.has(kLetters | kMoney | kBeyondAscii) : first == '$' || !isAscii(first));
}
Verdict zeroPadded(const Candidate& it) {
    return surely(it.mask == kDigit && it.text.size() > 1 && it.text.front() == '0');
}
Verdict digitsOnly(const Candidate& it) {
    return surely(it.mask == kDigit);
}
Verdict runOfOne(const Candidate& it) {
    if (isAscii(it.text.front()))
        return maybe(it.text.size() > 2 && it.text[0] == it.text[1] && it.text[1] == it.text[2]);
    std::size_t at = 0;
    (void)nextCharacter(it.text, at);
    return maybe(it.text.size() > 2 * at && it.text.substr(0, at) == it.text.substr(at, at));
}
Verdict notUpperCase(const Candidate& it) {
    return it.has(kLower) ? Verdict::Yes : maybe(it.has(kBeyondAscii));
}
Verdict eMail(const Candidate& it) {
    return maybe(it.has(kAt) && it.has(kDot) && !it.has(kSpace));
}
Verdict phone(const Candidate& it) {
    constexpr std::size_t kLeast = 9;
    if (it.text.size() < kLeast || it.text.size() > 21 || it.has(kLetters | kColon | kComma) || !it.has(kDigit))
        return Verdict::No;
    const char first = it.text.front();
    return maybe(first == '+' || first == '(' || (it.text.size() == 12 && !isAsciiDigit(it.text[3])));
}
Verdict url(const Candidate& it) {
    return maybe(it.has(kLetters) && (it.has(kSlash) ? it.has(kColon) || it.has(kDot) : it.has(kDot)) &&
                 !it.has(kSpace) && it.text.size() > 6 &&
                 (asciiLower(it.text[0]) == 'h' || asciiLower(it.text[0]) == 'f' || asciiLower(it.text[0]) == 'w'));
}
Verdict ipAddress(const Candidate& it) {
    if (it.text.size() < 7 || it.text.size() > 39)
        return Verdict::No;
    if (it.hasOnly(kDigit | kDot))
        return maybe(it.text.size() <= 15 && std::count(it.text.begin(), it.text.end(), '.') == 3);
    return maybe(it.hasOnly(kDigit | kLetters | kColon) && std::count(it.text.begin(), it.text.end(), ':') == 7);
}
Verdict cardNumber(const Candidate& it) {
    return maybe(it.text.size() > 14 && it.text.size() < 20 && it.hasOnly(kDigit | kSpace | kHyphen));
}
Verdict iban(const Candidate& it) {
    return maybe(it.text.size() > 14 && it.text.size() < 45 && it.hasOnly(kDigit | kUpper | kSpace) &&
                 isAsciiLetter(it.text[0]) && isAsciiDigit(it.text[2]) && isAsciiDigit(it.text[3]));
}
Verdict nationalId(const Candidate& it) {
    if (it.text.size() == 11 && it.text[3] == '-' && it.text[6] == '-')
        return maybe(it.mask == (kDigit | kHyphen));
    return maybe(it.text.size() > 8 && it.text.size() < 14 && it.hasOnly(kDigit | kUpper | kSpace) &&
                 isAsciiLetter(it.text[1]) && isAsciiLetter(it.text.back()) && it.has(kDigit));
}
Verdict streetAddress(const Candidate& it) {
    return maybe(it.has(kDigit) && it.has(kSpace) && it.has(kLetters) && it.text.size() < 400 &&
                 isAsciiDigit(it.text.front()));
}

constexpr std::array<ValueTestInfo, kValueTestCount> kTests{{
    {ValueTest::BlanksAtEnds, "not isblank(`Value`) and `Value` != trim(`Value`)", blanksAtEnds},
    {ValueTest::BlanksInside, "contains(trim(`Value`), '  ')", blanksInside},
    {ValueTest::LineBreaks, R"(matches(`Value`, '.*[\n\r].*'))", lineBreaks},
    {ValueTest::ControlCharacters,
     R"(matches(`Value`, '.*[\x00-\x08\x0B\x0C\x0E-\x1F\x7F\x{80}-\x{9F}].*'))", controlCharacters},
    {ValueTest::InvisibleCharacters,
     R"(matches(`Value`, '.*[\x{AD}\x{200B}\x{200E}\x{200F}\x{202A}-\x{202E}\x{2060}-\x{2064}\x{FEFF}].*'))", invisible},
    {ValueTest::UnusualSpaces, R"(matches(`Value`, '.*[\x{A0}\x{2000}-\x{200A}\x{202F}\x{205F}].*'))", unusualSpaces},
    {ValueTest::ReplacementCharacters, "contains(`Value`, '\xEF\xBF\xBD')", replacements},
    {ValueTest::MisdecodedText, R"(matches(`Value`, '.*([\x{C2}\x{C3}][\x{A0}-\x{BF}]|\x{E2}\x{20AC}).*'))",
     misdecoded},
    {ValueTest::LostCharacters, R"(matches(`Value`, '[^/=&]*\pL\?\pL[^/=&]*'))", lostCharacters},
    {ValueTest::DecomposedAccents, R"(matches(`Value`, '.*[\x{300}-\x{36F}].*'))", decomposed},
    {ValueTest::MixedScripts, R"(matches(`Value`, '.*([A-Za-z][\x{400}-\x{52F}]|[\x{400}-\x{52F}][A-Za-z]).*'))",
     mixedScripts},
    {ValueTest::Markup,
     "matches(`Value`, '.*(&(amp|lt|gt|quot|apos|nbsp|#[0-9]{2,6}|#x[0-9A-Fa-f]{2,5});|"
     "</?(p|br|b|i|u|a|div|span|li|ul|td|tr|table|strong|em|font)( [^<>]*)?/?>).*')",
     markup},
    {ValueTest::Escapes, R"(matches(`Value`, '.*(\\u[0-9A-Fa-f]{4}|\\x[0-9A-Fa-f]{2}|\\["\x27]).*'))", escapes},
    {ValueTest::Quoted, R"(matches(`Value`, '".*"|\x27.*\x27'))", quoted},
    {ValueTest::Delimiters, R"(matches(`Value`, '.*[|;\t].*'))", delimiters},
    {ValueTest::Structured,
     R"(matches(`Value`, '\{.*".*:.*\}|\[ *["{\[].*\]|\[ *-?[0-9.]+ *,.*\]|<[A-Za-z?][^<>]*>.*</[A-Za-z][^<>]*>'))",
     structured},
    {ValueTest::LeftOverDelimiter, "matches(`Value`, '.+[,;]')", leftOver},
    {ValueTest::SpreadsheetError,
     "`Value` in ('#REF!', '#VALUE!', '#DIV/0!', '#NAME?', '#N/A', '#NUM!', '#NULL!')", spreadsheetError},
    {ValueTest::Formula, R"(matches(`Value`, '=[A-Za-z(+\-@].*'))", formula},
    {ValueTest::ExponentForm, R"(matches(`Value`, '[+\-]?[0-9](\.[0-9]+)?[eE]\+[0-9]{2,3}'))", exponentForm},
    {ValueTest::ApostropheBeforeNumber, R"(matches(`Value`, '\x27[+\-]?[0-9][0-9.,]*'))", apostrophe},
    {ValueTest::NumberInParentheses, R"(matches(`Value`, '\([0-9][0-9.,]*\)'))", parentheses},
    {ValueTest::MinusAfterNumber, "matches(`Value`, '[0-9][0-9.,]*-')", minusAfter},
    {ValueTest::NumberWithUnit,
     "matches(`Value`, '[+\\-]?[0-9]+([.,][0-9]+)*( ?(kg|mg|lb|lbs|oz|km|m|cm|mm|mi|ft|in|yd|ml|cl|hrs?|min|mins|sec|ms|"
     "kW|kWh|Hz|kHz|MHz|GHz|MB|GB|TB|KB|kB|px|pt|pcs|%|\xC2\xB0|\xC2\xB0"
     "C|\xC2\xB0"
     "F|USD|EUR|GBP|CHF|JPY|\xE2\x82\xAC|\xC2\xA3|\xC2\xA5)| (g|t|l|h|s|V|A|W))|"
     "[$\xE2\x82\xAC\xC2\xA3\xC2\xA5] ?-?[0-9]+([.,][0-9]+)*')",
     numberWithUnit},
    {ValueTest::ZeroPadded, "matches(`Value`, '0[0-9]+')", zeroPadded},
    {ValueTest::DigitsOnly, "matches(`Value`, '[0-9]+')", digitsOnly},
    {ValueTest::RunOfOneCharacter,
     R"(length(`Value`) >= 3 and replace(`Value`, left(`Value`, 1), '') == '' and matches(`Value`, '[^0-9IVXMCDLivxmcdl\s].*'))",
     runOfOne},
    {ValueTest::NotUpperCase, "`Value` != upper(`Value`)", notUpperCase},
    {ValueTest::EMail, R"(matches(`Value`, '[A-Za-z0-9._%+\-]+@[A-Za-z0-9\-]+(\.[A-Za-z0-9\-]+)*\.[A-Za-z]{2,24}'))", eMail},
    {ValueTest::Phone,
     R"(matches(`Value`, '\+[0-9][0-9 ()./\-]{6,18}[0-9]|(\([0-9]{3}\) ?|[0-9]{3}[\-. ])[0-9]{3}[\-. ][0-9]{4}'))", phone},
    {ValueTest::Url, R"(matches(`Value`, '(?i)(https?|ftp)://[^ ]+|(?i)www\.[^ ]+\.[^ ]+'))", url},
    {ValueTest::IpAddress,
     R"(matches(`Value`, '((25[0-5]|2[0-4][0-9]|1[0-9]{2}|[1-9]?[0-9])\.){3}(25[0-5]|2[0-4][0-9]|1[0-9]{2}|[1-9]?[0-9])|([0-9A-Fa-f]{1,4}:){7}[0-9A-Fa-f]{1,4}'))",
     ipAddress},
    {ValueTest::CardNumber,
     R"(isluhn(`Value`) and matches(`Value`, '(4[0-9]{3}|5[1-5][0-9]{2}|2[2-7][0-9]{2}|6011|65[0-9]{2})[ \-]?[0-9]{4}[ \-]?[0-9]{4}[ \-]?[0-9]{4}|3[47][0-9]{2}[ \-]?[0-9]{6}[ \-]?[0-9]{5}'))",
     cardNumber},
    {ValueTest::Iban, "isiban(`Value`) and matches(`Value`, '[A-Z]{2}[0-9]{2}[ 0-9A-Z]{11,40}')", iban},
    {ValueTest::NationalId,
     R"(matches(`Value`, '[0-8][0-9]{2}-[0-9]{2}-[0-9]{4}|[A-CEGHJ-PR-TW-Z][A-CEGHJ-NPR-TW-Z] ?[0-9]{2} ?[0-9]{2} ?[0-9]{2} ?[A-D]'))",
     nationalId},
    {ValueTest::StreetAddress,
     R"(length(`Value`) < 100 and matches(`Value`, '(?i)[0-9]{1,5}[a-z]? ([^ ]+ ){1,5}(st|street|ave|avenue|rd|road|blvd|boulevard|lane|drive|dr|court|hwy|highway)\.?(,.*)?'))",
     streetAddress},
}};

constexpr ValueTest kOfNumbers[] = {ValueTest::Phone, ValueTest::IpAddress, ValueTest::CardNumber,
                                    ValueTest::NationalId, ValueTest::MinusAfterNumber, ValueTest::NumberWithUnit};
constexpr ValueTest kOfCodes[] = {ValueTest::NumberWithUnit, ValueTest::Iban, ValueTest::NationalId,
                                  ValueTest::StreetAddress, ValueTest::IpAddress};
constexpr ValueTest kOfRareBytes[] = {ValueTest::LineBreaks,
                                      ValueTest::ControlCharacters,
                                      ValueTest::InvisibleCharacters,
                                      ValueTest::UnusualSpaces,
                                      ValueTest::ReplacementCharacters,
                                      ValueTest::MisdecodedText,
                                      ValueTest::LostCharacters,
                                      ValueTest::DecomposedAccents,
                                      ValueTest::MixedScripts,
                                      ValueTest::Markup,
                                      ValueTest::Escapes,
                                      ValueTest::Quoted,
                                      ValueTest::Delimiters,
                                      ValueTest::Structured,
                                      ValueTest::SpreadsheetError,
                                      ValueTest::Formula,
                                      ValueTest::ExponentForm,
                                      ValueTest::ApostropheBeforeNumber,
                                      ValueTest::NumberInParentheses,
                                      ValueTest::EMail};

} // namespace

const std::array<ValueTestInfo, kValueTestCount>& valueTests() {
    return kTests;
}

std::span<const ValueTest> testsOfNumbers() {
    return kOfNumbers;
}
std::span<const ValueTest> testsOfCodes() {
    return kOfCodes;
}
std::span<const ValueTest> testsOfRareBytes() {
    return kOfRareBytes;
}

RareCharacters rareCharacters(std::string_view text) {
    RareCharacters rare;
    forEachCharacter(text, [&](std::int32_t c, std::string_view bytes) {
        if (bytes.size() == 1)
            return;
        const auto isIn = [c](std::int32_t first, std::int32_t last) { return c >= first && c <= last; };
        rare.invisible = rare.invisible || c == 0xAD || c == 0x200B || isIn(0x200E, 0x200F) || isIn(0x202A, 0x202E) ||
                         isIn(0x2060, 0x2064) || c == 0xFEFF;
        rare.unusualSpace = rare.unusualSpace || c == 0xA0 || isIn(0x2000, 0x200A) || c == 0x202F || c == 0x205F;
        rare.space = rare.space || (c <= 0x3000 && (c < 0x100 || c > 0x1600) && isWhiteSpace(c));
        rare.replacement = rare.replacement || c == 0xFFFD;
        rare.control = rare.control || isIn(0x80, 0x9F);
        rare.mark = rare.mark || isIn(0x300, 0x36F);
        rare.cyrillic = rare.cyrillic || isIn(0x400, 0x52F);
        rare.misdecoded = rare.misdecoded || c == 0xC2 || c == 0xC3 || c == 0xE2;
    });
    return rare;
}

} // namespace tavix::findings
