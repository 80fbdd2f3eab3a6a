#pragma once

#include "expression/Scratch.h"
#include "expression/Value.h"

#include <span>

/// The catalogue's functions that verify check digits. Blanks and hyphens between the characters do not matter.
namespace tavix::expression::check_digits {

using Arguments = std::span<const Value>;

/// GTIN-8, -12, -13 or -14 (EAN, UPC) with GS1's check digit.
Value isEan(Arguments arguments, Scratch& scratch);
/// The form of ISO 13616 (country, two digits, up to 30 letters and digits) with the check of ISO 7064 MOD 97-10. The
/// length that a country prescribes is not checked.
Value isIban(Arguments arguments, Scratch& scratch);
/// At least two digits with the check digit of ISO/IEC 7812-1, as card numbers have it.
Value isLuhn(Arguments arguments, Scratch& scratch);

} // namespace tavix::expression::check_digits
