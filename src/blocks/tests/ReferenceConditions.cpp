#include "base/DateTicks.h"
#include "base/NumberText.h"
#include "blocks/tests/Reference.h"
#include "forms/Reading.h"

#include <algorithm>
#include <array>
#include <optional>

/// The conditions of the generator: comparisons, lists, tests, and programs made of them.
namespace tavix::expression::reference {

Expression Generator::numberList(int depth) {
    const bool hasCells = m_columns == Columns::Typed && below(2) == 0;
    std::vector<Expression> members{hasCells && below(2) == 0 ? field()
                                    : below(2) == 0           ? integer(depth - 1)
                                                              : real(depth - 1)};
    for (std::size_t i = 1 + below(12); i > 0; --i)
        members.push_back(hasCells && below(6) == 0                  ? field()
                          : isCell(members.front()) && below(6) == 0 ? quoted(cell(true))
                          : below(8) == 0                            ? integer(depth - 1)
                                          : number(static_cast<std::int64_t>(below(20)) - 2));
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
    return {text + ")", [this, members](const Row& row) {
                std::vector<Value> values;
                for (const Expression& member : members)
                    values.push_back(member.meaning(row));
                return isAmong(values, [&](std::size_t i) {
                    return orderOf(members.front(), members[i], values.front(), values[i]) == 0;
                });
            }};
}

Expression Generator::compare(const Expression& left, const Expression& right) {
    static const std::array<std::string, 6> kSigns{"==", "!=", "<", "<=", ">", ">="};
    const std::size_t sign = below(kSigns.size());
    return {"(" + left.text + " " + kSigns[sign] + " " + right.text + ")", [this, left, right, sign](const Row& row) {
                const Value a = left.meaning(row);
                const Value b = right.meaning(row);
                if (isNull(a) || isNull(b))
                    return Value();
                const std::optional<int> order = orderOf(left, right, a, b);
                if (!order)
                    return sign < 2 ? Value(sign == 1) : Value();
                const int o = *order;
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

Expression Generator::compareWithDate() {
    const Expression subject = field();
    return {"(" + subject.text + " >= todate('2024-02-29 10:00'))", [subject](const Row& row) {
                const Value cell = subject.meaning(row);
                if (isNull(cell) || !isDate(textOf(cell)))
                    return Value();
                return Value(orderOfCells(textOf(cell), decode("2024-02-29 10:00")) >= 0);
            }};
}

Expression Generator::between(int depth) {
    const bool isText = below(2) == 0;
    const bool isOfCells = m_columns == Columns::Typed && below(2) == 0;
    const auto limit = [&](std::int64_t from, std::size_t count) {
        if (isOfCells && below(3) == 0)
            return field();
        return isText && !isOfCells ? part(depth) : number(static_cast<std::int64_t>(below(count)) + from);
    };
    const Expression subject = isOfCells && below(3) > 0 ? field()
                               : isText && !isOfCells    ? text(depth - 1)
                                                         : integer(depth - 1);
    const Expression low = limit(-1, 6);
    const Expression high = limit(0, 9);
    Expression test = call("between", {subject, low, high}, [this, subject, low, high](const auto& v) {
        const std::optional<int> fromLow = orderOf(subject, low, v[0], v[1]);
        const std::optional<int> fromHigh = orderOf(subject, high, v[0], v[2]);
        return fromLow && fromHigh ? Value(*fromLow >= 0 && *fromHigh <= 0) : Value();
    });
    if (below(2) == 0)
        test.text = "(" + subject.text + " between " + low.text + " and " + high.text + ")";
    return test;
}

Expression Generator::condition(int depth) {
    if (depth > 1 && below(3) == 0)
        return junction(depth);
    if (m_columns == Columns::Typed && below(3) == 0) {
        switch (below(4)) {
        case 0:
            return compareWithDate();
        case 1:
            return compare(field(), field());
        case 2:
            return compare(real(depth - 1), field());
        default:
            return compare(field(), integer(depth - 1));
        }
    }
    switch (below(19)) {
    case 17:
        return call("isluhn", {text(depth - 1)}, [](const auto& v) { return Value(isLuhn(textOf(v[0]))); });
    case 18: {
        const bool isWhole = below(2) == 0;
        return call(isWhole ? "isinteger" : "isdate", {text(depth - 1)}, [isWhole](const auto& v) {
            const std::string text = encode(textOf(v[0]));
            return Value(isWhole ? parseInteger(text).has_value() : parseDate(text).has_value());
        });
    }
    case 14:
        return between(depth);
    case 15: {
        // The signs of the pattern and no others: what "like" makes of * and ? is tested by examples.
        std::string pattern;
        std::string wildcard;
        for (std::size_t i = below(5); i > 0; --i) {
            static constexpr std::string_view kLike = "%_aBk";
            static constexpr std::string_view kWild = "*?aBk";
            const std::size_t which = below(kLike.size());
            pattern += kLike[which];
            wildcard += kWild[which];
        }
        const Expression subject = text(depth - 1);
        Expression test = call("match_string", {subject, quoted(wildcard)},
                               [](const auto& v) { return Value(fits(textOf(v[0]), textOf(v[1]))); });
        test.text = "(" + subject.text + " like '" + pattern + "')";
        return test;
    }
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
        // A pattern that is cut within a character is not a text of the language.
        if (std::ranges::any_of(decode(pattern), [](char32_t c) { return c >= kBytes; }))
            pattern = "*é?";
        return call("match_string", {text(depth - 1), below(4) > 0 ? quoted(pattern) : part(depth)},
                    [](const auto& v) { return Value(fits(textOf(v[0]), textOf(v[1]))); });
    }
    case 10:
        return call("has_control_chars", {text(depth - 1)},
                    [](const auto& v) { return Value(std::ranges::any_of(textOf(v[0]), isControl)); });
    case 11:
        return call("isnumber", {text(depth - 1)},
                    [](const auto& v) { return Value(readNumber(textOf(v[0])).has_value()); });
    case 16: {
        // The tests of readings cover which texts each one reads.
        static const std::array<std::string, 5> kReadings{"integer", "real", "date", "boolean", "real decimal-comma"};
        const std::string& reading = kReadings[below(kReadings.size())];
        return call("fits", {text(depth - 1), quoted(reading)},
                    [known = *forms::Reading::parse(reading)](const auto& v) {
                        return Value(known.fits(encode(textOf(v[0]))));
                    });
    }
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
