#include "expression/Wildcard.h"

#include "base/Characters.h"
#include "expression/SimplePattern.h"

namespace tavix::expression {

namespace {

/// The most steps in one text before matching gives up: a fraction of a second.
constexpr std::size_t kMostSteps = std::size_t{1} << 26;

constexpr std::string_view kGaveUp = "a text is too long for its wildcard pattern";

bool isSign(char c) {
    return c == '*' || c == '?';
}

PatternPart asPart(std::string_view pattern) {
    PatternPart all;
    for (const char c : pattern) {
        PatternPart one;
        one.kind = PatternPart::Kind::Bytes;
        if (isSign(c))
            one.bytes.set();
        else
            one.bytes.set(static_cast<unsigned char>(c));
        if (c == '*') {
            PatternPart many;
            many.kind = PatternPart::Kind::Repeat;
            many.parts.push_back(one);
            one = many;
        }
        all.parts.push_back(std::move(one));
    }
    return all;
}

/// Code points; a byte that is not part of a character becomes a number above all characters.
std::u32string decode(std::string_view text) {
    constexpr char32_t kBytes = 0x110000;
    std::u32string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const std::int32_t character = nextCharacter(text, at);
        out += character < 0 ? kBytes + byte : static_cast<char32_t>(character);
    }
    return out;
}

} // namespace

Wildcard::Wildcard(std::string_view pattern, bool mayHaveAutomaton)
    : m_pattern(pattern),
      m_isFirstFixed(!pattern.empty() && !isSign(pattern.front())),
      m_isLastFixed(!pattern.empty() && !isSign(pattern.back())) {
    std::size_t begin = 0;
    while (true) {
        const std::size_t star = pattern.find('*', begin);
        const bool isLast = star == std::string_view::npos;
        const std::string_view bytes = pattern.substr(begin, isLast ? star : star - begin);
        // An empty piece matters only at the ends, where it leaves the text open.
        if (m_pieces.empty() || isLast || !bytes.empty())
            m_pieces.push_back(makePiece(bytes));
        m_hasAnyCharacter = m_hasAnyCharacter || m_pieces.back().hasAnyCharacter;
        m_shortest += bytes.size();
        if (isLast)
            break;
        m_hasStar = true;
        begin = star + 1;
    }
    // With '?' between stars a search would try many offsets.
    if (mayHaveAutomaton && m_hasAnyCharacter && m_pieces.size() > 2 && isAscii(pattern))
        m_automaton = ByteAutomaton::build(asPart(pattern));
}

Wildcard::Piece Wildcard::makePiece(std::string_view bytes) {
    std::size_t longest = 0;
    std::size_t longestAt = 0;
    for (std::size_t begin = 0; begin <= bytes.size();) {
        std::size_t end = bytes.find('?', begin);
        end = end == std::string_view::npos ? bytes.size() : end;
        if (end - begin > longest) {
            longest = end - begin;
            longestAt = begin;
        }
        begin = end + 1;
    }
    return {std::string(bytes), ByteSearch(bytes.substr(longestAt, longest)), longestAt,
            bytes.find('?') != std::string_view::npos};
}

bool Wildcard::matches(std::string_view text, bool isAscii, Scratch& scratch) const {
    if (text.size() < m_shortest)
        return false;
    // Fixed bytes at the ends decide most texts; testing both without a branch between them is fastest.
    if (m_isFirstFixed || m_isLastFixed) {
        const bool isFirstRight = !m_isFirstFixed || text.front() == m_pattern.front();
        const bool isLastRight = !m_isLastFixed || text.back() == m_pattern.back();
        if (static_cast<int>(isFirstRight) + static_cast<int>(isLastRight) != 2)
            return false;
    }
    if (m_automaton) {
        const ByteAutomaton::Answer answer = m_automaton->matches(text);
        if (answer != ByteAutomaton::Answer::Unknown)
            return answer == ByteAutomaton::Answer::Yes;
    }
    // Without '?', or when every character is one byte, comparing bytes is exact.
    if (!m_hasAnyCharacter || isAscii || tavix::isAscii(text))
        return matchesBytes(text, scratch);
    return matchesCharacters(text, scratch);
}

std::string_view Wildcard::requiredPart() const {
    std::string_view longest;
    for (const Piece& piece : m_pieces) {
        if (piece.anchor.needle().size() > longest.size())
            longest = piece.anchor.needle();
    }
    return longest;
}

bool Wildcard::isAt(const Piece& piece, const char* place) {
    if (!piece.hasAnyCharacter)
        return piece.bytes.empty() || std::memcmp(place, piece.bytes.data(), piece.bytes.size()) == 0;
    for (std::size_t i = 0; i < piece.bytes.size(); ++i) {
        if (piece.bytes[i] != '?' && piece.bytes[i] != place[i])
            return false;
    }
    return true;
}

/// Finds the first match of a piece from `at` on and moves `at` past it; no match may extend beyond `end`.
bool Wildcard::findPiece(const Piece& piece, std::string_view text, std::size_t& at, std::size_t end,
                         std::size_t& steps) {
    while (end - at >= piece.bytes.size()) {
        // The anchor must leave room for the rest of the piece.
        const std::size_t behind = piece.bytes.size() - piece.anchorAt - piece.anchor.needle().size();
        const std::size_t hit = piece.anchor.find(text.substr(0, end - behind), at + piece.anchorAt);
        if (hit == ByteSearch::kNotFound)
            return false;
        at = hit - piece.anchorAt;
        if (!piece.hasAnyCharacter || isAt(piece, text.data() + at)) {
            at += piece.bytes.size();
            return true;
        }
        ++at;
        steps += piece.bytes.size();
        if (steps > kMostSteps)
            return false;
    }
    return false;
}

bool Wildcard::matchesBytes(std::string_view text, Scratch& scratch) const {
    const Piece& first = m_pieces.front();
    const Piece& last = m_pieces.back();
    if (!m_hasStar)
        return text.size() == m_shortest && isAt(first, text.data());
    if (text.size() < m_shortest || !isAt(first, text.data()) ||
        !isAt(last, text.data() + text.size() - last.bytes.size()))
        return false;
    std::size_t at = first.bytes.size();
    const std::size_t end = text.size() - last.bytes.size();
    std::size_t steps = 0;
    for (std::size_t i = 1; i + 1 < m_pieces.size(); ++i) {
        if (!findPiece(m_pieces[i], text, at, end, steps)) {
            if (steps > kMostSteps)
                scratch.fail(std::string(kGaveUp));
            return false;
        }
    }
    return true;
}

bool Wildcard::matchesCharacters(std::string_view text, Scratch& scratch) const {
    const std::u32string pattern = decode(m_pattern);
    const std::u32string characters = decode(text);
    constexpr std::size_t kNone = std::u32string::npos;
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t star = kNone; // the last star; extending an earlier one never helps
    std::size_t resume = 0;
    std::size_t steps = 0;
    while (t < characters.size()) {
        if (++steps > kMostSteps) {
            scratch.fail(std::string(kGaveUp));
            return false;
        }
        if (p < pattern.size() && pattern[p] == U'*') {
            star = p++;
            resume = t;
        } else if (p < pattern.size() && (pattern[p] == U'?' || pattern[p] == characters[t])) {
            ++p;
            ++t;
        } else if (star != kNone) {
            p = star + 1;
            t = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == U'*')
        ++p;
    return p == pattern.size();
}

} // namespace tavix::expression
