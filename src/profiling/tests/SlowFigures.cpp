#include "profiling/tests/SlowFigures.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <regex>
#include <utility>

namespace tavix::profiling::testing {

namespace {

using nlohmann::json;
using Counts = std::map<std::string, std::uint64_t>; // in the order of the bytes
using Rows = std::vector<std::string>;               // one for each row that takes part

std::vector<UChar32> charactersOf(const std::string& text) {
    const icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(text);
    std::vector<UChar32> characters;
    for (int at = 0; at < unicode.length(); at = unicode.moveIndex32(at, 1))
        characters.push_back(unicode.char32At(at));
    return characters;
}

bool isWhite(const std::string& text) {
    const auto characters = charactersOf(text);
    return !text.empty() &&
           std::all_of(characters.begin(), characters.end(), [](UChar32 c) { return u_isUWhiteSpace(c); });
}

std::string patternOf(const std::string& text) {
    icu::UnicodeString pattern;
    for (const UChar32 c : charactersOf(text)) {
        const std::uint32_t category = U_MASK(u_charType(c));
        if (category & (U_GC_LU_MASK | U_GC_LT_MASK))
            pattern += u'A';
        else if (category & U_GC_L_MASK)
            pattern += u'a';
        else if (category & U_GC_ND_MASK)
            pattern += u'9';
        else
            pattern += c;
    }
    std::string out;
    return pattern.toUTF8String(out);
}

/// Days since 1970, and ticks of 100 ns.
std::optional<long double> instantOf(const std::string& text) {
    static const std::regex kForm(
        R"((\d{4})-(\d\d)-(\d\d)(?:[T ](\d\d):(\d\d)(?::(\d\d)(?:[.,](\d{1,9}))?)?(Z|[+-]\d\d(?::?\d\d)?)?)?)");
    std::smatch part;
    if (!std::regex_match(text, part, kForm))
        return std::nullopt;
    const auto number = [&](std::size_t i) { return part[i].matched ? std::stoi(part[i]) : 0; };
    const std::chrono::year_month_day day{std::chrono::year{number(1)},
                                          std::chrono::month{static_cast<unsigned>(number(2))},
                                          std::chrono::day{static_cast<unsigned>(number(3))}};
    if (number(1) == 0 || !day.ok() || number(4) > 23 || number(5) > 59 || number(6) > 59)
        return std::nullopt;
    long double seconds = static_cast<long double>(std::chrono::sys_days{day}.time_since_epoch().count()) * 86400;
    seconds += number(4) * 3600 + number(5) * 60 + number(6);
    const std::string zone = part[8];
    if (zone.size() > 1) {
        const int offset =
            std::stoi(zone.substr(1, 2)) * 60 + (zone.size() > 3 ? std::stoi(zone.substr(zone.size() - 2)) : 0);
        seconds += zone[0] == '+' ? -offset * 60 : offset * 60;
    }
    const std::string fraction = (std::string(part[7]) + "0000000").substr(0, 7);
    return seconds * 10'000'000 + std::stoi(fraction);
}

char kindOf(const std::string& text) {
    static const std::regex kBoolean("true|false", std::regex::icase);
    static const std::regex kInteger(R"([+-]?(0|[1-9]\d*))");
    static const std::regex kReal(R"([+-]?((0|[1-9]\d*)(\.\d*)?|\.\d+)([eE][+-]?\d+)?)");
    if (std::regex_match(text, kBoolean))
        return 'B';
    if (std::regex_match(text, kReal) && std::isfinite(std::strtod(text.c_str(), nullptr)))
        return std::regex_match(text, kInteger) ? 'I' : 'R';
    return instantOf(text) ? 'D' : 'S';
}

char kindOfField(const Counts& counts) {
    char kind = 0;
    for (const auto& [text, count] : counts) {
        if (text.empty() || isWhite(text))
            continue;
        const char next = kindOf(text);
        if (kind == 0 || kind == next)
            kind = next;
        else
            kind = (kind == 'I' || kind == 'R') && (next == 'I' || next == 'R') ? 'R' : 'S';
    }
    return kind;
}

bool fits64(const std::string& integer) {
    const std::string digits = integer.substr(integer.find_first_not_of("+-"));
    const std::string most = integer[0] == '-' ? "9223372036854775808" : "9223372036854775807";
    return digits.size() < most.size() || (digits.size() == most.size() && digits <= most);
}

/// Below, by what the texts mean.
bool isLess(char kind, const std::string& a, const std::string& b) {
    const auto byText = [&](auto x, auto y) { return x != y ? x < y : a < b; };
    switch (kind) {
    case 'B':
        return byText(a.size() == 4, b.size() == 4);
    case 'I': {
        const auto key = [](const std::string& text) {
            const std::string digits = text.substr(text.find_first_not_of("+-"));
            const int sign = digits == "0" ? 0 : text[0] == '-' ? -1 : 1;
            return std::pair(sign, std::pair(digits.size(), digits));
        };
        const auto [signA, sizeA] = key(a);
        const auto [signB, sizeB] = key(b);
        if (signA != signB)
            return signA < signB;
        return sizeA == sizeB ? a < b : signA < 0 ? sizeB < sizeA : sizeA < sizeB;
    }
    case 'R':
        return byText(std::strtod(a.c_str(), nullptr), std::strtod(b.c_str(), nullptr));
    case 'D':
        return byText(*instantOf(a), *instantOf(b));
    default:
        return a < b;
    }
}

int placesOf(const std::string& real) {
    const std::size_t exponentAt = real.find_first_of("eE");
    const std::string mantissa = real.substr(0, exponentAt);
    const std::size_t point = mantissa.find('.');
    const int places = point == std::string::npos ? 0 : static_cast<int>(mantissa.size() - point - 1);
    return std::max(0, places - (exponentAt == std::string::npos ? 0 : std::stoi(real.substr(exponentAt + 1))));
}

json distribution(const Counts& counts, std::uint64_t nulls) {
    std::vector<std::pair<json, std::uint64_t>> list;
    if (nulls > 0)
        list.emplace_back(nullptr, nulls);
    for (const auto& [text, count] : counts)
        list.emplace_back(text, count);
    std::stable_sort(list.begin(), list.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
    auto rows = json::array();
    for (const auto& [value, count] : list)
        rows.push_back({value, count});
    return rows;
}

long double numberOf(const std::string& text) {
    return std::strtod(text.c_str(), nullptr);
}

std::string textOf(long double number) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.17g", static_cast<double>(number));
    return buffer;
}

/// Everything that needs the rows in their order.
void addOrdered(json& field, const Counts& counts, char kind) {
    const bool isNumber = kind == 'I' || kind == 'R';
    std::vector<std::string> values;
    for (const auto& [text, count] : counts)
        if (kind == 0 || kind == 'S' || !(text.empty() || isWhite(text)))
            values.push_back(text);
    std::stable_sort(values.begin(), values.end(),
                     [&](const std::string& a, const std::string& b) { return isLess(kind, a, b); });
    if (values.empty())
        return;
    Rows rows;
    for (const std::string& value : values)
        rows.insert(rows.end(), counts.at(value), value);
    // Integers within 64 bits are figured with exactly; strtod() would lose digits of the large ones.
    const bool isExact = kind == 'I' && std::all_of(values.begin(), values.end(), fits64);
    const auto number = [&](const std::string& text) {
        return isExact ? static_cast<long double>(std::strtoll(text.c_str(), nullptr, 10)) : numberOf(text);
    };
    json& metrics = field["metrics"];
    metrics["minimum_value"] = values.front();
    metrics["maximum_value"] = values.back();
    metrics["mode"] = *std::max_element(values.begin(), values.end(),
                                        [&](const auto& a, const auto& b) { return counts.at(a) < counts.at(b); });
    const std::size_t n = rows.size();
    const auto linear = [&](unsigned percent) {
        const std::size_t position = (n - 1) * percent;
        const long double low = number(rows[position / 100]);
        const long double high = number(rows[std::min(position / 100 + 1, n - 1)]);
        return low + (high - low) * static_cast<long double>(position % 100) / 100;
    };
    const auto quantile = [&](unsigned percent) {
        if (isNumber)
            return textOf(linear(percent));
        return rows[std::max<std::size_t>((n * percent + 99) / 100, 1) - 1];
    };
    field["rule"] = isNumber ? "linear interpolation (R type 7)" : "nearest rank";
    metrics["median"] = quantile(50);
    for (const unsigned percent : {1, 5, 10, 20, 25, 30, 40, 50, 60, 70, 75, 80, 90, 95, 99})
        field["percentiles"].push_back({std::to_string(percent) + "%", quantile(percent)});
    if (isNumber) {
        long double sum = 0;
        for (const std::string& row : rows)
            sum += number(row);
        const long double mean = sum / static_cast<long double>(n);
        long double squares = 0;
        for (const std::string& row : rows)
            squares += (number(row) - mean) * (number(row) - mean);
        metrics["mean"] = static_cast<double>(mean);
        const auto deviation = static_cast<double>(std::sqrt(squares / static_cast<long double>(n - 1)));
        if (n > 1 && std::isfinite(deviation)) {
            metrics["standard_deviation"] = deviation;
            metrics["standard_error"] = deviation / std::sqrt(static_cast<double>(n));
        }
    }
    const auto fence = [&](const std::string& text) {
        if (!isNumber)
            return 0;
        const long double low = linear(25);
        const long double range = linear(75) - low;
        const auto beyond = [&](long double k) {
            return number(text) < low - k * range || number(text) > linear(75) + k * range;
        };
        return beyond(3) ? 2 : beyond(1.5L) ? 1 : 0;
    };
    for (std::size_t i = 0; i < std::min<std::size_t>(10, values.size()); ++i)
        field["outliers"].push_back({"L", i, values[i], counts.at(values[i]), fence(values[i])});
    for (std::size_t i = 0; i < std::min<std::size_t>(10, values.size()); ++i) {
        const std::string& value = values[values.size() - 1 - i];
        field["outliers"].push_back({"H", i, value, counts.at(value), fence(value)});
    }
    if (kind == 'R') {
        metrics["decimal_precision"] = 0;
        for (const std::string& value : values)
            metrics["decimal_precision"] = std::max(metrics["decimal_precision"].get<int>(), placesOf(value));
    }
}

std::optional<double> asNumber(const json& value) {
    if (value.is_number())
        return value.get<double>();
    if (!value.is_string())
        return std::nullopt;
    const auto text = value.get<std::string>();
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    return !text.empty() && end == text.c_str() + text.size() ? std::optional(number) : std::nullopt;
}

} // namespace

json slowFigures(const std::vector<std::optional<std::string>>& rows, const std::string& name, int ordinal) {
    Counts counts;
    Counts patterns;
    std::uint64_t nulls = 0;
    std::uint64_t blanks = 0;
    std::size_t shortest = SIZE_MAX;
    std::size_t longest = 0;
    for (const auto& row : rows) {
        if (!row) {
            ++nulls;
            continue;
        }
        ++counts[*row];
        ++patterns[patternOf(*row)];
        blanks += isWhite(*row) ? 1 : 0;
        const std::size_t length = charactersOf(*row).size();
        shortest = std::min(shortest, length);
        longest = std::max(longest, length);
    }
    const char kind = kindOfField(counts);
    static const std::map<char, std::string> kWords = {
        {'S', "text"}, {'I', "integer"}, {'R', "real"}, {'D', "date"}, {'B', "boolean"}};
    json field = {{"name", name},
                  {"type", kind == 0 ? std::string() : std::string(1, kind)},
                  {"rule", ""},
                  {"percentiles", json::array()},
                  {"outliers", json::array()},
                  {"values", distribution(counts, nulls)},
                  {"patterns", distribution(patterns, 0)}};
    json& metrics = field["metrics"];
    for (const char* column :
         {"minimum_value", "maximum_value", "minimum_length", "maximum_length", "mean", "median", "mode",
          "standard_deviation", "standard_error", "defined_type", "defined_length", "primary_key", "nullable",
          "decimal_precision", "actual_type", "unique_percent", "percent_null"})
        metrics[column] = nullptr;
    metrics["count"] = rows.size();
    metrics["unique_count"] = counts.size();
    metrics["null_count"] = nulls;
    metrics["non_null_count"] = rows.size() - nulls;
    metrics["blank_count"] = blanks;
    metrics["pattern_count"] = patterns.size();
    metrics["ordinal"] = ordinal;
    if (kind != 0)
        metrics["actual_type"] = kWords.at(kind);
    if (!rows.empty()) {
        metrics["unique_percent"] = 100.0 * static_cast<double>(counts.size()) / static_cast<double>(rows.size());
        metrics["percent_null"] = 100.0 * static_cast<double>(nulls) / static_cast<double>(rows.size());
    }
    if (!counts.empty()) {
        metrics["minimum_length"] = shortest;
        metrics["maximum_length"] = longest;
        addOrdered(field, counts, kind);
    }
    return field;
}

std::string difference(const json& expected, const json& found) {
    if (expected.is_structured() && expected.type() == found.type()) {
        if (expected.size() != found.size())
            return ": " + std::to_string(found.size()) + " entries instead of " + std::to_string(expected.size());
        for (auto at = expected.begin(); at != expected.end(); ++at) {
            const std::string key = expected.is_object() ? at.key() : std::to_string(at - expected.begin());
            if (expected.is_object() && !found.contains(key))
                return "/" + key + " is missing";
            const json& other =
                expected.is_object() ? found.at(key) : found[static_cast<std::size_t>(at - expected.begin())];
            if (std::string text = difference(*at, other); !text.empty())
                return "/" + key + text;
        }
        return {};
    }
    if (expected == found)
        return {};
    const auto a = asNumber(expected);
    const auto b = asNumber(found);
    // As texts these numbers were computed; a value of the column never differs.
    if (a && b && std::fabs(*a - *b) <= 1e-12 * std::max(std::fabs(*a), std::fabs(*b)))
        return {};
    return ": " + found.dump() + " instead of " + expected.dump();
}

} // namespace tavix::profiling::testing
