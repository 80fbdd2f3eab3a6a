#pragma once

#include "expression/Scratch.h"
#include "expression/Value.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace tavix::expression {

/// What the checker does with a call beyond converting its arguments to the types of the parameters.
enum class Form : std::uint8_t {
    Plain,
    IsNull,       ///< true or false, also of null
    FirstNonNull, ///< ifnull and coalesce: one type for all, not null when one of them is not
    OneType,      ///< all arguments are brought to one type, which is that of the result
    InList,       ///< all arguments are brought to one type
    Compare,      ///< the first two arguments are dates when one of them is
    Wildcard,     ///< the second argument is a wildcard pattern
    Regular,      ///< the second argument is a regular expression
};

/// The arguments have the types of the parameters and none of them is null.
using Implementation = Value (*)(std::span<const Value> arguments, Scratch& scratch);

/// A function as users see it and as the checker uses it.
struct Function {
    std::string_view name;
    /// A letter for each parameter: a any, b boolean, d date, i integer, r real, s string; S a string that has to be
    /// known before anything is evaluated. Beyond them the last letter repeats.
    std::string_view parameters;
    char result = 'a'; ///< one of these letters; a: the type of the arguments
    std::string_view description;
    int minimum = 1;
    int maximum = 1;
    Form form = Form::Plain;
    Implementation implementation = nullptr; ///< where form is Plain, OneType, Compare or Wildcard
};

inline constexpr int kMostArguments = 65535;

/// All functions, by name.
[[nodiscard]] std::span<const Function> functions();
/// By its name in lower case; null when there is none.
[[nodiscard]] const Function* findFunction(std::string_view name);

} // namespace tavix::expression
