#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The functions of the expression language as the dialog shows them.
namespace tavix {

struct FilterFunction {
    std::string name;
    std::string parameterTypes; ///< a letter for each parameter
    char returnType = 0;
    std::string description;
    int count1 = 0; ///< parameters that a call needs
    int count2 = 0; ///< parameters that a call may have
};

/// The word for a type's letter.
[[nodiscard]] std::string_view TypeWord(char type);
/// The signature and, after an empty line, the description.
[[nodiscard]] std::string FunctionSignatureText(const FilterFunction& function);
/// A call with the types in place of the arguments, for the clipboard and the expression.
[[nodiscard]] std::string FunctionCallText(const FilterFunction& function);

/// The indexes of the functions that match a search: first those whose name begins with it, then those whose name
/// contains it, then those whose description does. Ignores case.
[[nodiscard]] std::vector<std::size_t> FindFunctions(const std::vector<FilterFunction>& functions,
                                                     std::string_view wanted);

} // namespace tavix
