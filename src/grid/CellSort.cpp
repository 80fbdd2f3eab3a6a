#include "grid/CellSort.h"

#include "base/Ascii.h"
#include "base/NumberText.h"
#include "grid/DistinctTexts.h"
#include "grid/RadixSort.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>

namespace tavix {

namespace {

// A double holds an integer of this many digits exactly, so different texts of such digits have different values.
constexpr std::size_t kExactDigits = 15;

// Cells read at a time; few enough to stay in the cache.
constexpr std::uint32_t kBatch = 256;

// How the key of a number is stored until the whole column has been read.
enum Note : std::uint32_t {
    kPlacesMask = 15,     ///< decimal places, of a decimal
    kIsDecimal = 16,      ///< the key is the number without its point, as a signed integer; else an ordered double
    kHasPlainerText = 32, ///< another text may have the same value
};

// Map signed integers, and doubles, to unsigned integers of the same order.
std::uint64_t orderedKey(std::int64_t value) {
    return static_cast<std::uint64_t>(value) ^ (std::uint64_t{1} << 63);
}

std::uint64_t orderedKey(double value) {
    constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
    const auto bits = std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value);
    return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

// Parses the usual form of a number, such as "-12.75". False for any other text, which may still be a number.
bool parseDecimal(std::string_view text, RadixItem& item) {
    const bool isNegative = text.front() == '-';
    const char* at = text.data() + (isNegative ? 1 : 0);
    const char* const end = text.data() + text.size();
    const auto length = static_cast<std::size_t>(end - at);
    if (length == 0 || length > kExactDigits + 1 || !isAsciiDigit(*at) || !isAsciiDigit(end[-1]))
        return false;
    const bool zeroAhead = *at == '0';
    std::int64_t digits = 0;
    for (; at != end && isAsciiDigit(*at); ++at)
        digits = digits * 10 + (*at - '0');
    const std::size_t whole = length - static_cast<std::size_t>(end - at);
    const std::size_t places = at == end ? 0 : static_cast<std::size_t>(end - at) - 1;
    if (at == end) {
        if (length > kExactDigits)
            return false;
    } else {
        if (*at++ != '.')
            return false;
        for (; at != end; ++at) {
            if (!isAsciiDigit(*at))
                return false;
            digits = digits * 10 + (*at - '0');
        }
    }
    // "007", "1.50" and "-0" have a plainer text.
    const bool isPlainest =
        !(zeroAhead && whole > 1) && !(places > 0 && end[-1] == '0') && !(isNegative && digits == 0);
    item.key = static_cast<std::uint64_t>(isNegative ? -digits : digits);
    item.note = kIsDecimal | static_cast<std::uint32_t>(places) | (isPlainest ? 0U : kHasPlainerText);
    return true;
}

bool parse(std::string_view text, RadixItem& item) {
    if (text.empty() || static_cast<unsigned char>(text.front()) > '9')
        return false;
    if (parseDecimal(text, item))
        return true;
    const auto value = parseNumber(text);
    if (!value)
        return false;
    item.key = orderedKey(*value);
    item.note = kHasPlainerText;
    return true;
}

constexpr std::array<std::int64_t, 19> powersOfTen() {
    std::array<std::int64_t, 19> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = powers[i - 1] * 10;
    return powers;
}

// Turns the output of parse() into sort keys; true when no two texts can have the same value. Where the decimals fit,
// the keys are integers, which have fewer digits to sort by, else doubles: a double holds number and power of ten
// exactly, so their quotient is the double nearest to the text.
bool makeKeys(std::vector<RadixItem>& numbers) {
    static constexpr std::array<std::int64_t, 19> kPowers = powersOfTen();
    std::uint32_t all = kIsDecimal;
    std::uint32_t any = 0;
    std::uint32_t places = 0;
    std::uint64_t largest = 0;
    for (const RadixItem& number : numbers) {
        all &= number.note;
        any |= number.note;
        places = std::max(places, number.note & kPlacesMask);
        const bool isNegative = static_cast<std::int64_t>(number.key) < 0;
        largest = std::max<std::uint64_t>(largest, isNegative ? 0 - number.key : number.key);
    }
    const bool asIntegers = all != 0 && largest < static_cast<std::uint64_t>(kPowers[kPowers.size() - 1 - places]);
    for (RadixItem& number : numbers) {
        if ((number.note & kIsDecimal) == 0)
            continue;
        const auto value = static_cast<std::int64_t>(number.key);
        const std::uint32_t own = number.note & kPlacesMask;
        number.key = asIntegers ? orderedKey(value * kPowers[places - own])
                                : orderedKey(static_cast<double>(value) / static_cast<double>(kPowers[own]));
    }
    return (any & kHasPlainerText) == 0;
}

struct TextCell {
    std::uint32_t record;
    std::uint32_t text;
};

// Orders numbers of equal value as texts.
void sortEqualNumbers(std::vector<RadixItem>& numbers, const CellTexts& textsFrom, bool descending) {
    const auto textOf = [&textsFrom](const RadixItem& number) {
        std::string_view text;
        textsFrom(number.id, {&text, 1});
        return text;
    };
    for (auto begin = numbers.begin(); begin != numbers.end();) {
        auto end = begin;
        std::uint32_t notes = 0;
        for (; end != numbers.end() && end->key == begin->key; ++end)
            notes |= end->note;
        if ((notes & kHasPlainerText) != 0 && end - begin > 1) {
            std::stable_sort(begin, end, [&textOf, descending](const RadixItem& a, const RadixItem& b) {
                return descending ? textOf(b) < textOf(a) : textOf(a) < textOf(b);
            });
        }
        begin = end;
    }
}

// Appends the records to `order`, sorted by the rank of their text.
void placeTexts(const std::vector<TextCell>& cells, std::vector<std::uint32_t> ranks, bool descending,
                std::vector<std::uint32_t>& order) {
    if (descending) {
        for (std::uint32_t& rank : ranks)
            rank = static_cast<std::uint32_t>(ranks.size()) - 1 - rank;
    }
    std::vector<std::uint32_t> next(ranks.size() + 1);
    for (const TextCell& cell : cells)
        ++next[ranks[cell.text] + 1];
    for (std::size_t i = 1; i < next.size(); ++i)
        next[i] += next[i - 1];
    const std::size_t first = order.size();
    order.resize(first + cells.size());
    for (const TextCell& cell : cells)
        order[first + next[ranks[cell.text]]++] = cell.record;
}

} // namespace

std::vector<std::uint32_t> sortedByText(std::uint32_t count, const CellTexts& textsFrom, bool descending) {
    std::vector<RadixItem> numbers;
    std::vector<TextCell> texts;
    DistinctTexts distinct;
    numbers.reserve(count); // unused pages cost no memory
    texts.reserve(count);
    std::array<std::string_view, kBatch> batch;
    for (std::uint32_t first = 0; first < count;) {
        const std::uint32_t size = std::min(kBatch, count - first);
        textsFrom(first, {batch.data(), size});
        for (std::uint32_t i = 0; i < size; ++i) {
            RadixItem number{0, first + i};
            if (parse(batch[i], number))
                numbers.push_back(number);
            else
                texts.push_back({first + i, distinct.add(batch[i])});
        }
        first += size;
    }
    const bool oneTextEach = makeKeys(numbers);
    for (RadixItem& number : numbers)
        number.key = descending ? ~number.key : number.key;
    {
        std::vector<RadixItem> spare;
        radixSort(numbers, spare);
    }
    if (!oneTextEach)
        sortEqualNumbers(numbers, textsFrom, descending);

    std::vector<std::uint32_t> order;
    order.reserve(count);
    const auto putNumbers = [&order, &numbers] {
        for (const RadixItem& number : numbers)
            order.push_back(number.id);
    };
    if (!descending)
        putNumbers();
    placeTexts(texts, distinct.ranks(), descending, order);
    if (descending)
        putNumbers();
    return order;
}

} // namespace tavix
