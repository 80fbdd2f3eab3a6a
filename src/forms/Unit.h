#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The units that written numbers may have: the percent sign, currency symbols (Unicode category Sc) and the codes of
/// currencies (ISO 4217).
namespace tavix::forms {

/// A unit as a number: the code point of a sign, or kCurrencyCode with the three letters of a code. 0: none.
using UnitCode = std::uint32_t;

inline constexpr UnitCode kNoUnit = 0;
inline constexpr UnitCode kPercent = '%';

/// Removes the currency at the beginning of the text and returns it; kNoUnit, and the text as it was, without one.
[[nodiscard]] UnitCode takeUnitAtStart(std::string_view& text);
/// The same for the currency or percent sign at the end.
[[nodiscard]] UnitCode takeUnitAtEnd(std::string_view& text);

/// "%", "€", "EUR"; empty for kNoUnit.
[[nodiscard]] std::string unitText(UnitCode unit);
/// The unit that is written so; none for any other text.
[[nodiscard]] std::optional<UnitCode> parseUnit(std::string_view text);

} // namespace tavix::forms
