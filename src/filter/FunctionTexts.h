#pragma once

#include <string>
#include <string_view>

/// How the dialog shows the functions of the expression language.
namespace tavix {

struct FilterFunction {
    std::string name;
    std::string parameterTypes; ///< a letter for each
    char returnType = 0;
    std::string description;
    int count1 = 0; ///< the parameters that a call needs
    int count2 = 0; ///< the parameters that it may have
};

/// The word for a type's letter.
[[nodiscard]] std::string_view TypeWord(char type);
/// The signature and the description, two lines below it.
[[nodiscard]] std::string FunctionSignatureText(const FilterFunction& function);
/// A call with the types in place of the arguments; what goes to the clipboard and into the expression.
[[nodiscard]] std::string FunctionCallText(const FilterFunction& function);

} // namespace tavix
