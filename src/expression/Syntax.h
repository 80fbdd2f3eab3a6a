#pragma once

#include "expression/ExpressionError.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tavix::expression {

enum class Comparison : std::uint8_t { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };
enum class Arithmetic : std::uint8_t { Add, Subtract, Multiply, Divide, Remainder };

enum class SyntaxKind : std::uint8_t {
    Number,
    Text,
    Word,  ///< true, false, null
    Field, ///< by its name
    Call,
    Not,
    Negate,
    And, ///< two or more children
    Or,  ///< two or more children
    Compare,
    Arithmetic,
    If, ///< condition, value, condition, value, ..., and the value of the last else, if any
};

/// How a name or text was written, where it matters.
enum class Spelling : std::uint8_t {
    Marked,       ///< a field in grave accents, a text in single quotes
    Bare,         ///< a field as a plain word
    AfterDashes,  ///< a field as a plain word that may belong to a comment of another language
    DoubleQuoted, ///< a text that may be meant as a name
};

/// An expression as it was written, before names and types are resolved.
struct Syntax {
    SyntaxKind kind = SyntaxKind::Word;
    Position at;
    std::string text; ///< of a number, text, word, field or function; names as written
    Spelling spelling = Spelling::Marked;
    Comparison comparison = Comparison::Equal;
    Arithmetic arithmetic = Arithmetic::Add;
    int depth = 1; ///< height of the tree
    std::vector<std::unique_ptr<Syntax>> children;
};

} // namespace tavix::expression
