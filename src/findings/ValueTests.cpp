#include "findings/ValueTests.h"

#include "base/Characters.h"
#include "findings/ValueJudges.h"

namespace tavix::findings {

namespace {

constexpr std::array<ValueTestInfo, kValueTestCount> kTests{{
    {ValueTest::BlanksAtEnds, "not isblank(`Value`) and `Value` != trim(`Value`)", judge::blanksAtEnds},
    {ValueTest::BlanksInside, "contains(trim(`Value`), '  ')", judge::blanksInside},
    {ValueTest::LineBreaks, R"(matches(`Value`, '.*[\n\r].*'))", judge::lineBreaks},
    {ValueTest::ControlCharacters, R"(matches(`Value`, '.*[\x00-\x08\x0B\x0C\x0E-\x1F\x7F\x{80}-\x{9F}].*'))",
     judge::controlCharacters},
    {ValueTest::InvisibleCharacters,
     R"(matches(`Value`, '.*[\x{AD}\x{200B}\x{200E}\x{200F}\x{202A}-\x{202E}\x{2060}-\x{2064}\x{FEFF}].*'))",
     judge::invisible},
    {ValueTest::UnusualSpaces, R"(matches(`Value`, '.*[\x{A0}\x{2000}-\x{200A}\x{202F}\x{205F}].*'))",
     judge::unusualSpaces},
    {ValueTest::ReplacementCharacters, "contains(`Value`, '\xEF\xBF\xBD')", judge::replacements},
    {ValueTest::MisdecodedText, R"(matches(`Value`, '.*([\x{C2}\x{C3}][\x{A0}-\x{BF}]|\x{E2}\x{20AC}).*'))",
     judge::misdecoded},
    {ValueTest::LostCharacters, R"(matches(`Value`, '[^/=&]*\pL\?\pL[^/=&]*'))", judge::lostCharacters},
    {ValueTest::DecomposedAccents, R"(matches(`Value`, '.*[\x{300}-\x{36F}].*'))", judge::decomposed},
    {ValueTest::MixedScripts, R"(matches(`Value`, '.*([A-Za-z][\x{400}-\x{52F}]|[\x{400}-\x{52F}][A-Za-z]).*'))",
     judge::mixedScripts},
    {ValueTest::Markup,
     "matches(`Value`, '.*(&(amp|lt|gt|quot|apos|nbsp|#[0-9]{2,6}|#x[0-9A-Fa-f]{2,5});|"
     "</?(p|br|b|i|u|a|div|span|li|ul|td|tr|table|strong|em|font)( [^<>]*)?/?>).*')",
     judge::markup},
    {ValueTest::Escapes, R"(matches(`Value`, '.*(\\u[0-9A-Fa-f]{4}|\\x[0-9A-Fa-f]{2}|\\["\x27]).*'))", judge::escapes},
    {ValueTest::Quoted, R"(matches(`Value`, '".*"|\x27.*\x27'))", judge::quoted},
    {ValueTest::Delimiters, R"(matches(`Value`, '.*[|;\t].*'))", judge::delimiters},
    {ValueTest::Structured,
     R"(matches(`Value`, '\{.*".*:.*\}|\[ *["{\[].*\]|\[ *-?[0-9.]+ *,.*\]|<[A-Za-z?][^<>]*>.*</[A-Za-z][^<>]*>'))",
     judge::structured},
    {ValueTest::LeftOverDelimiter, "matches(`Value`, '.+[,;]')", judge::leftOver},
    {ValueTest::SpreadsheetError, "`Value` in ('#REF!', '#VALUE!', '#DIV/0!', '#NAME?', '#N/A', '#NUM!', '#NULL!')",
     judge::spreadsheetError},
    {ValueTest::Formula, R"(matches(`Value`, '=[A-Za-z(+\-@].*'))", judge::formula},
    {ValueTest::ExponentForm, R"(matches(`Value`, '[+\-]?[0-9](\.[0-9]+)?[eE]\+[0-9]{2,3}'))", judge::exponentForm},
    {ValueTest::ApostropheBeforeNumber, R"(matches(`Value`, '\x27[+\-]?[0-9][0-9.,]*'))", judge::apostrophe},
    {ValueTest::NumberInParentheses, R"(matches(`Value`, '\([0-9][0-9.,]*\)'))", judge::parentheses},
    {ValueTest::MinusAfterNumber, "matches(`Value`, '[0-9][0-9.,]*-')", judge::minusAfter},
    {ValueTest::NumberWithUnit,
     "matches(`Value`, '[+\\-]?[0-9]+([.,][0-9]+)*( "
     "?(kg|mg|lb|lbs|oz|km|m|cm|mm|mi|ft|in|yd|ml|cl|hrs?|min|mins|sec|ms|"
     "kW|kWh|Hz|kHz|MHz|GHz|MB|GB|TB|KB|kB|px|pt|pcs|%|\xC2\xB0|\xC2\xB0"
     "C|\xC2\xB0"
     "F|USD|EUR|GBP|CHF|JPY|\xE2\x82\xAC|\xC2\xA3|\xC2\xA5)| (g|t|l|h|s|V|A|W))|"
     "[$\xE2\x82\xAC\xC2\xA3\xC2\xA5] ?-?[0-9]+([.,][0-9]+)*')",
     judge::numberWithUnit},
    {ValueTest::ZeroPadded, "matches(`Value`, '0[0-9]+')", judge::zeroPadded},
    {ValueTest::DigitsOnly, "matches(`Value`, '[0-9]+')", judge::digitsOnly},
    {ValueTest::RunOfOneCharacter,
     R"(length(`Value`) >= 3 and replace(`Value`, left(`Value`, 1), '') == '' and matches(`Value`, '[^0-9IVXMCDLivxmcdl\s].*'))",
     judge::runOfOne},
    {ValueTest::NotUpperCase, "`Value` != upper(`Value`)", judge::notUpperCase},
    {ValueTest::EMail, R"(matches(`Value`, '[A-Za-z0-9._%+\-]+@[A-Za-z0-9\-]+(\.[A-Za-z0-9\-]+)*\.[A-Za-z]{2,24}'))",
     judge::eMail},
    {ValueTest::Phone,
     R"(matches(`Value`, '\+[0-9][0-9 ()./\-]{6,18}[0-9]|(\([0-9]{3}\) ?|[0-9]{3}[\-. ])[0-9]{3}[\-. ][0-9]{4}'))",
     judge::phone},
    {ValueTest::Url, R"(matches(`Value`, '(?i)(https?|ftp)://[^ ]+|(?i)www\.[^ ]+\.[^ ]+'))", judge::url},
    {ValueTest::IpAddress,
     R"(matches(`Value`, '((25[0-5]|2[0-4][0-9]|1[0-9]{2}|[1-9]?[0-9])\.){3}(25[0-5]|2[0-4][0-9]|1[0-9]{2}|[1-9]?[0-9])|([0-9A-Fa-f]{1,4}:){7}[0-9A-Fa-f]{1,4}'))",
     judge::ipAddress},
    {ValueTest::CardNumber,
     R"(isluhn(`Value`) and matches(`Value`, '(4[0-9]{3}|5[1-5][0-9]{2}|2[2-7][0-9]{2}|6011|65[0-9]{2})[ \-]?[0-9]{4}[ \-]?[0-9]{4}[ \-]?[0-9]{4}|3[47][0-9]{2}[ \-]?[0-9]{6}[ \-]?[0-9]{5}'))",
     judge::cardNumber},
    {ValueTest::Iban, "isiban(`Value`) and matches(`Value`, '[A-Z]{2}[0-9]{2}[ 0-9A-Z]{11,40}')", judge::iban},
    {ValueTest::NationalId,
     R"(matches(`Value`, '[0-8][0-9]{2}-[0-9]{2}-[0-9]{4}|[A-CEGHJ-PR-TW-Z][A-CEGHJ-NPR-TW-Z] ?[0-9]{2} ?[0-9]{2} ?[0-9]{2} ?[A-D]'))",
     judge::nationalId},
    {ValueTest::StreetAddress,
     R"(length(`Value`) < 100 and matches(`Value`, '(?i)[0-9]{1,5}[a-z]? ([^ ]+ ){1,5}(st|street|ave|avenue|rd|road|blvd|boulevard|lane|drive|dr|court|hwy|highway)\.?(,.*)?'))",
     judge::streetAddress},
}};

} // namespace

const std::array<ValueTestInfo, kValueTestCount>& valueTests() {
    return kTests;
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
