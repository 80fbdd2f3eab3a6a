#include "report/RunList.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

TEST(RunList, RunsAreNumberedFromTheEarliestAndShowTheChangeOfTheirRecords) {
    const std::locale locale = std::locale::classic();
    const std::vector<RunRow> rows = listRuns({{1, 46000.0, "First\nload", 2, 1000},
                                               {7, 46002.0, "", 3, 950},
                                               {2, 46001.0, "Nightly", 2, 1000},
                                               {9, 46003.0, "Empty before", 3, 1'000'950},
                                               {8, 46002.5, "Empty", 3, 0}},
                                              locale);
    std::vector<std::string> lines;
    for (const RunRow& row : rows)
        lines.push_back(row.run + "|" + row.description + "|" + row.tables + "|" + row.records + "|" + row.change);
    EXPECT_THAT(lines, ::testing::ElementsAre("5 (id 9)|Empty before|3|1,000,950|+1,000,950",
                                              "4 (id 8)|Empty|3|0|-950 (-100.00 %)", "3 (id 7)||3|950|-50 (-5.00 %)",
                                              "2|Nightly|2|1,000|no change", "1|First load|2|1,000|"));
    EXPECT_EQ("2  ·  " + rows[3].date + "  ·  Nightly", rows[3].Label());
    EXPECT_EQ("3 (id 7)  ·  " + rows[2].date, rows[2].Label());
}

} // namespace
} // namespace tavix
