#include "expression/Lexer.h"

#include "base/Characters.h"

#include <fmt/format.h>

#include <array>

namespace tavix::expression {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isWordStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isWordPart(char c) {
    return isWordStart(c) || isDigit(c);
}

struct Sign {
    std::string_view text;
    TokenKind kind;
};

// Longer signs stand before their beginnings.
constexpr std::array<Sign, 14> kSigns{{{"==", TokenKind::Equal},
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

class Scanner {
  public:
    explicit Scanner(std::string_view text) : m_text(text) {}

    Tokens run() {
        const bool isGood = m_text.size() <= kLongestExpression ||
                            fail(m_position, fmt::format("the expression is longer than {} bytes", kLongestExpression));
        while (isGood && skipBlanks() && m_at < m_text.size() && token()) {
        }
        m_tokens.list.push_back({TokenKind::End, m_position, {}, false});
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

    /// Steps over one character and counts it; false on bytes that are no UTF-8.
    bool advance() {
        const char c = m_text[m_at];
        if (c == '\n' || (c == '\r' && peek(1) != '\n')) {
            ++m_at;
            ++m_position.line;
            m_position.column = 1;
            return true;
        }
        if (nextCharacter(m_text, m_at) < 0)
            return fail(m_position, "a byte here belongs to no character of UTF-8");
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
        if (isDigit(c) || (c == '.' && isDigit(peek(1))))
            return number();
        if (c == '\'')
            return quotedText();
        if (c == '`')
            return fieldName();
        if (startsWith("<>"))
            return fail(m_position, "\"not equal\" is written !=");
        for (const Sign& sign : kSigns) {
            if (startsWith(sign.text)) {
                add(sign.kind, std::string(sign.text));
                return advance(sign.text.size());
            }
        }
        return strangeCharacter();
    }

    bool strangeCharacter() {
        const Position at = m_position;
        switch (m_text[m_at]) {
        case '=':
            return fail(at, "a comparison is written ==");
        case '!':
            return fail(at, "\"not equal\" is written !=, and \"not\" as a word");
        case '"':
            return fail(at, "texts stand in single quotes, fields in grave accents");
        case '&':
            return fail(at, "write \"and\" as a word");
        case '|':
            return fail(at, "write \"or\" as a word, and concat(a, b) to join texts");
        case '^':
            return fail(at, "write power(a, b)");
        case '[':
        case '{':
            return fail(at, "fields stand in grave accents");
        default:
            break;
        }
        const std::size_t start = m_at;
        if (!advance())
            return false;
        const std::string_view character = m_text.substr(start, m_at - start);
        if (isAscii(character.front()) && (character.front() < ' ' || character.front() == 0x7F))
            return fail(at, "a control character cannot stand here");
        return fail(at, fmt::format("the character {} cannot stand here", character));
    }

    void add(TokenKind kind, std::string text) { m_tokens.list.push_back({kind, m_position, std::move(text), false}); }

    bool word() {
        std::size_t size = 0;
        std::string lower;
        while (isWordPart(peek(size))) {
            const char c = peek(size++);
            lower += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        }
        add(TokenKind::Word, std::move(lower));
        return advance(size);
    }

    bool number() {
        std::size_t size = 0;
        const auto digits = [&] {
            while (isDigit(peek(size)))
                ++size;
        };
        digits();
        if (peek(size) == '.') {
            ++size;
            digits();
        }
        if (peek(size) == 'e' || peek(size) == 'E') {
            const std::size_t sign = peek(size + 1) == '+' || peek(size + 1) == '-' ? 1 : 0;
            if (isDigit(peek(size + 1 + sign))) {
                size += 1 + sign;
                digits();
            }
        }
        if (isWordPart(peek(size)) || peek(size) == '.') {
            while (isWordPart(peek(size)) || peek(size) == '.')
                ++size;
            return fail(m_position, fmt::format("{} is no number", m_text.substr(m_at, size)));
        }
        add(TokenKind::Number, std::string(m_text.substr(m_at, size)));
        return advance(size);
    }

    bool quotedText() {
        Token made{TokenKind::Text, m_position, {}, false};
        advance();
        while (m_at < m_text.size()) {
            if (peek() == '\'') {
                m_tokens.list.push_back(std::move(made));
                return advance();
            }
            if (startsWith("\\'")) {
                made.text += '\'';
                advance(2);
                made.hasDoubtfulEnd = made.hasDoubtfulEnd || looksLikeBehindText();
                continue;
            }
            const std::size_t start = m_at;
            if (!advance())
                return false;
            made.text.append(m_text.substr(start, m_at - start));
        }
        return fail(made.at, made.hasDoubtfulEnd
                                 ? "the text that begins here is not closed: \\' does not end it. A text cannot end in "
                                   "a backslash; write concat('...', char(92))"
                                 : "the text that begins here is not closed by a single quote");
    }

    /// Whether what follows is what follows a text, as when a backslash was its last character.
    [[nodiscard]] bool looksLikeBehindText() const {
        const std::size_t next = m_text.find_first_not_of(" \t\r\n", m_at);
        if (next == std::string_view::npos)
            return true;
        return next > m_at || m_text[next] == ')' || m_text[next] == ',';
    }

    bool fieldName() {
        Token made{TokenKind::Field, m_position, {}, false};
        advance();
        while (m_at < m_text.size()) {
            if (peek() == '`') {
                advance();
                if (peek() != '`') {
                    m_tokens.list.push_back(std::move(made));
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
        return fmt::format("the word \"{}\"", token.text);
    case TokenKind::Text:
        return "a text";
    case TokenKind::Field:
        return fmt::format("the field `{}`", token.text);
    case TokenKind::Number:
        return fmt::format("the number {}", token.text);
    default:
        return fmt::format("\"{}\"", token.text);
    }
}

} // namespace tavix::expression
