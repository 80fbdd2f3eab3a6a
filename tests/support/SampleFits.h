#pragma once

#include "support/RunScript.h"
#include "support/SampleRepository.h"

#include <fmt/format.h>

#include <string>

namespace tavix::testing {

/// Makes customers.balance a field of texts of which `rows` of 1,000 fit the reading, with figures over these, from
/// that run of "Sales" on (counted from 0).
inline void makeFits(const SampleRepository& sample, int rows, const std::string& reading, std::size_t firstRun = 0) {
    const int field = sample.fields.at("customers/balance");
    for (std::size_t run = firstRun; run < sample.salesRuns.size(); ++run)
        runScript(
            sample.path,
            fmt::format("UPDATE run_field SET type_code = 'S', actual_type = 'text' WHERE run = {0} AND field = {1};"
                        "INSERT OR IGNORE INTO run_examination VALUES({0}, 2);"
                        "INSERT INTO type_breakdown VALUES({0}, {1}, 4, 1000, '{2}', 3, {3}, '', 1);"
                        "INSERT INTO type_form VALUES({0}, {1}, 0, '{2}', 3, {3}, '0.1'),"
                        "({0}, {1}, 1, 'text', 1, 1000 - {3}, '1e+20');",
                        sample.salesRuns[run], field, reading, rows));
}

} // namespace tavix::testing
