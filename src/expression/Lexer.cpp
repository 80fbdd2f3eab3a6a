#include "expression/Lexer.h"

#include "base/Ascii.h"
#include "base/Characters.h"

#include <fmt/format.h>

#include <array>

namespace tavix::expression {

namespace {

bool isWordStart(char c) {
    return isAsciiLetter(c) || c == '_';
}

bool isWordPart(char c) {
    return isWordStart(c) || isAsciiDigit(c);
}

struct Sign {
    std::string_view text;
    TokenKind kind;
};

// Longer signs come before their prefixes.
constexpr std::array<Sign, 15> kSigns{{{"==", TokenKind::Equal},
                                       {"=", TokenKind::Equal},
                                       {"!=", TokenKind::NotEqual},
                                       {"<=", TokenKind::LessOrEqual},
                                       {">=", TokenKind::GreaterOrEqual},
                                       {"<", TokenKind::Less},
                                       {">", TokenKind::Greater},
                                       {"(", TokenKind::LeftParenthesis},
                                       {")", TokenKind::RightParenthesis},
                                       {",", TokenKind::Comma},
                                       {"+", TokenKind::Plus},
                                       {"-", TokenKind::Minus},
                                       {"*", TokenKind::Times},
                                       {"/", TokenKind::Divide},
                                       {"%", TokenKind::Percent}}};

/// Signs of other languages; longer signs come before their prefixes.
struct WrongSign {
    std::string_view text;
    std::string_view hint;
};
constexpr auto kWrongSigns = std::to_array<WrongSign>({
    {"=>", "\"greater than or equal\" is written >="},
    {"=<", "\"less than or equal\" is written <="},
    {"<>", "\"not equal\" is written !="},
    {"&", "write \"and\" as a word"},
    {"|", "write \"or\" as a word, and concat(a, b) to join texts"},
    {"^", "write power(a, b)"},
    {"~", "write matches(text, 'expression')"},
    {"?", "write if condition then return a else return b"},
    {"::", "write tonumber(...), tointeger(...), totext(...) or todate(...)"},
    {":", "put a name with a colon in grave accents"},
    {";", "an expression ends without \";\""},
    {"[", "put fields in grave accents"},
    {"{", "put fields in grave accents"},
});
/// These hints come before those of single signs.
constexpr std::string_view kPrintedQuotes = "‘’‚‛“”„‟«»‹›´′″";

class Scanner {
  public:
    explicit Scanner(std::string_view text) : m_text(text) {}

    Tokens run() {
        const bool isGood = m_text.size() <= kLongestExpression ||
                            fail(m_position, fmt::format("the expression is longer than {} bytes", kLongestExpression));
        while (isGood && skipBlanks() && m_at < m_text.size() && token())
            m_end = m_at;
        add(TokenKind::End, {});
        return std::move(m_tokens);
    }

  private:
    bool fail(Position at, std::string message) {
        m_tokens.error = ExpressionError{std::move(message), at.line, at.column};
        return false;
    }

    [[nodiscard]] char peek(std::size_t ahead = 0) const {
        return m_at + ahead < m_text.size() ? m_text[m_at + ahead] : '\0';
    }
    [[nodiscard]] bool startsWith(std::string_view what) const { return m_text.substr(m_at).starts_with(what); }

    /// Advances by one character and counts it; false on bytes that are not UTF-8.
    bool advance() {
        const char c = m_text[m_at];
        if (c == '\n' || (c == '\r' && peek(1) != '\n')) {
            ++m_at;
            ++m_position.line;
            m_position.column = 1;
            return true;
        }
        if (nextCharacter(m_text, m_at) < 0)
            return fail(m_position, "this byte is not UTF-8");
        ++m_position.column;
        return true;
    }
    bool advance(std::size_t characters) {
        for (; characters > 0; --characters) {
            if (!advance())
                return false;
        }
        return true;
    }

    bool skipBlanks() {
        while (m_at < m_text.size()) {
            const char c = m_text[m_at];
            const bool isPastedBlank = startsWith("\xC2\xA0") || startsWith("\xEF\xBB\xBF");
            if (c == ' ' || (c >= '\t' && c <= '\r') || isPastedBlank) {
                advance();
            } else if (startsWith("/*")) {
                if (!skipComment())
                    return false;
            } else {
                break;
            }
        }
        return true;
    }

    bool skipComment() {
        const Position start = m_position;
        advance(2);
        while (m_at < m_text.size()) {
            if (startsWith("*/"))
                return advance(2);
            if (!advance())
                return false;
        }
        return fail(start, "the comment that begins here is not closed by */");
    }

    bool token() {
        const char c = m_text[m_at];
        if (isWordStart(c))
            return word();
        if (isAsciiDigit(c) || (c == '.' && isAsciiDigit(peek(1))))
            return number();
        if (c == '\'' || c == '"')
            return quotedText(c);
        if (c == '`')
            return fieldName();
        for (const WrongSign& wrong : kWrongSigns) {
            if (startsWith(wrong.text))
                return fail(m_position, std::string(wrong.hint));
        }
        for (const Sign& sign : kSigns) {
            if (startsWith(sign.text)) {
                add(sign.kind, std::string(sign.text));
                return advance(sign.text.size());
            }
        }
        if (c == '!')
            return fail(m_position, "\"not equal\" is written !=, and \"not\" as a word");
        return strangeCharacter();
    }

    bool strangeCharacter() {
        const Position at = m_position;
        const std::size_t start = m_at;
        if (!advance())
            return false;
        const std::string_view character = m_text.substr(start, m_at - start);
        if (isAscii(character.front()) && (character.front() < ' ' || character.front() == 0x7F))
            return fail(at, "a control character is not allowed here");
        const bool isQuote = kPrintedQuotes.find(character) != std::string_view::npos;
        return fail(at, fmt::format("the character {} is not allowed here{}", character,
                                    isQuote ? "; put texts in plain quotes, as in 'a' or \"a\"" : ""));
    }

    [[nodiscard]] Token begin(TokenKind kind) const {
        Token made;
        made.kind = kind;
        made.at = m_position;
        made.isAdjacent = !m_tokens.list.empty() && m_at == m_end;
        return made;
    }
    void add(Token token) { m_tokens.list.push_back(std::move(token)); }
    void add(TokenKind kind, std::string text) {
        Token made = begin(kind);
        made.text = std::move(text);
        add(std::move(made));
    }

    bool word() {
        std::size_t size = 0;
        std::string lower;
        while (isWordPart(peek(size)))
            lower += asciiLower(peek(size++));
        Token made = begin(TokenKind::Word);
        made.text = std::move(lower);
        made.written = m_text.substr(m_at, size);
        add(std::move(made));
        return advance(size);
    }

    bool number() {
        std::size_t size = 0;
        const auto digits = [&] {
            while (isAsciiDigit(peek(size)))
                ++size;
        };
        digits();
        if (peek(size) == '.') {
            ++size;
            digits();
        }
        if (peek(size) == 'e' || peek(size) == 'E') {
            const std::size_t sign = peek(size + 1) == '+' || peek(size + 1) == '-' ? 1 : 0;
            if (isAsciiDigit(peek(size + 1 + sign))) {
                size += 1 + sign;
                digits();
            }
        }
        if (isWordPart(peek(size)) || peek(size) == '.') {
            while (isWordPart(peek(size)) || peek(size) == '.')
                ++size;
            return fail(m_position,
                        fmt::format("{} is not a number", shortened(m_text.substr(m_at, size), kLongestEcho)));
        }
        add(TokenKind::Number, std::string(m_text.substr(m_at, size)));
        return advance(size);
    }

    bool quotedText(char quote) {
        Token made = begin(TokenKind::Text);
        made.isDoubleQuoted = quote == '"';
        advance();
        while (m_at < m_text.size()) {
            if (peek() == quote) {
                add(std::move(made));
                return advance();
            }
            if (peek() == '\\' && peek(1) == quote) {
                made.text += quote;
                advance(2);
                made.hasDoubtfulEnd = made.hasDoubtfulEnd || looksLikeBehindText();
                continue;
            }
            const std::size_t start = m_at;
            if (!advance())
                return false;
            made.text.append(m_text.substr(start, m_at - start));
        }
        if (made.hasDoubtfulEnd)
            return fail(made.at, fmt::format("the text that begins here is not closed: \\{} does not end it. A text "
                                             "cannot end in a backslash; write concat('...', char(92))",
                                             quote));
        return fail(made.at, fmt::format("the text that begins here is not closed by a {} quote",
                                         made.isDoubleQuoted ? "double" : "single"));
    }

    /// Whether the rest looks like the text after a quoted text, as when a backslash was its last character.
    [[nodiscard]] bool looksLikeBehindText() const {
        const std::size_t next = m_text.find_first_not_of(" \t\r\n", m_at);
        if (next == std::string_view::npos)
            return true;
        return next > m_at || m_text[next] == ')' || m_text[next] == ',';
    }

    bool fieldName() {
        Token made = begin(TokenKind::Field);
        advance();
        while (m_at < m_text.size()) {
            if (peek() == '`') {
                advance();
                if (peek() != '`') {
                    add(std::move(made));
                    return true;
                }
            }
            const std::size_t start = m_at;
            if (!advance())
                return false;
            made.text.append(m_text.substr(start, m_at - start));
        }
        return fail(made.at, "the field name that begins here is not closed by a grave accent");
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    std::size_t m_end = 0; ///< of the last token
    Position m_position;
    Tokens m_tokens;
};

} // namespace

Tokens tokenize(std::string_view text) {
    return Scanner(text).run();
}

std::string describe(const Token& token) {
    switch (token.kind) {
    case TokenKind::End:
        return "the end";
    case TokenKind::Word:
        return fmt::format("the word \"{}\"", shortened(token.written, kLongestEcho));
    case TokenKind::Text:
        return "a text";
    case TokenKind::Field:
        return fmt::format("the field `{}`", shortened(token.text, kLongestEcho));
    case TokenKind::Number:
        return fmt::format("the number {}", shortened(token.text, kLongestEcho));
    default:
        return fmt::format("\"{}\"", token.text);
    }
}

} // namespace tavix::expression
