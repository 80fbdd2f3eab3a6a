#include "filter/FunctionTexts.h"

#include "expression/TextOperators.h"
#include "filter/OneLine.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <vector>

namespace tavix {

namespace {

struct Type {
    char letter;
    std::string_view word;
};

constexpr std::array<Type, 15> kTypes = {{
    {'B', "explicit boolean"},
    {'D', "explicit date"},
    {'I', "explicit integer"},
    {'O', "object/array"},
    {'P', "explicit pointer"},
    {'R', "explicit real"},
    {'S', "explicit string"},
    {'a', "any"},
    {'b', "boolean"},
    {'d', "date"},
    {'i', "integer"},
    {'o', "object/array"},
    {'p', "pointer"},
    {'r', "real"},
    {'s', "string"},
}};

} // namespace

std::string_view TypeWord(char type) {
    const auto* found = std::find_if(kTypes.begin(), kTypes.end(), [&](const Type& t) { return t.letter == type; });
    return found == kTypes.end() ? "other" : found->word;
}

std::string FunctionSignatureText(const FilterFunction& function) {
    std::vector<std::string_view> words;
    for (const char type : function.parameterTypes)
        words.push_back(TypeWord(type));
    const bool more = function.count2 > static_cast<int>(words.size());
    return fmt::format("{} {}({}{})\r\n\r\n{}", TypeWord(function.returnType), function.name, fmt::join(words, ", "),
                       more ? ", ..." : "", function.description);
}

std::string FunctionCallText(const FilterFunction& function) {
    std::vector<std::string> comments;
    for (const char type : function.parameterTypes)
        comments.push_back(fmt::format("/*{}*/", TypeWord(type)));
    return fmt::format("{}({})", function.name, fmt::join(comments, ", "));
}

std::vector<std::size_t> FindFunctions(const std::vector<FilterFunction>& functions, std::string_view wanted) {
    const std::string lower = expression::lowerText(OneLine(wanted));
    std::array<std::vector<std::size_t>, 3> groups;
    for (std::size_t i = 0; i < functions.size(); ++i) {
        const std::string name = expression::lowerText(functions[i].name);
        if (name.starts_with(lower))
            groups[0].push_back(i);
        else if (name.find(lower) != std::string::npos)
            groups[1].push_back(i);
        else if (expression::lowerText(functions[i].description).find(lower) != std::string::npos)
            groups[2].push_back(i);
    }
    std::vector<std::size_t> found;
    for (const std::vector<std::size_t>& group : groups)
        found.insert(found.end(), group.begin(), group.end());
    return found;
}

} // namespace tavix
