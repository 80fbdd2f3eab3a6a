#include "filter/ValueLines.h"

#include "filter/OneLine.h"
#include "report/CountText.h"

#include <algorithm>
#include <cstdint>

namespace tavix {

namespace {

constexpr std::size_t kNamedValues = 4;
constexpr std::size_t kLongestNamed = 24; ///< characters

} // namespace

std::vector<std::string> ValuesOfLines(std::string_view text) {
    std::vector<std::string> values;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        if (end > begin)
            values.emplace_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return values;
}

std::string ValueListSummary(const std::vector<std::string>& values) {
    if (values.empty())
        return "No values yet";
    std::string summary(countOf(static_cast<std::int64_t>(values.size()), "value"));
    for (std::size_t i = 0; i < std::min(values.size(), kNamedValues); ++i)
        summary += (i == 0 ? ": " : ", ") + Shortened(OneLine(values[i]), kLongestNamed);
    return values.size() > kNamedValues ? summary + ", …" : summary;
}

} // namespace tavix
