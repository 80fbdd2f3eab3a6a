#pragma once

#include "expression/Scratch.h"
#include "expression/Value.h"

#include <span>

/// The catalogue's functions that compare texts by likeness. Characters are code points; case counts.
namespace tavix::expression::similarity_functions {

using Arguments = std::span<const Value>;

/// The least number of characters to insert, delete or replace (Levenshtein 1966).
Value editDistance(Arguments arguments, Scratch& scratch);
/// The measure of Jaro (1989) with the prefix of Winkler (1990): scale 0.1, at most four characters, for any score.
Value jaroWinkler(Arguments arguments, Scratch& scratch);
/// American Soundex as the US National Archives define it: a letter and three digits; null without a letter of ASCII.
Value soundex(Arguments arguments, Scratch& scratch);

} // namespace tavix::expression::similarity_functions
