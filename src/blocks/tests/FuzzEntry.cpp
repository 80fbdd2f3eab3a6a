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

constexpr std::array<std::string_view, 11> kTexts{
    "",        "abc",   "ABC 12",  "-1.5e3",   "é\u212A\u0085", "2024-02-29 23:59",
    "\xC3 *?", "a'b\\", "abcdefg", "abcdefgh", "abcdefgh1"};

[[noreturn]] void giveUp(std::string_view why) {
    std::cerr << why << '\n';
    std::abort();
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
    const std::array<BlockColumn, 2> columns{BlockColumn{bytes, ends, {}, nulls}, BlockColumn{{}, {}, counts, {}}};
    BlockEvaluator block(program);
    std::vector<bool> passing(ends.size());
    for (const std::uint32_t row : block.passing({ends.size(), columns}))
        passing[row] = true;
    RowJudge rows(program);
    std::size_t failures = 0;
    for (std::size_t i = 0; i < ends.size(); ++i) {
        const std::array<Value, 2> row{nulls[i] != 0 ? Value{} : Value::ofText(kTexts[i]),
                                       Value::ofInteger(static_cast<std::int64_t>(counts[i]))};
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

void fuzzExpression(std::string_view text) {
    const std::array<Field, 2> fields{Field{"Value", Type::Text}, Field{"Count", Type::Integer}};
    const Compiled value = compile(text, fields, Wanted::Value);
    if (value.ok()) {
        const std::array<Value, 2> row{Value::ofText(kTexts[2]), Value::ofInteger(7)};
        RowEvaluator evaluator(*value.program);
        const Value result = evaluator.evaluate(row);
        if (!result.isNull() && result.type != value.program->type())
            giveUp("the value is not of the program's type");
    } else if (value.error.message.empty() || value.error.line < 1 || value.error.column < 1) {
        giveUp("an error without words or place");
    }
    const Compiled condition = compile(text, fields, Wanted::Condition);
    if (condition.ok())
        compareEvaluators(*condition.program);
}

} // namespace tavix::expression
