#include "report/AlertEntryText.h"

#include <gtest/gtest.h>

#include <vector>

namespace tavix {
namespace {

AlertState stateOf(AlertSubject subject, const AlertRule& rule) {
    AlertState state;
    state.table = "sales";
    state.subject = subject;
    state.input = "net: price";
    state.metric = "Null Count";
    state.rule = rule;
    state.sentence = state.description = "the condition";
    return state;
}

AlertRule change(AlertReference reference, int runs) {
    AlertRule rule{AlertComparison::ChangedByPercent, false, 12.5};
    rule.runs = runs;
    rule.reference = reference;
    return rule;
}

TEST(AlertEntryText, SaysWhatTheJobFileWouldSay) {
    using enum AlertSubject;
    EXPECT_EQ(alertEntryText(stateOf(StandardMetric, {AlertComparison::Less, false, 0.1})),
              "field: 'net: price', metric: Null Count, min: 0.1");
    EXPECT_EQ(alertEntryText(stateOf(CustomMetric, {AlertComparison::Equal, false, 3})),
              "custom metric: 'net: price', not: 3");
    AlertRule percent{AlertComparison::Inside, true, -1, 2};
    percent.level = AlertLevel::Error;
    EXPECT_EQ(alertEntryText(stateOf(BusinessRule, percent)),
              "rule: 'net: price', figure: percent, not in: [-1, 2], level: error");
    EXPECT_EQ(alertEntryText(stateOf(StandardMetric, change(AlertReference::Mean, 1))),
              "field: 'net: price', metric: Null Count, change: 12.5 %");
    EXPECT_EQ(alertEntryText(stateOf(StandardMetric, change(AlertReference::Median, 5))),
              "field: 'net: price', metric: Null Count, change: 12.5 %, runs: 5, against: median");
    EXPECT_EQ(alertEntryText(stateOf(StandardMetric, change(AlertReference::SameWeekday, 1))),
              "field: 'net: price', metric: Null Count, change: 12.5 %, against: weekday");
    AlertState records = stateOf(StandardMetric, {AlertComparison::Outside, false, 2, 4});
    records.isOfRecords = true;
    records.description = "As many: as usual";
    EXPECT_EQ(alertEntryText(records), "metric: Records, range: [2, 4], description: 'As many: as usual'");
}

TEST(AlertEntryText, ListsAlertsTableByTableWithTheirAuthors) {
    std::vector<AlertState> alerts(4, stateOf(AlertSubject::CustomMetric, {}));
    alerts[0].isOfUser = true;
    alerts[0].author = "Anna\n- {evil: 1}";
    alerts[0].created = 46348.625; // 2026-11-22 15:00
    alerts[1].table = "# parcels";
    alerts[2].rule->value1 = 7;
    alerts[3].rule.reset(); // cannot be written
    EXPECT_EQ(alertEntriesText(alerts), "tables:\n"
                                        "  - name: sales\n"
                                        "    alerts:\n"
                                        "      # Made by Anna\\n- {evil: 1}, 2026-11-22\n"
                                        "      - {custom metric: 'net: price', max: 0}\n"
                                        "      - {custom metric: 'net: price', max: 7}\n"
                                        "  - name: '# parcels'\n"
                                        "    alerts:\n"
                                        "      - {custom metric: 'net: price', max: 0}\n");
}

} // namespace
} // namespace tavix
