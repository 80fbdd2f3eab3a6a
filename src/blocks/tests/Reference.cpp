#include "blocks/tests/Reference.h"

#include "base/Characters.h"
#include "base/NumberText.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace tavix::expression::reference {

namespace {

constexpr char32_t kBytes = 0x110000;

bool isNull(const Value& value) {
    return value.index() == 0;
}
const Text& textOf(const Value& value) {
    return std::get<Text>(value);
}
std::int64_t integerOf(const Value& value) {
    return std::get<std::int64_t>(value);
}

Value toText(const Value& value) {
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return decode(std::to_string(*integer));
    if (const auto* real = std::get_if<double>(&value))
        return decode(formatReal(*real));
    if (const auto* boolean = std::get_if<bool>(&value))
        return decode(*boolean ? "true" : "false");
    return value;
}

double toReal(const Value& value) {
    const auto* integer = std::get_if<std::int64_t>(&value);
    return integer ? static_cast<double>(*integer) : std::get<double>(value);
}

template <typename T>
int order(const T& left, const T& right) {
    return left < right ? -1 : right < left ? 1 : 0;
}

/// By code point; where there are bytes of no character, by byte.
template <>
int order<Text>(const Text& left, const Text& right) {
    const auto isBad = [](char32_t c) { return c >= kBytes; };
    if (std::ranges::any_of(left, isBad) || std::ranges::any_of(right, isBad))
        return order(encode(left), encode(right));
    return left.compare(right);
}

int compareAny(const Value& left, const Value& right) {
    if (std::holds_alternative<Text>(left) || std::holds_alternative<Text>(right))
        return order(textOf(toText(left)), textOf(toText(right)));
    if (std::holds_alternative<bool>(left))
        return order(std::get<bool>(left), std::get<bool>(right));
    if (std::holds_alternative<std::int64_t>(left) && std::holds_alternative<std::int64_t>(right))
        return order(integerOf(left), integerOf(right));
    return order(toReal(left), toReal(right));
}

/// Whether the expression is the same in all rows: it names no field.
bool isFixed(const Expression& expression) {
    return expression.text.find('`') == std::string::npos;
}

/// A number beside a fixed text that is one is compared as a number.
Value asNumber(const Value& value) {
    const std::string text = encode(textOf(value));
    if (const auto integer = parseInteger(text))
        return *integer;
    const auto real = parseNumber(text);
    return real ? Value(*real) : value;
}

/// In a list: true when one equals, else null when one is null.
Value isAmong(const std::vector<Value>& values) {
    if (isNull(values.front()))
        return {};
    const auto equals = [&](const Value& one) { return !isNull(one) && compareAny(values.front(), one) == 0; };
    if (std::any_of(values.begin() + 1, values.end(), equals))
        return true;
    return std::any_of(values.begin() + 1, values.end(), isNull) ? Value() : Value(false);
}

/// To one decimal place, as the number is written.
double roundedToOnePlace(double value) {
    const std::string text = formatReal(value);
    const std::size_t point = text.find('.');
    if (point == std::string::npos || text.find_first_of("eE") != std::string::npos || text.size() < point + 3)
        return value;
    const double cut = *parseNumber(text.substr(0, point + 2));
    if (text[point + 2] < '5')
        return cut;
    return std::round(cut * 10 + (value < 0 ? -1 : 1)) / 10;
}

template <typename Map>
Text mapEach(Text text, Map map) {
    for (char32_t& c : text)
        c = c >= kBytes ? c : static_cast<char32_t>(map(static_cast<UChar32>(c)));
    return text;
}
Text lower(const Text& text) {
    return mapEach(text, [](UChar32 c) { return u_tolower(c); });
}
Text upper(const Text& text) {
    return mapEach(text, [](UChar32 c) { return u_toupper(c); });
}

bool isSpace(char32_t c) {
    return c < kBytes && u_isUWhiteSpace(static_cast<UChar32>(c));
}
Text trimmed(Text text, bool left, bool right) {
    while (left && !text.empty() && isSpace(text.front()))
        text.erase(0, 1);
    while (right && !text.empty() && isSpace(text.back()))
        text.pop_back();
    return text;
}

Text substring(const Text& text, std::int64_t first, std::int64_t count) {
    Text out;
    for (std::int64_t i = 0; i < static_cast<std::int64_t>(text.size()); ++i) {
        if (i + 1 >= first && i + 1 < first + count)
            out += text[static_cast<std::size_t>(i)];
    }
    return out;
}

Text replaced(const Text& text, const Text& from, const Text& to) {
    if (from.empty())
        return text;
    Text out;
    for (std::size_t i = 0; i < text.size();) {
        if (text.compare(i, from.size(), from) == 0) {
            out += to;
            i += from.size();
        } else {
            out += text[i++];
        }
    }
    return out;
}

/// Whether the text fits, by way of all beginnings of the text against all beginnings of the pattern.
bool fits(const Text& text, const Text& pattern) {
    std::vector<bool> before(text.size() + 1); // which beginnings of the text fit the pattern so far
    before[0] = true;
    for (const char32_t sign : pattern) {
        std::vector<bool> now(text.size() + 1);
        now[0] = sign == U'*' && before[0];
        for (std::size_t t = 0; t < text.size(); ++t)
            now[t + 1] = sign == U'*' ? now[t] || before[t + 1] : (sign == U'?' || sign == text[t]) && before[t];
        before = now;
    }
    return before[text.size()];
}

bool isControl(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c <= 0x9F);
}

/// sign? (digits [. digits*] | . digits) (e sign? digits)?
bool isNumber(const Text& text) {
    std::size_t i = 0;
    const auto digits = [&] {
        std::size_t count = 0;
        for (; i < text.size() && text[i] >= U'0' && text[i] <= U'9'; ++i)
            ++count;
        return count;
    };
    const auto sign = [&] { i += i < text.size() && (text[i] == U'-' || text[i] == U'+') ? 1 : 0; };
    sign();
    std::size_t count = digits();
    if (i < text.size() && text[i] == U'.') {
        ++i;
        count += digits();
    }
    if (count == 0)
        return false;
    if (i < text.size() && (text[i] == U'e' || text[i] == U'E')) {
        ++i;
        sign();
        if (digits() == 0)
            return false;
    }
    return i == text.size();
}

std::optional<bool> truth(const Value& value) {
    return isNull(value) ? std::nullopt : std::optional(std::get<bool>(value));
}
Value fromTruth(std::optional<bool> truth) {
    return truth ? Value(*truth) : Value();
}

} // namespace

Text decode(std::string_view utf8) {
    Text out;
    for (std::size_t at = 0; at < utf8.size();) {
        const auto byte = static_cast<unsigned char>(utf8[at]);
        const std::int32_t character = nextCharacter(utf8, at);
        out += character < 0 ? kBytes + byte : static_cast<char32_t>(character);
    }
    return out;
}

std::string encode(const Text& text) {
    std::string out;
    for (const char32_t c : text) {
        if (c >= kBytes)
            out += static_cast<char>(c - kBytes);
        else
            appendCharacter(out, static_cast<std::int32_t>(c));
    }
    return out;
}

std::string Generator::rowText(bool onlyAscii) {
    static const std::array<std::string, 16> kAscii{"a", "A", "b", "B", "k", "1", "5", "9",
                                                    "0", " ", ".", "-", "e", "*", "?", "\t"};
    static const std::array<std::string, 10> kOther{"é",    "É",      "ß",      "İ",    "\u212A",
                                                    "🙂", "\u0085", "\u00A0", "\xF8", "ǆ"};
    std::string out;
    // Comparisons look at eight bytes at a time: many texts begin alike and end near there.
    if (below(6) == 0)
        out = std::string("kkkk5kkk").substr(0, 6 + below(3));
    for (std::size_t i = below(out.empty() ? 9 : 3); i > 0; --i)
        out += onlyAscii || below(4) > 0 ? kAscii[below(kAscii.size())] : kOther[below(kOther.size())];
    return out;
}

Expression Generator::quoted(const std::string& utf8) {
    std::string text = "'";
    for (const char c : utf8)
        text += c == '\'' ? "\\'" : std::string(1, c);
    return {text + "'", [value = decode(utf8)](const Row&) { return Value(value); }};
}

Expression Generator::number(std::int64_t value) {
    return {std::to_string(value), [value](const Row&) { return Value(value); }};
}

/// Null as soon as one argument is.
Expression Generator::call(const std::string& name, const std::vector<Expression>& arguments,
                           std::function<Value(const std::vector<Value>&)> meaning) {
    std::string text = name + "(";
    for (std::size_t i = 0; i < arguments.size(); ++i)
        text += (i > 0 ? "," : "") + arguments[i].text;
    return {text + ")", [arguments, meaning = std::move(meaning)](const Row& row) {
                std::vector<Value> values;
                for (const Expression& argument : arguments)
                    values.push_back(argument.meaning(row));
                return std::ranges::any_of(values, isNull) ? Value() : meaning(values);
            }};
}

Expression Generator::part(int depth) {
    return depth > 0 && below(4) == 0 ? text(depth - 1)
                                      : quoted(below(3) > 0 ? rowText(true).substr(0, below(3)) : "é");
}

Expression Generator::text(int depth) {
    if (depth <= 0 || below(4) == 0) {
        switch (below(4)) {
        case 0:
            return quoted(below(2) == 0 ? rowText(true) : "aé");
        case 1:
            return {"`Other`", [](const Row& row) { return row.other; }};
        default:
            return {"`Value`", [](const Row& row) { return row.value; }};
        }
    }
    const Expression inner = text(depth - 1);
    const std::int64_t count = static_cast<std::int64_t>(below(6)) - 1;
    switch (below(14)) {
    case 0:
        return call("lower", {inner}, [](const auto& v) { return Value(lower(textOf(v[0]))); });
    case 1:
        return call("UPPER", {inner}, [](const auto& v) { return Value(upper(textOf(v[0]))); });
    case 2:
        return call("trim", {inner}, [](const auto& v) { return Value(trimmed(textOf(v[0]), true, true)); });
    case 3:
        return call("ltrim", {inner}, [](const auto& v) { return Value(trimmed(textOf(v[0]), true, false)); });
    case 4:
        return call("rtrim", {inner}, [](const auto& v) { return Value(trimmed(textOf(v[0]), false, true)); });
    case 5:
        return call("left", {inner, below(3) > 0 ? number(count) : integer(depth - 1)}, [](const auto& v) {
            return Value(substring(textOf(v[0]), 1, std::clamp<std::int64_t>(integerOf(v[1]), 0, 1000)));
        });
    case 6:
        return call("right", {inner, below(3) > 0 ? number(count) : integer(depth - 1)}, [](const auto& v) {
            const auto size = static_cast<std::int64_t>(textOf(v[0]).size());
            const auto taken = std::clamp<std::int64_t>(integerOf(v[1]), 0, size);
            return Value(substring(textOf(v[0]), size - taken + 1, taken));
        });
    case 7:
        return call("substring",
                    {inner, below(3) > 0 ? number(count) : integer(depth - 1),
                     below(3) > 0 ? number(static_cast<std::int64_t>(below(5))) : integer(depth - 1)},
                    [](const auto& v) {
                        // Beyond these nothing changes, and sums stay small.
                        const auto first = std::clamp<std::int64_t>(integerOf(v[1]), -100'000, 100'000);
                        const bool isFar = integerOf(v[1]) < -100'000;
                        const auto most = isFar ? integerOf(v[2]) + (integerOf(v[1]) + 100'000) : integerOf(v[2]);
                        return Value(substring(textOf(v[0]), first, std::clamp<std::int64_t>(most, 0, 1'000'000)));
                    });
    case 8:
        return call("replace", {inner, part(depth), part(depth)},
                    [](const auto& v) { return Value(replaced(textOf(v[0]), textOf(v[1]), textOf(v[2]))); });
    case 9:
        return call("concat", {inner, part(depth)}, [](const auto& v) { return Value(textOf(v[0]) + textOf(v[1])); });
    case 10: {
        const Expression other = text(depth - 1);
        return {"coalesce(" + inner.text + ", " + other.text + ")", [inner, other](const Row& row) {
                    const Value first = inner.meaning(row);
                    return isNull(first) ? other.meaning(row) : first;
                }};
    }
    case 11:
        return call("max", {inner, part(depth)},
                    [](const auto& v) { return order(textOf(v[0]), textOf(v[1])) < 0 ? v[1] : v[0]; });
    case 12:
        return call("nullif", {inner, part(depth)},
                    [](const auto& v) { return textOf(v[0]) == textOf(v[1]) ? Value() : v[0]; });
    default:
        return call("totext", {any(depth - 1)}, [](const auto& v) { return toText(v[0]); });
    }
}

Expression Generator::integer(int depth) {
    if (depth <= 0 || below(4) == 0) {
        if (below(2) == 0)
            return number(static_cast<std::int64_t>(below(12)) - 2);
        return {"`Count`", [](const Row& row) { return row.count; }};
    }
    switch (below(8)) {
    case 3:
        return call("instr", {text(depth - 1), part(depth), below(3) > 0 ? number(1 + below(4)) : integer(depth - 1)},
                    [](const auto& v) {
                        const auto size = static_cast<std::int64_t>(textOf(v[0]).size());
                        const auto from = std::clamp<std::int64_t>(integerOf(v[2]), 1, size + 1) - 1;
                        const std::size_t at = textOf(v[0]).find(textOf(v[1]), static_cast<std::size_t>(from));
                        return Value(at == Text::npos ? std::int64_t{0} : static_cast<std::int64_t>(at) + 1);
                    });
    case 4: {
        const bool isMax = below(2) == 0;
        return call(isMax ? "max" : "min", {integer(depth - 1), integer(depth - 1), number(3)}, [isMax](const auto& v) {
            const auto [least, greatest] = std::minmax({integerOf(v[0]), integerOf(v[1]), integerOf(v[2])});
            return Value(isMax ? greatest : least);
        });
    }
    case 0:
        return call("length", {text(depth - 1)},
                    [](const auto& v) { return Value(static_cast<std::int64_t>(textOf(v[0]).size())); });
    case 1:
        return call("instr", {text(depth - 1), part(depth)}, [](const auto& v) {
            const std::size_t at = textOf(v[0]).find(textOf(v[1]));
            return Value(at == Text::npos ? std::int64_t{0} : static_cast<std::int64_t>(at) + 1);
        });
    case 2: {
        const bool ignoresCase = below(2) == 0;
        return call(
            "compare",
            {text(depth - 1), part(depth), {ignoresCase ? "true" : "FALSE", [](const Row&) { return Value(true); }}},
            [ignoresCase](const auto& v) {
                const auto fold = [&](const Text& text) { return ignoresCase ? lower(text) : text; };
                const int o = order(fold(textOf(v[0])), fold(textOf(v[1])));
                return Value(std::int64_t{o < 0 ? -1 : o > 0 ? 1 : 0});
            });
    }
    default: {
        const Expression left = integer(depth - 1);
        const Expression right = integer(depth - 1);
        const char sign = "+-*%"[below(4)];
        return {"(" + left.text + " " + sign + " " + right.text + ")", [left, right, sign](const Row& row) {
                    const Value a = left.meaning(row);
                    const Value b = right.meaning(row);
                    if (isNull(a) || isNull(b) || (sign == '%' && integerOf(b) == 0))
                        return Value();
                    std::int64_t out = 0;
                    switch (sign) {
                    case '+':
                        row.hasFailed |= __builtin_add_overflow(integerOf(a), integerOf(b), &out);
                        break;
                    case '-':
                        row.hasFailed |= __builtin_sub_overflow(integerOf(a), integerOf(b), &out);
                        break;
                    case '*':
                        row.hasFailed |= __builtin_mul_overflow(integerOf(a), integerOf(b), &out);
                        break;
                    default:
                        out = integerOf(b) == -1 ? 0 : integerOf(a) % integerOf(b);
                    }
                    return Value(out);
                }};
    }
    }
}

Expression Generator::real(int depth) {
    if (below(2) == 0)
        return call("tonumber", {text(depth - 1)}, [](const auto& v) {
            const auto number = parseNumber(encode(textOf(v[0])));
            return number ? Value(*number) : Value();
        });
    if (depth > 0 && below(3) == 0) {
        const Expression inner = real(depth - 1);
        switch (below(4)) {
        case 2:
            return call("min", {inner, integer(depth - 1)},
                        [](const auto& v) { return Value(std::min(toReal(v[0]), toReal(v[1]))); });
        case 0:
            return call("abs", {inner}, [](const auto& v) { return Value(std::fabs(toReal(v[0]))); });
        case 1:
            return call("floor", {inner}, [](const auto& v) { return Value(std::floor(toReal(v[0]))); });
        default:
            return call("round", {inner, number(1)},
                        [](const auto& v) { return Value(roundedToOnePlace(toReal(v[0]))); });
        }
    }
    const Expression left = integer(depth - 1);
    const Expression right = integer(depth - 1);
    return {"(" + left.text + " / " + right.text + ")", [left, right](const Row& row) {
                const Value a = left.meaning(row);
                const Value b = right.meaning(row);
                return isNull(a) || isNull(b) || integerOf(b) == 0 ? Value() : Value(toReal(a) / toReal(b));
            }};
}

Expression Generator::numberList(int depth) {
    std::vector<Expression> members{below(2) == 0 ? integer(depth - 1) : real(depth - 1)};
    for (std::size_t i = 1 + below(12); i > 0; --i)
        members.push_back(below(8) == 0 ? integer(depth - 1) : number(static_cast<std::int64_t>(below(20)) - 2));
    return listTest(members);
}

/// Other functions are null as soon as one argument is.
Expression Generator::listTest(std::vector<Expression> members) {
    if (below(4) == 0)
        members.insert(members.begin() + 1 + static_cast<std::ptrdiff_t>(below(members.size())),
                       {"null", [](const Row&) { return Value(); }});
    std::string text = "inlist(";
    for (std::size_t i = 0; i < members.size(); ++i)
        text += (i > 0 ? "," : "") + members[i].text;
    return {text + ")", [members](const Row& row) {
                std::vector<Value> values;
                for (const Expression& member : members)
                    values.push_back(member.meaning(row));
                return isAmong(values);
            }};
}

Expression Generator::any(int depth) {
    switch (below(4)) {
    case 0:
        return integer(depth);
    case 1:
        return real(depth);
    case 2:
        return condition(depth);
    default:
        return text(depth);
    }
}

Expression Generator::compare(const Expression& left, const Expression& right) {
    static const std::array<std::string, 6> kSigns{"==", "!=", "<", "<=", ">", ">="};
    const std::size_t sign = below(kSigns.size());
    return {"(" + left.text + " " + kSigns[sign] + " " + right.text + ")", [left, right, sign](const Row& row) {
                Value a = left.meaning(row);
                Value b = right.meaning(row);
                if (isNull(a) || isNull(b))
                    return Value();
                const bool isTextLeft = std::holds_alternative<Text>(a);
                if (isTextLeft != std::holds_alternative<Text>(b) && isFixed(isTextLeft ? left : right))
                    (isTextLeft ? a : b) = asNumber(isTextLeft ? a : b);
                const int o = compareAny(a, b);
                const std::array<bool, 6> answers{o == 0, o != 0, o<0, o <= 0, o> 0, o >= 0};
                return Value(answers[sign]);
            }};
}

Expression Generator::junction(int depth) {
    const bool isAnd = below(2) == 0;
    std::vector<Expression> parts;
    std::string text = "(";
    // At times a range: one text against several fixed ones.
    const bool isRange = below(3) == 0;
    const Expression subject = this->text(depth - 1);
    for (std::size_t i = 2 + below(2); i > 0; --i) {
        parts.push_back(isRange ? compare(subject, quoted(rowText(true))) : condition(depth - 1));
        text += parts.back().text + (i > 1 ? (isAnd ? " and " : " or ") : ")");
    }
    return {text, [parts, isAnd](const Row& row) {
                bool sawNull = false;
                bool sawDecision = false;
                for (const Expression& part : parts) {
                    const auto value = truth(part.meaning(row));
                    sawNull = sawNull || !value;
                    sawDecision = sawDecision || (value && *value != isAnd);
                }
                return fromTruth(sawDecision ? std::optional(!isAnd) : sawNull ? std::nullopt : std::optional(isAnd));
            }};
}

Expression Generator::condition(int depth) {
    if (depth > 1 && below(3) == 0)
        return junction(depth);
    switch (below(14)) {
    case 0: {
        const Expression inner = condition(depth - 1);
        return {"(not " + inner.text + ")", [inner](const Row& row) {
                    const auto value = truth(inner.meaning(row));
                    return fromTruth(value ? std::optional(!*value) : std::nullopt);
                }};
    }
    case 1: {
        const Expression inner = depth > 0 ? any(depth - 1) : text(0);
        return {"isnull(" + inner.text + ")", [inner](const Row& row) { return Value(isNull(inner.meaning(row))); }};
    }
    case 2:
        return compare(integer(depth - 1), integer(depth - 1));
    case 3:
        return compare(real(depth - 1), integer(depth - 1));
    case 4:
        return compare(text(depth - 1), integer(depth - 1));
    case 5:
        return call("contains", {text(depth - 1), part(depth)},
                    [](const auto& v) { return Value(textOf(v[0]).find(textOf(v[1])) != Text::npos); });
    case 6:
        return call("starts_with", {text(depth - 1), part(depth)},
                    [](const auto& v) { return Value(textOf(v[0]).starts_with(textOf(v[1]))); });
    case 7:
        return call("ends_with", {text(depth - 1), part(depth)},
                    [](const auto& v) { return Value(textOf(v[0]).ends_with(textOf(v[1]))); });
    case 8: {
        if (below(3) == 0)
            return numberList(depth);
        std::vector<Expression> members{text(depth - 1)};
        for (std::size_t i = 1 + below(12); i > 0; --i)
            members.push_back(below(3) == 0 ? quoted(rowText(true)) : part(below(5) == 0 ? depth : 0));
        return listTest(std::move(members));
    }
    case 9: {
        std::string pattern;
        for (std::size_t i = below(6); i > 0; --i)
            pattern += below(2) == 0 ? std::string(1, "*?"[below(2)]) : rowText(below(2) == 0).substr(0, 1);
        // What is cut in the middle of a character is no text of the language.
        if (std::ranges::any_of(decode(pattern), [](char32_t c) { return c >= kBytes; }))
            pattern = "*é?";
        return call("match_string", {text(depth - 1), below(4) > 0 ? quoted(pattern) : part(depth)},
                    [](const auto& v) { return Value(fits(textOf(v[0]), textOf(v[1]))); });
    }
    case 10:
        return call("has_control_chars", {text(depth - 1)},
                    [](const auto& v) { return Value(std::ranges::any_of(textOf(v[0]), isControl)); });
    case 11:
        return call("isnumber", {text(depth - 1)}, [](const auto& v) { return Value(isNumber(textOf(v[0]))); });
    case 12:
        return call("isblank", {text(depth - 1)},
                    [](const auto& v) { return Value(std::ranges::all_of(textOf(v[0]), isSpace)); });
    default:
        return compare(text(depth - 1), text(depth - 1));
    }
}

Expression Generator::program(int depth) {
    if (below(3) > 0)
        return condition(depth);
    const Expression test = condition(depth - 1);
    const Expression yes = condition(depth - 2);
    const Expression no = program(depth - 1);
    const bool isStatement = no.text.starts_with("if");
    return {"if " + test.text + " then\r\n   return " + yes.text + "\r\nelse" + (isStatement ? " " : " return ") +
                no.text,
            [test, yes, no](const Row& row) {
                return truth(test.meaning(row)) == true ? yes.meaning(row) : no.meaning(row);
            }};
}

} // namespace tavix::expression::reference
