#pragma once

#include "expression/Scratch.h"
#include "expression/Value.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace tavix::expression {

/// How the checker treats a call, besides converting its arguments to the types of the parameters.
enum class Form : std::uint8_t {
    Plain,
    IsNull,        ///< true or false, also for null
    FirstNonNull,  ///< ifnull and coalesce: one type for all; null only when all are
    OneType,       ///< the arguments are converted to one type
    InList,        ///< the arguments are converted to one type
    Compare,       ///< the first two arguments become dates when one of them is a date
    Wildcard,      ///< the second argument is a wildcard pattern
    Regular,       ///< the second argument is a regular expression
    Extraction,    ///< likewise; the function is prepared for it
    Replacement,   ///< likewise, and the third argument is a replacement
    FormattedDate, ///< with a second argument, its format, the first is a text; otherwise a date
    ReadNumber,    ///< with a second argument, a reading, the first is a text; otherwise a number
    Fits,          ///< the second argument is a reading
    Now,           ///< the moment for which the expression is compiled
    Today,         ///< the day of that moment
};

/// The arguments have the parameters' types, and none is null.
using Implementation = Value (*)(std::span<const Value> arguments, Scratch& scratch);

/// A function of the language, as users see it and as the checker uses it.
struct Function {
    std::string_view name;
    /// A letter for each parameter: a any, b boolean, d date, i integer, r real, s string; S a string that must be
    /// constant. The last letter repeats for further arguments.
    std::string_view parameters;
    char result = 'a'; ///< one of these letters; a: the type of the arguments
    std::string_view description;
    int minimum = 1;
    int maximum = 1;
    Form form = Form::Plain;
    Implementation implementation =
        nullptr; ///< for a call that is not prepared; null for forms with nodes of their own
};

inline constexpr int kMostArguments = 65535;

/// All functions, by name.
[[nodiscard]] std::span<const Function> functions();
/// Finds a function by its name in lower case; null when there is none.
[[nodiscard]] const Function* findFunction(std::string_view name);

} // namespace tavix::expression
