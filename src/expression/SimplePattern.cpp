#include "expression/SimplePattern.h"

#include "base/Ascii.h"
#include "base/Characters.h"

#include <utility>

namespace tavix::expression {

namespace {

constexpr int kDeepest = 40;
constexpr int kMostRepetitions = 200;

AsciiSet range(char first, char last) {
    AsciiSet set;
    for (int c = static_cast<unsigned char>(first); c <= static_cast<unsigned char>(last); ++c)
        set.set(static_cast<std::size_t>(c));
    return set;
}

AsciiSet single(char c) {
    return range(c, c);
}

class SimplePatternParser {
  public:
    explicit SimplePatternParser(std::string_view pattern) : m_rest(pattern) {}

    std::optional<PatternPart> parse() {
        m_ignoresCase = take("(?i)");
        // Anchors mean nothing, since the whole text must match.
        (void)take("^");
        auto whole = choice(0);
        if (whole && !m_rest.empty())
            return std::nullopt;
        return whole;
    }

  private:
    using Parsed = std::optional<PatternPart>;

    bool take(std::string_view text) {
        if (!m_rest.starts_with(text))
            return false;
        m_rest.remove_prefix(text.size());
        return true;
    }
    [[nodiscard]] bool atEndOf(std::string_view signs) const {
        return m_rest.empty() || signs.find(m_rest.front()) != std::string_view::npos;
    }

    Parsed choice(int depth) {
        if (depth > kDeepest)
            return std::nullopt;
        PatternPart all;
        all.kind = PatternPart::Kind::Choice;
        do {
            auto one = sequence(depth);
            if (!one)
                return std::nullopt;
            all.parts.push_back(*std::move(one));
        } while (take("|"));
        return all;
    }

    Parsed sequence(int depth) {
        PatternPart all;
        while (!atEndOf("|)")) {
            if (m_rest == "$") {
                m_rest = {};
                break;
            }
            auto one = repeated(depth);
            if (!one)
                return std::nullopt;
            all.parts.push_back(*std::move(one));
        }
        return all;
    }

    Parsed repeated(int depth) {
        auto part = atom(depth);
        if (!part || m_rest.empty())
            return part;
        PatternPart repeat;
        repeat.kind = PatternPart::Kind::Repeat;
        if (take("+"))
            repeat.least = 1;
        else if (take("?"))
            repeat.most = 1;
        else if (m_rest.front() == '{') {
            if (!readCounts(repeat))
                return std::nullopt;
        } else if (!take("*"))
            return part;
        // It does not matter in which way a text matches.
        (void)take("?");
        if (!atEndOf("") && !atEndOf("|)") && std::string_view("*+?{").find(m_rest.front()) != std::string_view::npos)
            return std::nullopt;
        repeat.parts.push_back(*std::move(part));
        return repeat;
    }

    bool readCounts(PatternPart& repeat) {
        m_rest.remove_prefix(1);
        const auto least = readCount();
        if (!least)
            return false;
        repeat.least = *least;
        repeat.most = *least;
        if (take(",")) {
            repeat.most = PatternPart::kUnlimited;
            if (!m_rest.empty() && m_rest.front() != '}') {
                const auto most = readCount();
                if (!most)
                    return false;
                repeat.most = *most;
            }
        }
        return take("}");
    }
    std::optional<int> readCount() {
        int count = 0;
        const std::size_t before = m_rest.size();
        while (!m_rest.empty() && isAsciiDigit(m_rest.front())) {
            count = count * 10 + (m_rest.front() - '0');
            if (count > kMostRepetitions)
                return std::nullopt;
            m_rest.remove_prefix(1);
        }
        return m_rest.size() < before ? std::optional(count) : std::nullopt;
    }

    Parsed atom(int depth) {
        if (take("(")) {
            if (m_rest.starts_with("?") && !take("?:"))
                return std::nullopt;
            auto group = choice(depth + 1);
            return group && take(")") ? group : std::nullopt;
        }
        PatternPart part;
        part.kind = PatternPart::Kind::Bytes;
        if (take("[")) {
            if (!readClass(part.bytes))
                return std::nullopt;
            return part;
        }
        const char c = m_rest.front();
        m_rest.remove_prefix(1);
        if (c == '\\') {
            const auto set = escaped();
            if (!set)
                return std::nullopt;
            part.bytes = folded(*set);
            return part;
        }
        if (!isAscii(c) || std::string_view("*+?{}]^$").find(c) != std::string_view::npos)
            return std::nullopt;
        part.bytes = c == '.' ? ~AsciiSet() : folded(single(c));
        return part;
    }

    /// After a backslash.
    std::optional<AsciiSet> escaped() {
        if (m_rest.empty())
            return std::nullopt;
        const char c = m_rest.front();
        m_rest.remove_prefix(1);
        const AsciiSet digits = range('0', '9');
        const AsciiSet word = digits | range('a', 'z') | range('A', 'Z') | single('_');
        const AsciiSet space = single(' ') | single('\t') | single('\n') | single('\f') | single('\r');
        switch (c) {
        case 'd':
            return digits;
        case 'D':
            return ~digits;
        case 'w':
            return word;
        case 'W':
            return ~word;
        case 's':
            return space;
        case 'S':
            return ~space;
        case 't':
            return single('\t');
        case 'n':
            return single('\n');
        case 'r':
            return single('\r');
        default:
            break;
        }
        if (!isAscii(c) || isAsciiLetter(c) || isAsciiDigit(c))
            return std::nullopt;
        return single(c);
    }

    /// After "[".
    bool readClass(AsciiSet& set) {
        const bool isNegated = take("^");
        if (m_rest.starts_with("]"))
            return false;
        while (!m_rest.empty() && m_rest.front() != ']') {
            const char c = m_rest.front();
            m_rest.remove_prefix(1);
            const bool isLast = m_rest.starts_with("]");
            if (!isAscii(c) || c == '[')
                return false;
            if (c == '\\') {
                const auto members = escaped();
                if (!members || m_rest.starts_with("-"))
                    return false;
                set |= *members;
                continue;
            }
            if (c == '-' && !isLast)
                return false;
            if (m_rest.size() > 1 && m_rest.front() == '-' && m_rest[1] != ']') {
                const char last = m_rest[1];
                if (!isAscii(last) || last < c || last == '\\' || last == '[')
                    return false;
                set |= range(c, last);
                m_rest.remove_prefix(2);
                continue;
            }
            set |= single(c);
        }
        set = folded(set);
        if (isNegated)
            set.flip();
        return take("]");
    }

    [[nodiscard]] AsciiSet folded(AsciiSet set) const {
        for (std::size_t upper = 'A'; m_ignoresCase && upper <= 'Z'; ++upper) {
            const std::size_t lower = upper + 32;
            const bool isIn = set[upper] || set[lower];
            set.set(upper, isIn);
            set.set(lower, isIn);
        }
        return set;
    }

    std::string_view m_rest;
    bool m_ignoresCase = false;
};

} // namespace

std::optional<PatternPart> parseSimplePattern(std::string_view pattern) {
    return SimplePatternParser(pattern).parse();
}

} // namespace tavix::expression
