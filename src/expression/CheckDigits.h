#pragma once

#include "expression/Scratch.h"
#include "expression/Value.h"

#include <span>
#include <string_view>

/// The catalogue's functions that verify check digits. Blanks and hyphens between the characters do not matter.
namespace tavix::expression::check_digits {

/// GTIN-8, -12, -13 or -14 (EAN, UPC) with GS1's check digit.
[[nodiscard]] bool isEan(std::string_view text);
/// The form of ISO 13616 (country, two digits, up to 30 letters and digits) with the check of ISO 7064 MOD 97-10. The
/// length that a country prescribes is not checked.
[[nodiscard]] bool isIban(std::string_view text);
/// At least two digits with the check digit of ISO/IEC 7812-1, as card numbers have it.
[[nodiscard]] bool isLuhn(std::string_view text);

using Arguments = std::span<const Value>;
Value eanFunction(Arguments arguments, Scratch& scratch);
Value ibanFunction(Arguments arguments, Scratch& scratch);
Value luhnFunction(Arguments arguments, Scratch& scratch);

} // namespace tavix::expression::check_digits
