#include "blocks/tests/Reference.h"

#include "base/Characters.h"
#include "base/DateTicks.h"
#include "base/NumberText.h"
#include "forms/Reading.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace tavix::expression::reference {

namespace {

/// Whether the expression is the same in all rows: it names no field.
bool isFixed(const Expression& expression) {
    return expression.text.find('`') == std::string::npos;
}

/// The part with that number of a text that is cut at a separator.
Value splitOff(const Text& text, const Text& separator, std::int64_t number) {
    if (number < 1)
        return {};
    if (separator.empty())
        return number == 1 ? Value(text) : Value();
    const std::size_t end = text.find(separator);
    if (number == 1)
        return Value(text.substr(0, end));
    return end == Text::npos ? Value() : splitOff(text.substr(end + separator.size()), separator, number - 1);
}

/// By the definition: each cell of the table from its three neighbours.
std::int64_t distance(const Text& left, const Text& right) {
    std::vector<std::vector<std::int64_t>> cells(left.size() + 1, std::vector<std::int64_t>(right.size() + 1));
    for (std::size_t i = 0; i <= left.size(); ++i) {
        for (std::size_t j = 0; j <= right.size(); ++j) {
            if (i == 0 || j == 0)
                cells[i][j] = static_cast<std::int64_t>(i + j);
            else
                cells[i][j] = std::min({cells[i - 1][j] + 1, cells[i][j - 1] + 1,
                                        cells[i - 1][j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1)});
        }
    }
    return cells[left.size()][right.size()];
}

} // namespace

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

std::string Generator::cell(bool onlyAscii) {
    static const std::array<std::string, 26> kCells{"5",
                                                    "-3",
                                                    "2.50",
                                                    "2.5",
                                                    "0.5",
                                                    "1e0",
                                                    "+4",
                                                    "007",
                                                    "7",
                                                    "7.",
                                                    ".25",
                                                    "-0",
                                                    "0",
                                                    "1e999",
                                                    "1e",
                                                    "-",
                                                    "9223372036854775807",
                                                    "9223372036854775808",
                                                    "12345678901234567890",
                                                    "-12345678901234567891",
                                                    "0.1000000000000000055511151231257827",
                                                    "2024-02-29",
                                                    "2024-02-29 10:00",
                                                    "2024-02-29T11:00:00+01:00",
                                                    "2024-02-30",
                                                    "1999-12-31"};
    if (m_columns == Columns::Texts || below(4) == 0)
        return rowText(onlyAscii);
    return below(3) == 0 ? std::to_string(static_cast<int>(below(14)) - 2) : kCells[below(kCells.size())];
}

bool Generator::isCell(const Expression& expression) const {
    return m_columns == Columns::Typed && (expression.text == "`Value`" || expression.text == "`Other`");
}

std::optional<int> Generator::orderOf(const Expression& left, const Expression& right, const Value& a,
                                      const Value& b) const {
    const bool isTextLeft = std::holds_alternative<Text>(a);
    const bool isTextRight = std::holds_alternative<Text>(b);
    if (isCell(left) && isCell(right))
        return orderOfCells(textOf(a), textOf(b));
    if (isCell(left) && !isTextRight && !std::holds_alternative<bool>(b))
        return orderOfCell(textOf(a), b);
    if (isCell(right) && !isTextLeft && !std::holds_alternative<bool>(a)) {
        const auto order = orderOfCell(textOf(b), a);
        return order ? std::optional(-*order) : std::nullopt;
    }
    if (isTextLeft != isTextRight && isFixed(isTextLeft ? left : right))
        return isTextLeft ? compareAny(asNumber(a), b) : compareAny(a, asNumber(b));
    return compareAny(a, b);
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

Expression Generator::field() {
    return below(3) == 0 ? Expression{"`Other`", [](const Row& row) { return row.other; }}
                         : Expression{"`Value`", [](const Row& row) { return row.value; }};
}

Expression Generator::text(int depth) {
    if (depth <= 0 || below(4) == 0) {
        if (below(4) == 0)
            return quoted(below(2) == 0 ? cell(true) : "aé");
        return field();
    }
    const Expression inner = text(depth - 1);
    const std::int64_t count = static_cast<std::int64_t>(below(6)) - 1;
    switch (below(20)) {
    case 16:
        return call("initcap", {inner}, [](const auto& v) { return Value(capitalized(textOf(v[0]))); });
    case 17:
        return call("unaccent", {inner}, [](const auto& v) { return Value(withoutAccents(textOf(v[0]))); });
    case 18:
        return call("regexp_extract", {inner, quoted("[0-9]+")},
                    [](const auto& v) { return firstDigits(textOf(v[0])); });
    case 19:
        return call("regexp_replace", {inner, quoted("[kK1]"), quoted("<\\0>")}, [](const auto& v) {
            Text text = textOf(v[0]);
            for (const char32_t c : {U'k', U'K', U'1'})
                text = replaced(text, Text(1, c), Text{U'<', c, U'>'});
            return Value(text);
        });
    case 14:
        return call("reverse", {inner}, [](const auto& v) {
            Text reversed = textOf(v[0]);
            std::ranges::reverse(reversed);
            return Value(reversed);
        });
    case 15:
        return call("split", {inner, quoted(rowText(true).substr(0, 1)), number(count)},
                    [](const auto& v) { return splitOff(textOf(v[0]), textOf(v[1]), integerOf(v[2])); });
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
    case 11: {
        const Expression other = part(depth);
        const bool areCells = isCell(inner) && isCell(other);
        return call("max", {inner, other}, [areCells](const auto& v) {
            const Text& a = textOf(v[0]);
            const Text& b = textOf(v[1]);
            const bool isTyped = areCells && ((isPlainNumber(a) && isPlainNumber(b)) || (isDate(a) && isDate(b)));
            return (isTyped ? orderOfCells(a, b) : compareTexts(a, b)) < 0 ? v[1] : v[0];
        });
    }
    case 12: {
        const Expression other = isCell(inner) && below(2) == 0 ? integer(depth - 1) : part(depth);
        return call("nullif", {inner, other}, [this, inner, other](const auto& v) {
            return orderOf(inner, other, v[0], v[1]) == 0 ? Value() : v[0];
        });
    }
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
    switch (below(10)) {
    case 9:
        return datePart(depth);
    case 8:
        return call("editdistance", {text(depth - 1), part(depth)},
                    [](const auto& v) { return Value(distance(textOf(v[0]), textOf(v[1]))); });
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
                const int o = compareTexts(fold(textOf(v[0])), fold(textOf(v[1])));
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
    if (m_columns == Columns::Typed && below(8) == 0)
        return call("max", {integer(depth - 1), field()}, [](const auto& v) {
            const auto cell = orderOfCell(textOf(v[1]), std::int64_t{0}) ? asNumber(v[1]) : Value();
            return isNull(cell) ? cell : Value(std::max(toReal(v[0]), toReal(cell)));
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

Expression Generator::datePart(int depth) {
    const Expression text = below(3) > 0 ? field() : this->text(depth - 1);
    const Expression date = call("todate", {text}, [](const auto& v) {
        const auto ticks = parseDate(encode(textOf(v[0])));
        return ticks ? Value(*ticks) : Value();
    });
    const auto civil = [](const std::vector<Value>& v, std::size_t i) { return civilOf(integerOf(v[i])); };
    switch (below(7)) {
    case 0:
        return call("year", {date}, [civil](const auto& v) { return Value(civil(v, 0).year); });
    case 1:
        return call("month", {date}, [civil](const auto& v) { return Value(civil(v, 0).month); });
    case 2:
        return call("day", {date}, [civil](const auto& v) { return Value(civil(v, 0).day); });
    case 3:
        return call("quarter", {date}, [civil](const auto& v) { return Value((civil(v, 0).month + 2) / 3); });
    case 4:
        return call("day", {call("lastday", {date}, [](const auto& v) { return v[0]; })}, [civil](const auto& v) {
            // The day before the first of another month.
            Civil at = civil(v, 0);
            std::int64_t ticks = integerOf(v[0]);
            for (Civil next = at; next.month == at.month; next = civilOf(ticks)) {
                at = next;
                ticks += kTicksPerDay;
            }
            return Value(at.day);
        });
    case 5:
        return call("month", {call("startof", {date, quoted("quarter")}, [](const auto& v) { return v[0]; })},
                    [civil](const auto& v) { return Value((civil(v, 0).month + 2) / 3 * 3 - 2); });
    default: {
        const bool isInMonths = below(2) == 0;
        const Expression fixed{"todate('2023-12-31 23:00')",
                               [](const Row&) { return Value(*parseDate("2023-12-31 23:00")); }};
        const bool isFirst = below(2) == 0;
        std::vector<Expression> arguments{isFirst ? fixed : date, isFirst ? date : fixed};
        arguments.push_back(quoted(isInMonths ? "months" : "day"));
        return call("datediff", arguments, [isInMonths, civil](const auto& v) {
            const auto months = [&](std::size_t i) { return civil(v, i).year * 12 + civil(v, i).month; };
            const auto days = [&](std::size_t i) {
                const std::int64_t ticks = integerOf(v[i]);
                return ticks / kTicksPerDay - (ticks % kTicksPerDay < 0 ? 1 : 0);
            };
            return Value(isInMonths ? months(1) - months(0) : days(1) - days(0));
        });
    }
    }
}

} // namespace tavix::expression::reference
