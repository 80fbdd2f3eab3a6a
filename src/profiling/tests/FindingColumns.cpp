#include "profiling/tests/FindingColumns.h"

#include "base/DateTicks.h"

#include <fmt/format.h>

#include <random>

namespace tavix::profiling::testing {

namespace {

using Cell = std::optional<std::string>;

constexpr std::size_t kRows = 400;

ColumnRows column(std::size_t rows, const std::function<Cell(std::size_t)>& make) {
    ColumnRows cells;
    for (std::size_t i = 0; i < rows; ++i)
        cells.push_back(make(i));
    return cells;
}

/// Words of which every `step`-th row has another text.
ColumnRows among(const std::vector<std::string>& others, std::size_t step = 50) {
    return column(kRows, [&](std::size_t i) -> Cell {
        return i % step == 3 ? others[i / step % others.size()] : wordOf(i * 7 % 90);
    });
}

/// The texts in turn, each with the number of the row put in.
ColumnRows made(const std::function<std::string(std::size_t)>& make) {
    return column(kRows, [&](std::size_t i) -> Cell { return make(i); });
}

std::string digits(std::size_t i, std::size_t places) {
    return fmt::format("{:0{}}", i * 7919 % 1'000'000'007, places);
}

/// With its check digit.
std::string cardNumber(std::size_t i) {
    std::string number = "411111" + fmt::format("{:09}", i * 104729 % 1'000'000'000);
    int sum = 0;
    for (std::size_t at = 0; at < number.size(); ++at) {
        const int digit = number[number.size() - 1 - at] - '0';
        const int doubled = 2 * digit;
        sum += at % 2 == 0 ? doubled / 10 + doubled % 10 : digit;
    }
    return number + static_cast<char>('0' + (10 - sum % 10) % 10);
}

std::map<std::string, ColumnRows> ofWriting() {
    return {
        {"blanks-at-ends", among({"Oslo ", " Oslo"})},
        {"blanks-inside", among({"New  York", "San  Jose"})},
        {"blank-values", column(kRows,
                                [](std::size_t i) -> Cell {
                                    return i % 20 == 0   ? Cell(i % 40 == 0 ? "" : " ")
                                           : i % 21 == 0 ? Cell()
                                                         : Cell(wordOf(i % 80));
                                })},
        {"line-breaks", among({"two\nlines", "two\r\nothers"})},
        {"control-characters", among({"a\x02z", "\x7Fy"})},
        {"invisible-characters", among({"zero\xE2\x80\x8B"
                                        "width",
                                        "\xEF\xBB\xBF"
                                        "mark"})},
        {"unusual-spaces", among({"no\xC2\xA0"
                                  "break"})},
        {"replacement-characters", among({"M\xEF\xBF\xBD"
                                          "ller"})},
        {"misdecoded-text", among({"M\xC3\x83\xC2\xBC"
                                   "ller",
                                   "it\xC3\xA2\xE2\x82\xAC\xE2\x84\xA2s"})},
        {"lost-characters", among({"M?ller"})},
        {"decomposed-accents", among({"cafe\xCC\x81"})},
        {"mixed-scripts", among({"P\xD0\xB0"
                                 "ris"})},
        {"markup", among({"Smith &amp; Co", "a<br>b"})},
        {"escape-sequences", among({"caf\\u00e9"})},
        {"quoted-values", among({"\"Oslo\"", "'Rome'"}, 10)},
        {"delimiters-inside", among({"red;green", "a|b"})},
        {"structured-values", among({"{\"a\": 1}", "[1, 2]"})},
        {"left-over-delimiters", among({"Oslo,", "Rome;"})},
        {"spreadsheet-errors", among({"#REF!", "#DIV/0!"})},
        {"formulas", among({"=A1+B1"})},
        {"numbers-in-exponent-form", made([](std::size_t i) { return i % 40 == 3 ? "4.9E+12" : "X" + digits(i, 12); })},
        {"apostrophe-before-numbers", among({"'0075", "'12"})},
        {"numbers-in-parentheses", among({"(500)", "(1,234.50)"})},
        {"minus-after-numbers", among({"500-", "12.5-"})},
        {"numbers-with-units", made([](std::size_t i) { return fmt::format("{} kg", i % 70 + 1); })},
        {"odd-case", made([](std::size_t i) {
             std::string word = wordOf(i % 60);
             if (i != 99)
                 for (char& c : word)
                     c = static_cast<char>(c >= 'a' ? c - 32 : c);
             return word;
         })},
        {"zero-padded-numbers", made([](std::size_t i) { return digits(i, 5).substr(0, 5); })},
    };
}

std::map<std::string, ColumnRows> ofContents() {
    return {
        {"placeholder-words", among({"N/A", "unknown", "-"})},
        {"placeholder-characters", among({"xxxx", "???????"})},
        {"placeholder-dates", made([](std::size_t i) {
             return i % 20 == 0   ? "9999-12-31"
                    : i % 33 == 0 ? "1900-01-01"
                                  : dayAfter(static_cast<std::int64_t>(i * 2));
         })},
        {"placeholder-numbers",
         made([](std::size_t i) { return i % 100 == 0 ? "99999" : std::to_string(20 + i * 7 % 300); })},
        {"isolated-zeros", made([](std::size_t i) { return i % 50 == 0 ? "0" : std::to_string(150 + i * 7 % 211); })},
        {"test-values", among({"test", "asdf"})},
        {"several-cases", among({"Berlin", "BERLIN", "berlin"})},
        {"several-accents", among({"Z\xC3\xBC"
                                   "rich",
                                   "Zurich"})},
        {"several-spellings", among({"Lions Gate", "Lions-Gate", "Lionsgate"})},
        {"mixed-codes", made([](std::size_t i) { return i % 30 == 0  ? "Yes"
                                                        : i % 2 == 0 ? "Y"
                                                                     : "N"; })},
        {"email-addresses", made([](std::size_t i) { return wordOf(i) + "@example.com"; })},
        {"phone-numbers", made([](std::size_t i) { return "+49 30 " + digits(i + 1, 7).substr(0, 7); })},
        {"card-numbers", made(cardNumber)},
        {"bank-accounts", among({"DE89370400440532013000", "GB82WEST12345698765432"}, 5)},
        {"national-ids", made([](std::size_t i) {
             return fmt::format("{:03}-{:02}-{:04}", 100 + i, i % 90 + 10, i * 7 % 9000 + 1000);
         })},
        {"ip-addresses", made([](std::size_t i) { return fmt::format("10.{}.{}.{}", i % 7, i % 100, i % 250); })},
        {"street-addresses", made([](std::size_t i) { return fmt::format("{} {} Street", i + 1, wordOf(i % 40)); })},
        {"emails-among-others", among({"ann@example.com", "bob@example.com"})},
        {"phones-among-others", among({"(030) 123-4567"})},
        {"urls-among-others", among({"https://example.com/a"})},
        {"addresses-among-names", among({"12 Main Street"})},
    };
}

std::map<std::string, ColumnRows> ofShape() {
    std::mt19937 random(3);
    return {
        {"no-value", column(kRows, [](std::size_t i) -> Cell { return i % 2 == 0 ? Cell() : Cell(" "); })},
        {"mostly-missing", column(kRows,
                                  [](std::size_t i) -> Cell {
                                      return i % 40 == 0 ? Cell(wordOf(i)) : i % 3 == 0 ? Cell("") : Cell();
                                  })},
        {"one-value", made([](std::size_t) { return "EUR"; })},
        {"dominant-value", made([](std::size_t i) { return i % 100 == 0 ? "GBP" : "EUR"; })},
        {"rare-values", column(3000,
                               [](std::size_t i) -> Cell {
                                   return i == 77 ? "grene" : i % 3 == 0 ? "red" : i % 3 == 1 ? "green" : "blue";
                               })},
        {"nearly-unique", made([](std::size_t i) { return i == 200 ? wordOf(17) : wordOf(i); })},
        {"identifier-gaps", made([](std::size_t i) { return std::to_string(i < 200 ? i : i + 3); })},
        {"rare-patterns", made([](std::size_t i) {
             return i == 50   ? std::string("X-17")
                    : i == 60 ? std::string("AB1234")
                              : fmt::format("AB-{}", digits(i, 4).substr(0, 4));
         })},
        {"odd-lengths", made([](std::size_t i) {
             std::string id = fmt::format("{:08x}", static_cast<std::uint32_t>(i * 2654435761U));
             id[i % 8] = "ghxyz"[i % 5];
             return i == 300 ? id.substr(1) : id;
         })},
        {"cut-off-texts", made([&](std::size_t i) {
             std::string text = wordOf(i);
             while (random() % 6 != 0)
                 text += " " + wordOf(random() % 1000).substr(0, 3 + random() % 4);
             return text.size() > 30 && text[29] == ' ' ? text.substr(0, 29) + "x" : text.substr(0, 30);
         })},
    };
}

std::map<std::string, ColumnRows> ofQuantities() {
    const auto day = [](std::size_t i) { return dayAfter(static_cast<std::int64_t>(i)); };
    return {
        {"dates-in-the-future",
         made([&](std::size_t i) { return i == 9 ? std::string("2027-01-05") : day(i * 3 / 2); })},
        {"dates-before-1900", made([&](std::size_t i) { return i == 9 ? std::string("1824-03-05") : day(i * 3 / 2); })},
        {"no-recent-dates", made([&](std::size_t i) { return day(i * 2 % 700); })},
        {"missing-days", made([&](std::size_t i) { return day(i < 100 ? i : i + 4); })},
        {"missing-months", made([&](std::size_t i) {
             const std::size_t month = i % 60 < 30 ? i % 60 : i % 60 + 1;
             return fmt::format("{}-{:02}-{:02}", 2019 + month / 12, month % 12 + 1, i % 5 * 5 + 1);
         })},
        {"first-of-january",
         made([&](std::size_t i) { return i % 10 == 0 ? std::string("2025-01-01") : day(i * 11 / 5); })},
        {"dates-without-time", made([&](std::size_t i) {
             return day(i / 2) + (i % 10 == 0 ? "" : fmt::format(" {:02}:{:02}", i * 37 % 1440 / 60, i * 37 % 60));
         })},
        {"far-outliers", made([](std::size_t i) { return i == 8 ? "99000" : std::to_string(20 + i * 7 % 300); })},
        {"negative-numbers", made([](std::size_t i) { return i == 8 ? "-2000" : std::to_string(20 + i * 7 % 300); })},
        {"round-numbers",
         made([](std::size_t i) { return std::to_string(i % 3 == 0 ? 100 + i * 7 % 211 : 10 * (i % 90 + 1)); })},
    };
}

std::map<std::string, ColumnRows> ofTypes() {
    const auto numbers = [](const std::string& other) {
        return made([other](std::size_t i) { return i == 33 ? other : std::to_string(20 + i * 7 % 300); });
    };
    return {
        {"numbers-as-text", numbers("unknown")},
        {"values-that-do-not-fit", numbers("12o")},
        {"dates-as-text", made([](std::size_t i) { return fmt::format("{:02}.{:02}.2024", i % 28 + 1, i % 12 + 1); })},
        {"booleans-as-text", made([](std::size_t i) { return i == 33      ? "maybe"
                                                             : i % 2 == 0 ? "true"
                                                                          : "false"; })},
        {"ambiguous-readings",
         made([](std::size_t i) { return fmt::format("{:02}/{:02}/2024", i % 11 + 1, i % 9 + 1); })},
        {"mixed-date-forms", made([](std::size_t i) {
             return i % 4 == 0 ? fmt::format("2024/{:02}/{:02}", i % 12 + 1, i % 28 + 1)
                               : fmt::format("{:02}.{:02}.2024", i % 28 + 1, i % 12 + 1);
         })},
    };
}

} // namespace

std::string wordOf(std::size_t i) {
    static const std::vector<std::string> kFirst = {"Ba", "Ke", "Li", "Mo", "Nu", "Ra", "Se", "Ti", "Vo", "Za"};
    static const std::vector<std::string> kThen = {"ba", "kell", "li", "moss", "nu", "rand", "se", "tin", "vo", "zark"};
    return kFirst[i % 10] + kThen[i / 10 % 10] + kThen[i / 100 % 10];
}

std::string dayAfter(std::int64_t days) {
    return formatDate(*parseDate("2024-01-01") + days * kTicksPerDay);
}

const std::map<std::string, ColumnRows>& columnsWithFindings() {
    static const std::map<std::string, ColumnRows> kAll = [] {
        std::map<std::string, ColumnRows> all = ofTypes();
        for (auto part : {ofWriting(), ofContents(), ofShape(), ofQuantities()})
            all.merge(part);
        return all;
    }();
    return kAll;
}

const std::map<std::string, ColumnRows>& soundColumns() {
    static const std::map<std::string, ColumnRows> kAll = {
        {"key", made([](std::size_t i) { return std::to_string(i + 1); })},
        {"name", made([](std::size_t i) { return wordOf(i % 150) + " " + wordOf(i * 3 % 170); })},
        {"currency", made([](std::size_t i) { return i % 5 == 0   ? "USD"
                                                     : i % 2 == 0 ? "EUR"
                                                                  : "GBP"; })},
        {"price",
         made([](std::size_t i) { return fmt::format("{:.2f}", 1.5 + static_cast<double>(i * 37 % 901) / 7); })},
        {"temperature",
         made([](std::size_t i) { return fmt::format("{:.1f}", -3 + static_cast<double>(i * 37 % 331) / 10); })},
        {"sold", made([](std::size_t i) { return dayAfter(static_cast<std::int64_t>(700 + i * 5 % 350)); })},
        {"code", made([](std::size_t i) { return fmt::format("AB-{}", 1000 + i * 7 % 9000); })},
        {"comment", made([](std::size_t i) { return wordOf(i) + " was here, and left " + wordOf(i % 7); })},
        {"optional", column(kRows, [](std::size_t i) -> Cell { return i % 3 == 0 ? Cell() : Cell(wordOf(i % 40)); })},
        {"five rows", column(5, [](std::size_t i) -> Cell { return i == 0 ? " N/A " : "x"; })},
    };
    return kAll;
}

} // namespace tavix::profiling::testing
