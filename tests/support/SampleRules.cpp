#include "support/SampleRules.h"

#include "support/RunScript.h"
#include "support/SampleRepository.h"

#include <fmt/format.h>

#include <map>

namespace tavix::testing {

namespace {

const std::map<std::string, int> kIds = {
    {"Spread", 11}, {"Margin", 12}, {"Name is known", 21}, {"Balance is positive", 22}};

} // namespace

void addRules(const SampleRepository& sample) {
    const int table = sample.tables.at("customers");
    std::string script = fmt::format(
        "INSERT INTO custom_metric(id, table_id, name) VALUES(11, {0}, 'Spread'), (12, {0}, 'Margin');"
        "INSERT INTO business_rule(id, table_id, name) VALUES(21, {0}, 'Name is known'), (22, {0}, 'Balance is "
        "positive');",
        table);
    int number = 0;
    for (const int run : sample.salesRuns) {
        for (int position = 0; position < 2; ++position) {
            script += fmt::format("INSERT INTO run_custom_metric(run, table_id, position, metric, output_name, kind, "
                                  "figure, expression, value, used_rows) VALUES({}, {}, {}, {}, 'out', 'rows', 'sum', "
                                  "'`balance`', {}, 1000);",
                                  run, table, position, 11 + position, 10 * (position + 1) + number);
            script += fmt::format("INSERT INTO run_rule(run, table_id, position, rule, condition, checked_rows, "
                                  "failed_rows, error_rows, logged_rows, log_columns, key_columns) VALUES({}, {}, {}, "
                                  "{}, '`balance` > 0', 1000, {}, 0, 0, '[]', 0);",
                                  run, table, position, 21 + position, 10 * (position + 1) + number);
        }
        ++number;
    }
    runScript(sample.path, script);
}

int ruleId(const std::string& name) {
    return kIds.at(name);
}

} // namespace tavix::testing
