#pragma once

#include "expression/Scratch.h"
#include "expression/Value.h"

#include <span>

/// The catalogue's functions over texts.
namespace tavix::expression::text_functions {

using Arguments = std::span<const Value>;

Value character(Arguments arguments, Scratch& scratch);
Value compare(Arguments arguments, Scratch& scratch);
Value concat(Arguments arguments, Scratch& scratch);
Value contains(Arguments arguments, Scratch& scratch);
Value endsWith(Arguments arguments, Scratch& scratch);
Value hasControlCharacters(Arguments arguments, Scratch& scratch);
/// Words are runs of letters, digits and the marks on them.
Value initcap(Arguments arguments, Scratch& scratch);
Value instr(Arguments arguments, Scratch& scratch);
Value isBlank(Arguments arguments, Scratch& scratch);
Value isDate(Arguments arguments, Scratch& scratch);
Value isInteger(Arguments arguments, Scratch& scratch);
Value isNumber(Arguments arguments, Scratch& scratch);
Value left(Arguments arguments, Scratch& scratch);
Value length(Arguments arguments, Scratch& scratch);
Value lower(Arguments arguments, Scratch& scratch);
Value ltrim(Arguments arguments, Scratch& scratch);
Value matchString(Arguments arguments, Scratch& scratch);
Value padLeft(Arguments arguments, Scratch& scratch);
Value padRight(Arguments arguments, Scratch& scratch);
Value replace(Arguments arguments, Scratch& scratch);
Value reverse(Arguments arguments, Scratch& scratch);
Value right(Arguments arguments, Scratch& scratch);
Value rtrim(Arguments arguments, Scratch& scratch);
Value split(Arguments arguments, Scratch& scratch);
Value startsWith(Arguments arguments, Scratch& scratch);
Value substring(Arguments arguments, Scratch& scratch);
Value trim(Arguments arguments, Scratch& scratch);
/// Removes nonspacing marks from the canonical decomposition (Unicode Standard Annex #15).
Value unaccent(Arguments arguments, Scratch& scratch);
Value upper(Arguments arguments, Scratch& scratch);

} // namespace tavix::expression::text_functions
