#include "pattern/CharacterPattern.h"

#include "base/Characters.h"

#include <fmt/format.h>
#include <unicode/uchar.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace tavix::pattern {

namespace {

constexpr std::array<char, 128> makeAsciiClasses() {
    std::array<char, 128> classes{};
    for (std::size_t i = 0; i < classes.size(); ++i) {
        const auto c = static_cast<char>(i);
        if (c >= 'A' && c <= 'Z')
            classes[i] = 'A';
        else if (c >= 'a' && c <= 'z')
            classes[i] = 'a';
        else if (c >= '0' && c <= '9')
            classes[i] = '9';
        else
            classes[i] = c;
    }
    return classes;
}

constexpr std::array<char, 128> kAsciiClasses = makeAsciiClasses();

/// The letter or digit that replaces a character; 0 for none.
char classOf(UChar32 character) {
    switch (u_charType(character)) {
    case U_UPPERCASE_LETTER:
    case U_TITLECASE_LETTER:
        return 'A';
    case U_LOWERCASE_LETTER:
    case U_MODIFIER_LETTER:
    case U_OTHER_LETTER:
        return 'a';
    case U_DECIMAL_DIGIT_NUMBER:
        return '9';
    default:
        return 0;
    }
}

/// The pattern of any text, character by character.
char* putByCharacter(char* to, std::string_view utf8) {
    std::size_t i = 0;
    while (i < utf8.size()) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        if (byte < 0x80) {
            *to++ = kAsciiClasses[byte];
            ++i;
            continue;
        }
        std::size_t next = i;
        const std::int32_t character = nextCharacter(utf8, next);
        const char mark = character < 0 ? '\0' : classOf(character);
        if (mark != 0) {
            *to++ = mark;
            i = next;
        }
        while (i < next)
            *to++ = utf8[i++];
    }
    return to;
}

using Words [[gnu::vector_size(16)]] = std::uint64_t;
using Bytes [[gnu::vector_size(16)]] = unsigned char;

/// Replaces the letters and digits of ASCII, 16 bytes at once, and remembers which kinds of bytes it saw.
class AsciiPattern {
  public:
    Words of(Words text) {
        const auto bytes = std::bit_cast<Bytes>(text);
        const Bytes caseBit = bytes & all(kCaseBit);
        const auto isLetter = std::bit_cast<Bytes>((bytes | all(kCaseBit)) - all('a') < all(26));
        const auto isDigit = std::bit_cast<Bytes>(bytes - all('0') < all(10));
        const Bytes isOther = ~(isLetter | isDigit);
        m_lower |= isLetter & caseBit;
        m_upper |= isLetter & (caseBit ^ all(kCaseBit));
        m_digits |= isDigit;
        const auto others = std::bit_cast<Words>(isOther & all(1));
        addOthers(text[0], others[0]);
        addOthers(text[1], others[1]);
        return std::bit_cast<Words>((isLetter & (caseBit | all('A'))) | (isDigit & all('9')) | (isOther & bytes));
    }
    [[nodiscard]] ByteMask kinds() const {
        using namespace byte_kind; // NOLINT(google-build-using-namespace)
        static_assert(kLower == 1 && kUpper == 2 && kDigit == 4 && kCaseBit == 0x20);
        // No bit leaves its byte.
        const Words found = std::bit_cast<Words>(m_lower) >> 5 | std::bit_cast<Words>(m_upper) >> 4 |
                            std::bit_cast<Words>(m_digits & all(kDigit));
        std::uint64_t folded = found[0] | found[1];
        for (const unsigned shift : {32U, 16U, 8U})
            folded |= folded >> shift;
        return static_cast<ByteMask>(folded & 0xFF) | m_others;
    }

  private:
    static constexpr unsigned char kCaseBit = 'a' ^ 'A';

    static Bytes all(unsigned char c) { return Bytes{} + c; }
    /// The bytes of a word of which `isOther` has the lowest bit.
    void addOthers(std::uint64_t word, std::uint64_t isOther) {
        for (; isOther != 0; isOther &= isOther - 1)
            m_others |= byte_kind::kOfByte[word >> std::countr_zero(isOther) & 0xFF];
    }

    Bytes m_lower{};
    Bytes m_upper{};
    Bytes m_digits{};
    ByteMask m_others = 0;
};

template <typename Word>
Word load(const char* from) {
    Word word{};
    std::memcpy(&word, from, sizeof word);
    return word;
}

template <typename Word>
void store(char* to, Word word) {
    std::memcpy(to, &word, sizeof word);
}

/// Up to seven bytes: more often than not an id or an amount.
ByteMask putShort(char* to, std::string_view text) {
    ByteMask kinds = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        *to++ = kAsciiClasses[byte & 0x7FU];
        kinds |= byte_kind::kOfByte[byte];
    }
    return kinds;
}

/// The pattern of a text, right if that is ASCII, and the kinds of its bytes. Two parts of a text may overlap, so that
/// no length needs a loop over single bytes.
ByteMask putAscii(char* to, std::string_view text) {
    const char* const from = text.data();
    const std::size_t size = text.size();
    AsciiPattern pattern;
    if (size >= sizeof(Words)) {
        const std::size_t last = size - sizeof(Words);
        for (std::size_t at = 0; at < last; at += sizeof(Words))
            store(to + at, pattern.of(load<Words>(from + at)));
        store(to + last, pattern.of(load<Words>(from + last)));
    } else if (size >= 8) {
        const Words both = pattern.of(Words{load<std::uint64_t>(from), load<std::uint64_t>(from + size - 8)});
        store(to, both[0]);
        store(to + size - 8, both[1]);
    } else {
        return putShort(to, text);
    }
    return pattern.kinds();
}

} // namespace

char* putCharacterPattern(char* to, std::string_view utf8, ByteMask& kinds) {
    kinds = putAscii(to, utf8);
    return (kinds & byte_kind::kBeyondAscii) == 0 ? to + utf8.size() : putByCharacter(to, utf8);
}

void appendCharacterPattern(std::string& out, std::string_view utf8) {
    const std::size_t start = out.size();
    out.append(utf8);
    ByteMask kinds = 0;
    const char* const end = putCharacterPattern(out.data() + start, utf8, kinds);
    out.resize(static_cast<std::size_t>(end - out.data()));
}

std::string shortPattern(std::string_view pattern) {
    std::string out;
    std::size_t i = 0;
    while (i < pattern.size()) {
        std::size_t next = i;
        nextCharacter(pattern, next);
        const std::size_t size = next - i;
        const std::string_view character = pattern.substr(i, size);
        std::size_t run = 1;
        while (pattern.substr(i + run * size, size) == character)
            ++run;
        i += run * size;
        if (run >= 4 || character == "{") {
            out.append(character);
            fmt::format_to(std::back_inserter(out), "{{{}}}", run);
        } else {
            for (std::size_t k = 0; k < run; ++k)
                out.append(character);
        }
    }
    return out;
}

} // namespace tavix::pattern
