#include "blocks/tests/FuzzEntry.h"

#include "blocks/BlockEvaluator.h"
#include "expression/RowEvaluator.h"
#include "expression/tests/RowJudge.h"

#include <array>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace tavix::expression {

namespace {

constexpr std::array<std::string_view, 18> kTexts{"",
                                                  "abc",
                                                  "ABC 12",
                                                  "-1.5e3",
                                                  "é\u212A\u0085",
                                                  "2024-02-29 23:59",
                                                  "\xC3 *?",
                                                  "a'b\\",
                                                  "abcdefg",
                                                  "abcdefgh",
                                                  "abcdefgh1",
                                                  "007",
                                                  "7",
                                                  "9223372036854775808",
                                                  "2024-02-29",
                                                  "1.234,5",
                                                  " 12%",
                                                  "14/01/2001"};

[[noreturn]] void giveUp(std::string_view why) {
    std::cerr << why << '\n';
    std::abort();
}

std::string_view otherOf(std::size_t row) {
    return kTexts[row * 7 % kTexts.size()];
}

void compareEvaluators(const Program& program) {
    std::string bytes;
    std::vector<std::uint32_t> ends;
    std::vector<std::uint8_t> nulls;
    std::vector<std::uint64_t> counts;
    for (std::size_t i = 0; i < kTexts.size() + 1; ++i) {
        const bool isNull = i == kTexts.size();
        bytes += isNull ? std::string_view() : kTexts[i];
        ends.push_back(static_cast<std::uint32_t>(bytes.size()));
        nulls.push_back(isNull ? 1 : 0);
        counts.push_back(i * i);
    }
    // The same texts beside other ones.
    std::string others;
    std::vector<std::uint32_t> otherEnds;
    for (std::size_t i = 0; i < ends.size(); ++i) {
        others += otherOf(i);
        otherEnds.push_back(static_cast<std::uint32_t>(others.size()));
    }
    const std::array<BlockColumn, 3> columns{BlockColumn{bytes, ends, {}, nulls}, BlockColumn{{}, {}, counts, {}},
                                             BlockColumn{others, otherEnds, {}, {}}};
    BlockEvaluator block(program);
    std::vector<bool> passing(ends.size());
    for (const std::uint32_t row : block.passing({ends.size(), columns}))
        passing[row] = true;
    RowJudge rows(program);
    std::size_t failures = 0;
    for (std::size_t i = 0; i < ends.size(); ++i) {
        const std::array<Value, 3> row{nulls[i] != 0 ? Value{} : Value::ofText(kTexts[i]),
                                       Value::ofInteger(static_cast<std::int64_t>(counts[i])),
                                       Value::ofText(otherOf(i))};
        const Verdict verdict = rows.judge(row);
        // Operators over blocks need not make every text, so that a row may stay below the limit there alone.
        if (rows.failure() == "the texts of a row take too much memory")
            return;
        failures += verdict == Verdict::Error ? 1 : 0;
        if (passing[i] != (verdict == Verdict::Passes))
            giveUp("the evaluators do not agree");
    }
    if (failures != block.failures().count)
        giveUp("the evaluators do not count the same failures");
}

} // namespace

namespace {

void fuzzExpression(std::string_view text, Columns columns) {
    const std::array<Field, 3> fields{Field{"Value", Type::Text}, Field{"Count", Type::Integer},
                                      Field{"Other", Type::Text}};
    const Compiled value = compile(text, fields, Wanted::Value, thisMoment(), columns);
    if (value.ok()) {
        const std::array<Value, 3> row{Value::ofText(kTexts[2]), Value::ofInteger(7), Value::ofText(kTexts[3])};
        RowEvaluator evaluator(*value.program);
        const Value result = evaluator.evaluate(row);
        if (!result.isNull() && result.type != value.program->type())
            giveUp("the value is not of the program's type");
    } else if (value.error.message.empty() || value.error.line < 1 || value.error.column < 1) {
        giveUp("an error without words or place");
    }
    const Compiled condition = compile(text, fields, Wanted::Condition, thisMoment(), columns);
    if (condition.ok())
        compareEvaluators(*condition.program);
}

} // namespace

void fuzzExpression(std::string_view text) {
    fuzzExpression(text, Columns::Texts);
    fuzzExpression(text, Columns::Typed);
}

} // namespace tavix::expression
