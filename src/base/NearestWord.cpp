#include "base/NearestWord.h"

#include "base/Ascii.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <vector>

namespace tavix {

namespace {

/// Longer names are not compared letter by letter.
constexpr std::size_t kLongestCompared = 64;

/// The number of insertions, deletions, replacements and swaps of neighbours between two words, ignoring case.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> beforeLast;
    std::vector<std::size_t> last(b.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::vector<std::size_t> current(b.size() + 1);
        current[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool isSame = asciiLower(a[i - 1]) == asciiLower(b[j - 1]);
            current[j] = std::min({last[j] + 1, current[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
            if (i > 1 && j > 1 && asciiLower(a[i - 1]) == asciiLower(b[j - 2]) &&
                asciiLower(a[i - 2]) == asciiLower(b[j - 1]))
                current[j] = std::min(current[j], beforeLast[j - 2] + 1);
        }
        beforeLast = std::move(last);
        last = std::move(current);
    }
    return last[b.size()];
}

} // namespace

std::string nearestWord(std::string_view word, std::span<const std::string> known) {
    std::string nearest;
    if (word.size() > kLongestCompared)
        return nearest;
    std::size_t best = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& candidate : known) {
        if (candidate.size() > kLongestCompared)
            continue;
        if (const std::size_t steps = distance(word, candidate); steps < best) {
            best = steps;
            nearest = candidate;
        }
    }
    return nearest;
}

std::string suggestion(std::string_view word, std::span<const std::string> known) {
    const std::string nearest = nearestWord(word, known);
    return nearest.empty() ? std::string() : fmt::format(" (did you mean \"{}\"?)", nearest);
}

} // namespace tavix
