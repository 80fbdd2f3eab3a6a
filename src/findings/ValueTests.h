#pragma once

#include "base/ByteMask.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// The tests that are made of every distinct value of a field, each with the condition that says the same in the
/// expression language.
namespace tavix::findings {

enum class ValueTest : std::uint8_t {
    BlanksAtEnds,
    BlanksInside,
    LineBreaks,
    ControlCharacters,
    InvisibleCharacters,
    UnusualSpaces,
    ReplacementCharacters,
    MisdecodedText,
    LostCharacters,
    DecomposedAccents,
    MixedScripts,
    Markup,
    Escapes,
    Quoted,
    Delimiters,
    Structured,
    LeftOverDelimiter,
    SpreadsheetError,
    Formula,
    ExponentForm,
    ApostropheBeforeNumber,
    NumberInParentheses,
    MinusAfterNumber,
    NumberWithUnit,
    ZeroPadded,
    DigitsOnly,
    RunOfOneCharacter,
    NotUpperCase,
    EMail,
    Phone,
    Url,
    IpAddress,
    CardNumber,
    Iban,
    NationalId,
    StreetAddress,
};

inline constexpr std::size_t kValueTestCount = static_cast<std::size_t>(ValueTest::StreetAddress) + 1;

/// The kinds of characters beyond ASCII that a text has.
struct RareCharacters {
    bool invisible = false;
    bool space = false;        ///< any white space
    bool unusualSpace = false; ///< white space that looks like a blank
    bool replacement = false;  ///< U+FFFD
    bool control = false;
    bool mark = false; ///< a combining accent
    bool cyrillic = false;
    bool misdecoded = false; ///< a character with which text that was read in a wrong encoding begins
};
[[nodiscard]] RareCharacters rareCharacters(std::string_view text);

/// A text that is not empty, and what is known about it.
struct Candidate {
    std::string_view text;
    ByteMask mask = 0;
    RareCharacters rare{};

    [[nodiscard]] bool has(ByteMask kinds) const { return (mask & kinds) != 0; }
    [[nodiscard]] bool hasOnly(ByteMask kinds) const { return (mask & ~kinds) == 0; }
};

enum class Verdict : std::uint8_t {
    No,
    Maybe, ///< the condition decides
    Yes,
};

struct ValueTestInfo {
    ValueTest test;
    std::string_view condition; ///< over `Value`
    /// Decides most texts without evaluating the condition.
    Verdict (*judge)(const Candidate& candidate);
};

/// In the order of the codes.
[[nodiscard]] const std::array<ValueTestInfo, kValueTestCount>& valueTests();
[[nodiscard]] inline std::string_view conditionOf(ValueTest test) {
    return valueTests()[static_cast<std::size_t>(test)].condition;
}

} // namespace tavix::findings
