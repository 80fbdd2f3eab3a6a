#include "expression/TextFunctions.h"

#include "base/DateTicks.h"
#include "base/NumberText.h"
#include "expression/ByteSearch.h"
#include "expression/Conversion.h"
#include "expression/TextOperators.h"
#include "expression/Wildcard.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <limits>

namespace tavix::expression::text_functions {

namespace {

constexpr std::size_t kLongestPattern = 4096;

/// Keeps the text that a mapping appends to an empty one.
template <typename Append>
Value mapped(std::string_view text, Scratch& scratch, Append append) {
    if (scratch.isFull() && !scratch.fits(text.size()))
        return {};
    std::string& out = scratch.builder();
    append(out, text);
    return Value::ofText(scratch.keep(out));
}

/// Appends unless the text would become too long to keep, which is a failure.
bool appendBounded(std::string& out, std::string_view part, Scratch& scratch) {
    if (!scratch.fits(out.size() + part.size()))
        return false;
    out.append(part);
    return true;
}

// A mistaken length must not make megabytes in every row.
constexpr std::int64_t kMostPadding = 65'536;

Value padded(Arguments arguments, Scratch& scratch, bool onTheLeft) {
    const std::string_view text = arguments[0].text;
    const std::string_view fill = arguments.size() > 2 ? arguments[2].text : std::string_view(" ");
    const auto present = static_cast<std::int64_t>(countCharacters(text));
    if (arguments[1].integer <= present || fill.empty())
        return arguments[0];
    std::int64_t missing = arguments[1].integer - present;
    if (missing > kMostPadding) {
        scratch.fail("a text would become too long");
        return {};
    }
    const auto each = static_cast<std::int64_t>(countCharacters(fill));
    const std::string_view rest = leftOf(fill, missing % each);
    if (!scratch.fits(text.size() + static_cast<std::size_t>(missing / each) * fill.size() + rest.size()))
        return {};
    std::string& out = scratch.builder();
    if (!onTheLeft)
        out.append(text);
    for (missing /= each; missing > 0; --missing)
        out.append(fill);
    out.append(rest);
    if (onTheLeft)
        out.append(text);
    return Value::ofText(scratch.keep(out));
}

} // namespace

Value character(Arguments arguments, Scratch& scratch) {
    const std::int64_t code = arguments[0].integer;
    if (code < 0 || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return {};
    std::string& out = scratch.builder();
    appendCharacter(out, static_cast<std::int32_t>(code));
    return Value::ofText(scratch.keep(out));
}

Value compare(Arguments arguments, Scratch& scratch) {
    if (arguments[0].type == Type::Date)
        return Value::ofInteger(compareValues(arguments[0], arguments[1]));
    std::string_view left = arguments[0].text;
    std::string_view right = arguments[1].text;
    if (arguments.size() > 2 && arguments[2].boolean) {
        left = mapped(left, scratch, appendLower).text;
        right = mapped(right, scratch, appendLower).text;
    }
    const int order = compareTexts(left, right);
    return Value::ofInteger(order < 0 ? -1 : order > 0 ? 1 : 0);
}

Value concat(Arguments arguments, Scratch& scratch) {
    std::string& out = scratch.builder();
    for (const Value& part : arguments) {
        if (!appendBounded(out, part.text, scratch))
            return {};
    }
    return Value::ofText(scratch.keep(out));
}

Value contains(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofBoolean(positionOf(arguments[0].text, arguments[1].text) != 0);
}

Value endsWith(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofBoolean(arguments[0].text.ends_with(arguments[1].text));
}

Value hasControlCharacters(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofBoolean(hasControlCharacter(arguments[0].text));
}

Value initcap(Arguments arguments, Scratch& scratch) {
    const std::string_view text = arguments[0].text;
    if (!scratch.fits(text.size()))
        return {};
    std::string& out = scratch.builder();
    bool isInWord = false;
    forEachCharacter(text, [&](std::int32_t character, std::string_view bytes) {
        const bool isOfWord =
            character >= 0 && (u_isalnum(character) != 0 || u_charType(character) == U_NON_SPACING_MARK);
        if (!isOfWord)
            out += bytes;
        else if (isInWord)
            appendLower(out, bytes);
        else
            appendUpper(out, bytes);
        isInWord = isOfWord;
    });
    return Value::ofText(scratch.keep(out));
}

Value instr(Arguments arguments, Scratch& /*scratch*/) {
    if (arguments.size() < 3)
        return Value::ofInteger(positionOf(arguments[0].text, arguments[1].text));
    const std::int64_t first = std::max<std::int64_t>(1, arguments[2].integer);
    const std::string_view text = arguments[0].text;
    const std::string_view rest = text.substr(offsetOfCharacter(text, static_cast<std::size_t>(first - 1)));
    const std::int64_t position = positionOf(rest, arguments[1].text);
    const auto skipped = static_cast<std::int64_t>(countCharacters(text.substr(0, text.size() - rest.size())));
    return Value::ofInteger(position == 0 ? 0 : position + skipped);
}

Value isBlank(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofBoolean(tavix::isBlank(arguments[0].text));
}

Value isDate(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofBoolean(parseDate(arguments[0].text).has_value());
}

Value isInteger(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofBoolean(parseInteger(arguments[0].text).has_value());
}

Value isNumber(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofBoolean(isNumberText(arguments[0].text));
}

Value left(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofText(leftOf(arguments[0].text, arguments[1].integer));
}

Value length(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofInteger(static_cast<std::int64_t>(countCharacters(arguments[0].text)));
}

Value lower(Arguments arguments, Scratch& scratch) {
    return mapped(arguments[0].text, scratch, appendLower);
}

Value ltrim(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofText(trimLeft(arguments[0].text));
}

Value matchString(Arguments arguments, Scratch& scratch) {
    if (arguments[1].text.size() > kLongestPattern) {
        scratch.fail("a wildcard pattern is too long");
        return {};
    }
    return Value::ofBoolean(Wildcard(arguments[1].text).matches(arguments[0].text, false, scratch));
}

Value padLeft(Arguments arguments, Scratch& scratch) {
    return padded(arguments, scratch, true);
}

Value padRight(Arguments arguments, Scratch& scratch) {
    return padded(arguments, scratch, false);
}

Value replace(Arguments arguments, Scratch& scratch) {
    std::string_view rest = arguments[0].text;
    const std::string_view from = arguments[1].text;
    if (from.empty())
        return arguments[0];
    std::string& out = scratch.builder();
    const ByteSearch search(from);
    for (std::size_t at = search.find(rest); at != ByteSearch::kNotFound; at = search.find(rest)) {
        if (!appendBounded(out, rest.substr(0, at), scratch) || !appendBounded(out, arguments[2].text, scratch))
            return {};
        rest.remove_prefix(at + from.size());
    }
    if (rest.size() == arguments[0].text.size())
        return arguments[0];
    if (!appendBounded(out, rest, scratch))
        return {};
    return Value::ofText(scratch.keep(out));
}

Value reverse(Arguments arguments, Scratch& scratch) {
    const std::string_view text = arguments[0].text;
    char* const bytes = scratch.allocate(text.size());
    if (!bytes)
        return {};
    char* to = bytes + text.size();
    forEachCharacter(text, [&to](std::int32_t /*character*/, std::string_view character) {
        to -= character.size();
        std::ranges::copy(character, to);
    });
    return Value::ofText({bytes, text.size()});
}

Value right(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofText(rightOf(arguments[0].text, arguments[1].integer));
}

Value rtrim(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofText(trimRight(arguments[0].text));
}

Value split(Arguments arguments, Scratch& /*scratch*/) {
    std::string_view rest = arguments[0].text;
    const std::string_view separator = arguments[1].text;
    const std::int64_t wanted = arguments[2].integer;
    if (wanted < 1)
        return {};
    if (separator.empty())
        return wanted == 1 ? arguments[0] : Value{};
    const ByteSearch search(separator);
    for (std::int64_t part = 1;; ++part) {
        const std::size_t end = search.find(rest);
        if (part == wanted)
            return Value::ofText(rest.substr(0, end == ByteSearch::kNotFound ? rest.size() : end));
        if (end == ByteSearch::kNotFound)
            return {};
        rest.remove_prefix(end + separator.size());
    }
}

Value startsWith(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofBoolean(arguments[0].text.starts_with(arguments[1].text));
}

Value substring(Arguments arguments, Scratch& /*scratch*/) {
    const std::int64_t all = std::numeric_limits<std::int64_t>::max();
    return Value::ofText(
        substringOf(arguments[0].text, arguments[1].integer, arguments.size() > 2 ? arguments[2].integer : all));
}

Value trim(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofText(trimLeft(trimRight(arguments[0].text)));
}

Value unaccent(Arguments arguments, Scratch& scratch) {
    const std::string_view text = arguments[0].text;
    if (isAscii(text))
        return arguments[0];
    if (!scratch.fits(text.size()))
        return {};
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const marks = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status)) {
        scratch.fail("the tables of accents are missing");
        return {};
    }
    std::string& out = scratch.builder();
    forEachCharacter(text, [&](std::int32_t character, std::string_view bytes) {
        icu::UnicodeString parts;
        if (character < 0 || isAscii(bytes) || !marks->getDecomposition(character, parts))
            parts.remove();
        if (parts.isEmpty() && (character < 0 || u_charType(character) != U_NON_SPACING_MARK))
            out += bytes;
        for (std::int32_t i = 0; i < parts.length(); i = parts.moveIndex32(i, 1)) {
            if (u_charType(parts.char32At(i)) != U_NON_SPACING_MARK)
                appendCharacter(out, parts.char32At(i));
        }
    });
    return Value::ofText(scratch.keep(out));
}

Value upper(Arguments arguments, Scratch& scratch) {
    return mapped(arguments[0].text, scratch, appendUpper);
}

} // namespace tavix::expression::text_functions
