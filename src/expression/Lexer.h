#pragma once

#include "expression/ExpressionError.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::expression {

enum class TokenKind : std::uint8_t {
    End,
    Word, ///< a keyword, or the name of a function or field; in lower case
    Number,
    Text,  ///< without its quotes and escapes
    Field, ///< without its grave accents
    LeftParenthesis,
    RightParenthesis,
    Comma,
    Plus,
    Minus,
    Times,
    Divide,
    Percent,
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
};

struct Token {
    TokenKind kind = TokenKind::End;
    Position at;
    std::string text;
    std::string written; ///< a word as it was written
    /// A text with an escaped quote that may have been meant as its end.
    bool hasDoubtfulEnd = false;
    bool isDoubleQuoted = false; ///< a text
    bool isAdjacent = false;     ///< begins where the token before it ended
};

/// Of a name or number that a message repeats, in bytes.
inline constexpr std::size_t kLongestEcho = 60;

/// Longer texts are no expressions to us.
inline constexpr std::size_t kLongestExpression = std::size_t{1} << 20;

struct Tokens {
    std::vector<Token> list; ///< closed by a token End
    std::optional<ExpressionError> error;
};

/// Cuts a text into tokens; blanks and comments fall away.
[[nodiscard]] Tokens tokenize(std::string_view text);

/// A token as messages name it: "the word 'then'", "the end".
[[nodiscard]] std::string describe(const Token& token);

} // namespace tavix::expression
