#include "base/Ascii.h"
#include "base/Characters.h"
#include "findings/FieldRules.h"
#include "pattern/CharacterPattern.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tavix::findings {

namespace {

/// Fewer values in the usual form prove no form.
constexpr std::uint64_t kLeastUsual = 20;

/// The regular expression of the texts with a pattern.
std::string expressionOf(std::string_view pattern) {
    std::string expression;
    for (std::size_t at = 0; at < pattern.size();) {
        const std::size_t begin = at;
        const std::int32_t character = nextCharacter(pattern, at);
        const std::string_view bytes = pattern.substr(begin, at - begin);
        if (character == 'A')
            expression += R"([\p{Lu}\p{Lt}])";
        else if (character == 'a')
            expression += R"([\p{Ll}\p{Lm}\p{Lo}])";
        else if (character == '9')
            expression += R"(\p{Nd})";
        else if (character >= 0x80 || bytes == " " || bytes == "_")
            expression += bytes;
        else
            expression += fmt::format(R"(\x{{{:X}}})", character);
    }
    return expression;
}

/// Nearly all values have one pattern, and some another one.
void addRarePatterns(FieldCase& field) {
    constexpr double kNearlyAll = 0.98;
    constexpr double kAlmostAll = 0.995;
    constexpr std::size_t kLongestPattern = 60;
    const auto& patterns = field.values.patterns();
    const auto usual = std::max_element(patterns.begin(), patterns.end(), [](const auto& a, const auto& b) {
        return a.hits.rows != b.hits.rows ? a.hits.rows < b.hits.rows : a.pattern > b.pattern;
    });
    if (usual == patterns.end() || usual->hits.values < kLeastUsual || usual->pattern.size() > kLongestPattern)
        return;
    const double share = field.shareOf(usual->hits);
    const Hits& shown = field.values.shown();
    if (share < kNearlyAll || shown.rows == usual->hits.rows || shown.rows < kLeastForShares)
        return;
    std::string names;
    std::vector<const ValueDetectors::Pattern*> others;
    for (const auto& pattern : patterns)
        if (pattern.pattern != usual->pattern)
            others.push_back(&pattern);
    std::sort(others.begin(), others.end(), [](const auto* a, const auto* b) {
        return a->hits.rows != b->hits.rows ? a->hits.rows > b->hits.rows : a->pattern < b->pattern;
    });
    constexpr std::size_t kNamed = 3;
    for (std::size_t i = 0; i < std::min(others.size(), kNamed); ++i)
        names += fmt::format("{}{}", i > 0 ? ", " : "", quoted(pattern::shortPattern(others[i]->pattern)));
    field.add("rare-patterns", share >= kAlmostAll ? Likelihood::Likely : Likelihood::Possible,
              {shown.values - usual->hits.values, shown.rows - usual->hits.rows},
              fmt::format("not isblank(`Value`) and not matches(`Value`, {})", literalOf(expressionOf(usual->pattern))),
              fmt::format("{} beside {}", names, quoted(pattern::shortPattern(usual->pattern))));
}

/// Nearly all values are of one length, whatever their characters are.
void addOddLengths(FieldCase& field) {
    constexpr double kNearlyAll = 0.99;
    constexpr std::size_t kLeastLength = 4; ///< of an identifier or code
    const auto& lengths = field.values.lengths();
    const auto usual = std::max_element(lengths.begin(), lengths.end(),
                                        [](const Hits& a, const Hits& b) { return a.values < b.values; });
    const auto length = static_cast<std::size_t>(usual - lengths.begin());
    const Hits& shown = field.values.shown();
    if (length < kLeastLength || usual->values < kLeastForShares || usual->values == shown.values ||
        field.shareOf(*usual) < kNearlyAll)
        return;
    if (static_cast<double>(usual->values) < kNearlyAll * static_cast<double>(shown.values))
        return;
    field.add("odd-lengths", Likelihood::Likely, {shown.values - usual->values, shown.rows - usual->rows},
              fmt::format("not isblank(`Value`) and length(`Value`) != {}", length),
              fmt::format("nearly all values have {} characters", length));
}

bool isUsualWidth(std::uint64_t length) {
    constexpr std::array<std::uint64_t, 24> kWidths = {15, 16,  20,  24,  25,  30,  32,  35,  40,  50,  60,  64,
                                                       80, 100, 120, 128, 150, 200, 250, 254, 255, 256, 500, 512};
    constexpr std::array<std::uint64_t, 6> kLarge = {1000, 1024, 2000, 4000, 32'767, 65'535};
    return std::find(kWidths.begin(), kWidths.end(), length) != kWidths.end() ||
           std::find(kLarge.begin(), kLarge.end(), length) != kLarge.end();
}

/// Lengths thin out towards the greatest one, unless something cuts.
void addCutOff(FieldCase& field) {
    constexpr std::uint64_t kLeastLength = 10;
    constexpr std::uint64_t kLeastValues = 5;
    constexpr std::uint64_t kTimesTheNext = 3;
    constexpr std::uint64_t kMostPercent = 50; ///< of the values: more of one length are codes
    const auto longest = field.values.longest();
    if (longest.size() < 2 || longest.front().length < kLeastLength)
        return;
    const auto& [length, hits] = longest.front();
    std::uint64_t next = 0;
    for (std::size_t i = 1; i < longest.size(); ++i)
        if (longest[i].length + 3 >= length)
            next = std::max(next, longest[i].hits.values);
    if (hits.values < kLeastValues || hits.values < kTimesTheNext * next ||
        hits.values * 100 > field.values.shown().values * kMostPercent)
        return;
    field.add("cut-off-texts", isUsualWidth(length) ? Likelihood::Likely : Likelihood::Possible, hits,
              fmt::format("not isblank(`Value`) and length(`Value`) == {}", length),
              fmt::format("{} values have exactly {} characters, and none has more", hits.values, length));
}

} // namespace

void addShape(FieldCase& field) {
    if (!field.isText())
        return;
    addRarePatterns(field);
    if (!field.has("rare-patterns"))
        addOddLengths(field);
    if (!field.has("odd-lengths") && !field.has("rare-patterns"))
        addCutOff(field);
}

} // namespace tavix::findings
