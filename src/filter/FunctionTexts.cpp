#include "filter/FunctionTexts.h"

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

} // namespace tavix
