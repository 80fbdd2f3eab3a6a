#include "expression/Parser.h"

#include "base/Ascii.h"
#include "base/Characters.h"
#include "expression/Hints.h"
#include "expression/Lexer.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tavix::expression {

namespace {

using Tree = std::unique_ptr<Syntax>;

struct ComparisonSign {
    TokenKind token;
    Comparison comparison;
};
constexpr std::array<ComparisonSign, 6> kComparisons{{{TokenKind::Equal, Comparison::Equal},
                                                      {TokenKind::NotEqual, Comparison::NotEqual},
                                                      {TokenKind::Less, Comparison::Less},
                                                      {TokenKind::LessOrEqual, Comparison::LessOrEqual},
                                                      {TokenKind::Greater, Comparison::Greater},
                                                      {TokenKind::GreaterOrEqual, Comparison::GreaterOrEqual}}};

struct ArithmeticSign {
    TokenKind token;
    Arithmetic arithmetic;
};
constexpr std::array<ArithmeticSign, 2> kSums{
    {{TokenKind::Plus, Arithmetic::Add}, {TokenKind::Minus, Arithmetic::Subtract}}};
constexpr std::array<ArithmeticSign, 3> kProducts{{{TokenKind::Times, Arithmetic::Multiply},
                                                   {TokenKind::Divide, Arithmetic::Divide},
                                                   {TokenKind::Percent, Arithmetic::Remainder}}};

/// Recursive descent. A function that returns null has set m_error.
class Reader {
  public:
    explicit Reader(Tokens tokens) : m_tokens(std::move(tokens)) {}

    Parsed run() {
        if (isEmpty())
            return {nullptr, ExpressionError{"the expression is empty", 1, 1}};
        Tree tree = isWord("if") || isWord("return") ? statement() : expression();
        if (tree && (current().kind != TokenKind::End || m_tokens.error))
            tree = unexpected("the end of the expression");
        if (!tree)
            return {nullptr, std::move(m_error)};
        return {std::move(tree), std::nullopt};
    }

  private:
    [[nodiscard]] bool isEmpty() const { return m_tokens.list.size() == 1 && !m_tokens.error; }
    [[nodiscard]] const Token& current() const { return m_tokens.list[m_next]; }
    [[nodiscard]] bool isAt(TokenKind kind) const { return current().kind == kind; }
    [[nodiscard]] bool isWord(std::string_view word) const { return isAt(TokenKind::Word) && current().text == word; }

    /// Whether the previous token is of this kind.
    [[nodiscard]] bool isBefore(TokenKind kind) const { return m_next > 0 && m_tokens.list[m_next - 1].kind == kind; }
    /// Whether the current token may be in what another language takes for a comment.
    [[nodiscard]] bool isAfterDashes(Position at) const { return m_dashes && m_dashes->at.line == at.line; }

    const Token& take() {
        const Token& token = current();
        m_doubtful = token.hasDoubtfulEnd ? &token : m_doubtful;
        if (token.kind == TokenKind::Minus && token.isAdjacent && isBefore(TokenKind::Minus))
            m_dashes = &token;
        if (token.kind != TokenKind::End)
            ++m_next;
        return token;
    }
    bool accept(TokenKind kind) {
        const bool isIt = isAt(kind);
        if (isIt)
            take();
        return isIt;
    }
    bool acceptWord(std::string_view word) {
        const bool isIt = isWord(word);
        if (isIt)
            take();
        return isIt;
    }

    Tree fail(Position at, std::string message) {
        if (m_error)
            return nullptr;
        if (m_doubtful)
            message += fmt::format(" (the text in line {}, column {} continues after its \\'; a text cannot end in a "
                                   "backslash, write concat('...', char(92)))",
                                   m_doubtful->at.line, m_doubtful->at.column);
        if (isAfterDashes(at))
            message += afterSemicolon(kCommentHint);
        m_error = ExpressionError{std::move(message), at.line, at.column};
        return nullptr;
    }
    Tree unexpected(std::string_view wanted) {
        // When the tokens end early, their error is the better message.
        if (isAt(TokenKind::End) && m_tokens.error) {
            m_error = m_tokens.error;
            if (isAfterDashes({m_error->line, m_error->column}))
                m_error->message += afterSemicolon(kCommentHint);
            return nullptr;
        }
        return fail(current().at, fmt::format("expected {}, found {}{}", wanted, describe(current()),
                                              afterSemicolon(hintForCurrent())));
    }
    [[nodiscard]] std::string_view hintForCurrent() const {
        if (isAt(TokenKind::Word))
            return hintForWord(current().text);
        const bool isQuoteInText = isAt(TokenKind::Text) && current().isAdjacent && isBefore(TokenKind::Text);
        return isQuoteInText ? "a quote within a text is written \\', as in 'O\\'Brien'" : std::string_view();
    }

    /// Counts one level of nesting during its lifetime.
    class Level {
      public:
        explicit Level(int& depth) : m_depth(depth) { ++m_depth; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
        ~Level() { --m_depth; }
        [[nodiscard]] bool isTooDeep() const { return m_depth > kDeepestNesting; }

      private:
        int& m_depth;
    };
    Tree tooDeep() {
        return fail(current().at, fmt::format("the expression is nested deeper than {} levels", kDeepestNesting));
    }

    static Tree make(SyntaxKind kind, Position at) {
        auto tree = std::make_unique<Syntax>();
        tree->kind = kind;
        tree->at = at;
        return tree;
    }

    Tree statement() {
        const Level level(m_depth);
        if (level.isTooDeep())
            return tooDeep();
        if (acceptWord("return"))
            return expression();
        if (!isWord("if"))
            return unexpected("\"if\" or \"return\"");
        return ifStatement();
    }

    /// A chain of else-if is one level, whatever its length.
    Tree ifStatement() {
        Tree tree = make(SyntaxKind::If, current().at);
        while (acceptWord("if")) {
            Tree condition = expression();
            if (!condition)
                return nullptr;
            if (!acceptWord("then"))
                return unexpected("\"then\"");
            Tree value = statement();
            if (!value)
                return nullptr;
            adopt(*tree, std::move(condition));
            adopt(*tree, std::move(value));
            if (!acceptWord("else"))
                return tree;
        }
        Tree last = statement();
        if (!last)
            return nullptr;
        adopt(*tree, std::move(last));
        return tree;
    }

    Tree expression() {
        const Level level(m_depth);
        if (level.isTooDeep())
            return tooDeep();
        return list(SyntaxKind::Or, "or", &Reader::conjunction);
    }
    Tree conjunction() { return list(SyntaxKind::And, "and", &Reader::negation); }

    Tree list(SyntaxKind kind, std::string_view word, Tree (Reader::*part)()) {
        Tree first = (this->*part)();
        if (!first || !isWord(word))
            return first;
        Tree tree = make(kind, first->at);
        adopt(*tree, std::move(first));
        while (acceptWord(word)) {
            Tree next = (this->*part)();
            if (!next)
                return nullptr;
            adopt(*tree, std::move(next));
        }
        return tree;
    }

    Tree negation() {
        if (!isWord("not"))
            return comparison();
        const Position at = current().at;
        bool isNegated = false;
        while (acceptWord("not"))
            isNegated = !isNegated;
        Tree inner = comparison();
        // Two negations cancel out, but their operand must still be a condition.
        return inner ? wrap(SyntaxKind::Not, at,
                            isNegated ? std::move(inner) : wrap(SyntaxKind::Not, at, std::move(inner)))
                     : nullptr;
    }
    static Tree wrap(SyntaxKind kind, Position at, Tree inner) {
        Tree tree = make(kind, at);
        adopt(*tree, std::move(inner));
        return tree;
    }
    static void adopt(Syntax& parent, Tree child) {
        parent.depth = std::max(parent.depth, child->depth + 1);
        parent.children.push_back(std::move(child));
    }

    [[nodiscard]] const ComparisonSign* comparisonSign() const {
        for (const ComparisonSign& sign : kComparisons) {
            if (isAt(sign.token))
                return &sign;
        }
        return nullptr;
    }

    Tree comparison() {
        Tree left = sum();
        if (left && isTestOfWords())
            return testOfWords(std::move(left));
        const ComparisonSign* sign = comparisonSign();
        if (!left || !sign)
            return left;
        Tree tree = make(SyntaxKind::Compare, take().at);
        tree->comparison = sign->comparison;
        Tree right = sum();
        if (!right)
            return nullptr;
        if (comparisonSign())
            return fail(current().at, "comparisons cannot be chained; join them with \"and\" or use parentheses");
        adopt(*tree, std::move(left));
        adopt(*tree, std::move(right));
        return tree;
    }

    [[nodiscard]] bool isWordAt(std::size_t ahead, std::string_view word) const {
        const std::size_t at = m_next + ahead;
        return at < m_tokens.list.size() && m_tokens.list[at].kind == TokenKind::Word && m_tokens.list[at].text == word;
    }
    /// Whether one of the tests comes next that are written in words: in, between, like, perhaps after "not", or is.
    [[nodiscard]] bool isTestOfWords() const {
        const std::size_t first = isWord("not") ? 1 : 0;
        return isWordAt(first, "in") || isWordAt(first, "between") || isWordAt(first, "like") ||
               (first == 0 && isWord("is"));
    }
    /// Each is a call of a function: inlist, between, isnull, match_string or matches.
    Tree testOfWords(Tree subject) {
        const Position at = current().at;
        bool isNegated = acceptWord("not");
        Tree call = make(SyntaxKind::Call, at);
        adopt(*call, std::move(subject));
        bool isGood = false;
        if (acceptWord("is")) {
            isNegated = acceptWord("not");
            call->text = "isnull";
            isGood = acceptWord("null") || unexpected("\"null\"") != nullptr;
        } else if (acceptWord("in")) {
            call->text = "inlist";
            isGood = (accept(TokenKind::LeftParenthesis) || unexpected("\"(\"") != nullptr) && arguments(*call);
        } else if (acceptWord("between")) {
            call->text = "between";
            isGood = adoptGood(*call, sum()) && (acceptWord("and") || unexpected("\"and\"") != nullptr) &&
                     adoptGood(*call, sum());
        } else {
            take();
            isGood = patternOfLike(*call);
        }
        if (!isGood)
            return nullptr;
        return isNegated ? wrap(SyntaxKind::Not, at, std::move(call)) : std::move(call);
    }
    static bool adoptGood(Syntax& parent, Tree child) {
        const bool isGood = child != nullptr;
        if (isGood)
            adopt(parent, std::move(child));
        return isGood;
    }
    /// The pattern of SQL: % is any text, _ any character, and \ before one of the three means the sign itself.
    bool patternOfLike(Syntax& call) {
        if (!isAt(TokenKind::Text))
            return unexpected("a text after like, with % and _") != nullptr;
        Tree pattern = leaf(SyntaxKind::Text);
        std::string wildcard;
        std::string regular;
        const bool needsRegular = pattern->text.find_first_of("*?") != std::string::npos;
        for (std::size_t i = 0; i < pattern->text.size(); ++i) {
            const char c = pattern->text[i];
            const bool isEscape = c == '\\' && i + 1 < pattern->text.size() &&
                                  std::string_view("%_\\").find(pattern->text[i + 1]) != std::string_view::npos;
            if (c == '%' || c == '_') {
                wildcard += c == '%' ? '*' : '?';
                regular += c == '%' ? ".*" : ".";
                continue;
            }
            const char literal = isEscape ? pattern->text[++i] : c;
            wildcard += literal;
            if (isAscii(literal) && !isAsciiLetter(literal) && !isAsciiDigit(literal))
                regular += '\\';
            regular += literal;
        }
        call.text = needsRegular ? "matches" : "match_string";
        pattern->text = needsRegular ? std::move(regular) : std::move(wildcard);
        adopt(call, std::move(pattern));
        return true;
    }

    Tree sum() { return chain(kSums, &Reader::product); }
    Tree product() { return chain(kProducts, &Reader::signedValue); }

    /// A chain nests to the left: each operator adds a level to the tree, but not to the nesting that is limited.
    template <std::size_t N>
    Tree chain(const std::array<ArithmeticSign, N>& signs, Tree (Reader::*part)()) {
        Tree tree = (this->*part)();
        while (tree) {
            const ArithmeticSign* found = nullptr;
            for (const ArithmeticSign& sign : signs)
                found = isAt(sign.token) ? &sign : found;
            if (!found)
                return tree;
            if (tree->depth > kLongestChain)
                return fail(current().at, fmt::format("more than {} values are joined by + - * / %", kLongestChain));
            Tree whole = make(SyntaxKind::Arithmetic, take().at);
            whole->arithmetic = found->arithmetic;
            Tree right = (this->*part)();
            if (!right)
                return nullptr;
            adopt(*whole, std::move(tree));
            adopt(*whole, std::move(right));
            tree = std::move(whole);
        }
        return tree;
    }

    Tree signedValue() {
        const Position at = current().at;
        bool isSigned = false;
        bool isNegative = false;
        while (isAt(TokenKind::Minus) || isAt(TokenKind::Plus)) {
            isSigned = true;
            isNegative = isNegative != (take().kind == TokenKind::Minus);
        }
        Tree inner = primary();
        if (!inner || !isSigned)
            return inner;
        if (inner->kind == SyntaxKind::Number) {
            if (isNegative && inner->text.starts_with('-'))
                inner->text.erase(0, 1);
            else if (isNegative)
                inner->text.insert(0, 1, '-');
            inner->at = at;
            return inner;
        }
        return wrap(SyntaxKind::Negate, at,
                    isNegative ? std::move(inner) : wrap(SyntaxKind::Negate, at, std::move(inner)));
    }

    Tree leaf(SyntaxKind kind) {
        const Token& token = take();
        Tree tree = make(kind, token.at);
        tree->text = token.text;
        return tree;
    }

    Tree primary() {
        switch (current().kind) {
        case TokenKind::Number:
            return leaf(SyntaxKind::Number);
        case TokenKind::Text: {
            const bool isDoubleQuoted = current().isDoubleQuoted;
            Tree text = leaf(SyntaxKind::Text);
            text->spelling = isDoubleQuoted ? Spelling::DoubleQuoted : Spelling::Marked;
            return text;
        }
        case TokenKind::Field:
            return leaf(SyntaxKind::Field);
        case TokenKind::Word:
            return word();
        case TokenKind::LeftParenthesis: {
            const bool isOfIf = m_next > 0 && m_tokens.list[m_next - 1].text == "if" && isBefore(TokenKind::Word);
            take();
            Tree inner = expression();
            if (inner && isOfIf && isAt(TokenKind::Comma))
                return fail(current().at, "if is not a function; write if condition then return a else return b");
            if (inner && !accept(TokenKind::RightParenthesis))
                return unexpected("\")\"");
            return inner;
        }
        default:
            return unexpected("a value");
        }
    }

    Tree word() {
        const std::string& name = current().text;
        if (name == "true" || name == "false" || name == "null")
            return leaf(SyntaxKind::Word);
        for (const std::string_view keyword : {"if", "then", "else", "return", "and", "or", "not"}) {
            if (name == keyword)
                return unexpected("a value");
        }
        const Token& token = take();
        const bool isCall = isAt(TokenKind::LeftParenthesis);
        Tree call = make(isCall ? SyntaxKind::Call : SyntaxKind::Field, token.at);
        call->text = token.written;
        if (!isCall) {
            call->spelling = isAfterDashes(token.at) ? Spelling::AfterDashes : Spelling::Bare;
            return call;
        }
        // The arguments may be in another language, too.
        if (!hintForFunction(token.text).empty())
            return fail(token.at, noFunction(token.written));
        take();
        if (accept(TokenKind::RightParenthesis))
            return call;
        return arguments(*call) ? std::move(call) : nullptr;
    }

    /// One or more arguments and the parenthesis after them.
    bool arguments(Syntax& call) {
        do {
            if (!adoptGood(call, expression()))
                return false;
        } while (accept(TokenKind::Comma));
        return accept(TokenKind::RightParenthesis) || unexpected("\",\" or \")\"") != nullptr;
    }

    Tokens m_tokens;
    std::size_t m_next = 0;
    int m_depth = 0;
    const Token* m_doubtful = nullptr;
    const Token* m_dashes = nullptr; ///< the second of two adjacent ones, taken last
    std::optional<ExpressionError> m_error;
};

} // namespace

Parsed parse(std::string_view text) {
    return Reader(tokenize(text)).run();
}

} // namespace tavix::expression
