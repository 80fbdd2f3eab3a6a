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
    Text,  ///< without quotes and escapes
    Field, ///< without grave accents
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
    std::string written; ///< a word as written
    /// A text with an escaped quote that may have been meant to end it.
    bool hasDoubtfulEnd = false;
    bool isDoubleQuoted = false; ///< a text
    bool isAdjacent = false;     ///< begins where the token before it ended
};

/// Bytes of a name or number that a message quotes.
inline constexpr std::size_t kLongestEcho = 60;

/// Longer texts are rejected.
inline constexpr std::size_t kLongestExpression = std::size_t{1} << 20;

struct Tokens {
    std::vector<Token> list; ///< ends with a token End
    std::optional<ExpressionError> error;
};

/// Splits a text into tokens; blanks and comments are dropped.
[[nodiscard]] Tokens tokenize(std::string_view text);

/// A token as it is named in messages: "the word 'then'", "the end".
[[nodiscard]] std::string describe(const Token& token);

} // namespace tavix::expression
