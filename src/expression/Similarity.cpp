#include "expression/Similarity.h"

#include "base/Ascii.h"
#include "base/Characters.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::expression::similarity_functions {

namespace {

// The time grows with the product of both lengths.
constexpr std::size_t kLongest = 2'000;

using Code = std::vector<std::int32_t>;

/// The characters, with a number of its own for each invalid byte; leaves a failure for a text that is too long.
bool decode(std::string_view text, Code& out, Scratch& scratch) {
    out.clear();
    if (countCharacters(text) > kLongest) {
        scratch.fail(fmt::format("texts of more than {} characters are not compared for likeness", kLongest));
        return false;
    }
    forEachCharacter(text, [&out](std::int32_t character, std::string_view bytes) {
        out.push_back(character < 0 ? -1 - static_cast<unsigned char>(bytes.front()) : character);
    });
    return true;
}

struct Pair {
    Code left;
    Code right;
};

/// Kept for the next row, so that comparing needs no memory of its own.
Pair& pairOfThread() {
    thread_local Pair pair;
    return pair;
}

std::int64_t editDistanceOf(const Code& left, const Code& right) {
    thread_local std::vector<std::int64_t> row;
    row.resize(right.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::int64_t diagonal = row[0];
        row[0] = static_cast<std::int64_t>(i) + 1;
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::int64_t replaced = diagonal + (left[i] == right[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

double jaroOf(const Code& left, const Code& right) {
    if (left.empty() || right.empty())
        return left.empty() && right.empty() ? 1 : 0;
    const std::size_t longer = std::max(left.size(), right.size());
    const std::size_t window = longer < 4 ? 0 : longer / 2 - 1;
    thread_local std::vector<char> isTaken;
    thread_local Code matched;
    isTaken.assign(right.size(), 0);
    matched.clear();
    for (std::size_t i = 0; i < left.size(); ++i) {
        const std::size_t last = std::min(i + window + 1, right.size());
        for (std::size_t j = i > window ? i - window : 0; j < last; ++j) {
            if (isTaken[j] == 0 && left[i] == right[j]) {
                isTaken[j] = 1;
                matched.push_back(left[i]);
                break;
            }
        }
    }
    if (matched.empty())
        return 0;
    std::size_t displaced = 0;
    std::size_t next = 0;
    for (std::size_t j = 0; j < right.size(); ++j) {
        if (isTaken[j] != 0 && right[j] != matched[next++])
            ++displaced;
    }
    const auto matches = static_cast<double>(matched.size());
    const std::size_t pairs = displaced / 2;
    const auto transpositions = static_cast<double>(pairs);
    return (matches / static_cast<double>(left.size()) + matches / static_cast<double>(right.size()) +
            (matches - transpositions) / matches) /
           3;
}

/// The digit of a letter; '0' for a vowel, '-' for H and W, which do not separate letters of the same digit.
char soundexDigit(char upper) {
    constexpr std::string_view kDigits = "01230120022455012623010202";
    return upper == 'H' || upper == 'W' ? '-' : kDigits[static_cast<std::size_t>(upper - 'A')];
}

} // namespace

Value editDistance(Arguments arguments, Scratch& scratch) {
    Pair& pair = pairOfThread();
    if (!decode(arguments[0].text, pair.left, scratch) || !decode(arguments[1].text, pair.right, scratch))
        return {};
    return Value::ofInteger(editDistanceOf(pair.left, pair.right));
}

Value jaroWinkler(Arguments arguments, Scratch& scratch) {
    constexpr std::size_t kLongestPrefix = 4;
    constexpr double kScale = 0.1;
    Pair& pair = pairOfThread();
    if (!decode(arguments[0].text, pair.left, scratch) || !decode(arguments[1].text, pair.right, scratch))
        return {};
    const double jaro = jaroOf(pair.left, pair.right);
    std::size_t prefix = 0;
    while (prefix < std::min({kLongestPrefix, pair.left.size(), pair.right.size()}) &&
           pair.left[prefix] == pair.right[prefix])
        ++prefix;
    return Value::ofReal(jaro + static_cast<double>(prefix) * kScale * (1 - jaro));
}

Value soundex(Arguments arguments, Scratch& scratch) {
    constexpr std::size_t kLength = 4;
    std::string key;
    char last = '0';
    for (const char c : arguments[0].text) {
        if (!isAsciiLetter(c))
            continue;
        const char letter = asciiUpper(c);
        const char digit = soundexDigit(letter);
        if (key.empty())
            key += letter;
        else if (digit != '0' && digit != '-' && digit != last)
            key += digit;
        if (key.size() == kLength)
            break;
        last = digit == '-' ? last : digit;
    }
    if (key.empty())
        return {};
    key.resize(kLength, '0');
    return Value::ofText(scratch.keep(key));
}

} // namespace tavix::expression::similarity_functions
