#include "access/FilterCode.h"

#include <algorithm>
#include <array>

namespace tavix {

FilterCode codeOf(std::string_view filterText) {
    // The block is a comment, but a value in it may contain "*/", where the lexer would end it.
    constexpr std::string_view kBegin = "/*{{BEGIN CONDITIONS\r\n";
    constexpr std::string_view kEnd = "}}END CONDITIONS*/\r\n";
    const std::size_t end =
        filterText.starts_with(kBegin) ? filterText.find(kEnd, kBegin.size()) : std::string_view::npos;
    if (end == std::string_view::npos)
        return {filterText, 0};
    const std::string_view block = filterText.substr(0, end + kEnd.size());
    return {filterText.substr(block.size()), static_cast<int>(std::count(block.begin(), block.end(), '\n'))};
}

expression::Compiled compileFilter(std::string_view filterText, std::int64_t now) {
    static const std::array<expression::Field, FilterColumns> kFields{
        expression::Field{"Value", expression::Type::Text}, expression::Field{"Count", expression::Type::Integer}};
    return expression::compile(codeOf(filterText).text, kFields, expression::Wanted::Condition, now);
}

std::string_view faultOfUnfinished(std::string_view filterText) {
    const std::string_view code = codeOf(filterText).text;
    return code.starts_with(kCannotDisplay) ? code.substr(kCannotDisplay.size()) : std::string_view();
}

} // namespace tavix
