#include "nav/AlertDots.h"
#include "nav/TreeContents.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

AlertState alertOn(int table, int field, AlertLevel level, AlertVerdict::State state = AlertVerdict::State::Raised) {
    AlertState alert;
    alert.tableId = table;
    alert.fieldId = field;
    alert.subject = field == -1 ? AlertSubject::BusinessRule : AlertSubject::StandardMetric;
    alert.rule = AlertRule{.level = level};
    alert.verdict.state = state;
    return alert;
}

TEST(AlertDots, ATableCountsItsFieldsAndRulesAndAFieldItself) {
    AlertState ofRecords = alertOn(1, 10, AlertLevel::Error);
    ofRecords.isOfRecords = true;
    const std::vector<AlertState> alerts = {alertOn(1, 10, AlertLevel::Warning), alertOn(1, 11, AlertLevel::Error),
                                            alertOn(1, -1, AlertLevel::Warning), ofRecords,
                                            alertOn(2, 20, AlertLevel::Error, AlertVerdict::State::Quiet)};
    const AlertDots dots{alerts};
    const auto of = [&dots](TreeNodeKind kind, int id) {
        TreeNode node;
        node.kind = kind;
        node.id = id;
        return dots.Of(node);
    };
    EXPECT_EQ((AlertCounts{.errors = 2, .warnings = 2}), of(TreeNodeKind::Table, 1));
    EXPECT_EQ((AlertCounts{.quiet = 1}), of(TreeNodeKind::Table, 2));
    EXPECT_EQ((AlertCounts{.warnings = 1}), of(TreeNodeKind::Field, 10)) << "the records are those of the table";
    EXPECT_EQ((AlertCounts{.errors = 1}), of(TreeNodeKind::Field, 11));
    EXPECT_EQ(AlertCounts{}, of(TreeNodeKind::Field, 1));
    EXPECT_EQ(AlertCounts{}, of(TreeNodeKind::DataSource, 1)) << "ids are of different things";
    EXPECT_EQ(AlertCounts{}, of(TreeNodeKind::CollectionField, 10));
}

} // namespace
} // namespace tavix
