#include "access/PrViewer.h"
#include "report/FindingReport.h"
#include "support/RunScript.h"
#include "support/SampleViewer.h"

#include <gtest/gtest.h>

#include <string>

namespace tavix {
namespace {

class FindingReports : public testing::SampleViewer {
  protected:
    static std::string textOf(const std::vector<FindingEntry>& findings) {
        std::string text;
        for (const FindingEntry& entry : findings)
            text += entry.record.place() + " " + entry.sentence + "\n";
        return text;
    }
};

TEST_F(FindingReports, AreReadWithTheirTextsAndKeptApartOnceDismissed) {
    const FindingReport list = reportFindings(*m_viewer, readFindings(*m_viewer));
    EXPECT_TRUE(list.isExamined);
    ASSERT_FALSE(list.open.empty());
    for (std::size_t i = 1; i < list.open.size(); ++i)
        EXPECT_GE(list.open[i - 1].record.likelihood, list.open[i].record.likelihood);
    const FindingEntry first = list.open.front();
    const FindingRecord& record = first.record;
    EXPECT_EQ(first.rule, "not ifnull(has_control_chars(`" + record.field + "`), false)");
    EXPECT_EQ(first.watch, "the rule " + first.rule);
    const FindingEntry last = list.open.back();
    EXPECT_EQ(last.record.code, "few-rows") << "of another version: it has no texts";
    EXPECT_EQ(last.sentence, "Few rows: 100 rows");
    EXPECT_EQ(last.watch + last.rule, "");

    ASSERT_TRUE(m_viewer->dismissFinding(record.tableId, record.fieldId, record.code, "ann", "As agreed"));
    const FindingReport after = reportFindings(*m_viewer, readFieldFindings(*m_viewer, record.fieldId));
    EXPECT_EQ(textOf(after.open), "");
    ASSERT_EQ(textOf(after.dismissed), record.place() + " " + first.sentence + "\n");
    EXPECT_EQ(after.dismissed.front().record.dismissal->reason, "As agreed");
    EXPECT_EQ(after.dismissed.front().record.dismissal->user, "ann");
    EXPECT_EQ(reportFindings(*m_viewer, readFindings(*m_viewer)).open.size() + 1, list.open.size());
}

TEST_F(FindingReports, ARunOfAnOlderVersionIsNotExamined) {
    testing::runScript(m_sample.path, "DELETE FROM run_examination");
    ASSERT_TRUE(m_viewer->init(m_sample.path));
    ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob));
    EXPECT_FALSE(reportFindings(*m_viewer, readFindings(*m_viewer)).isExamined);
}

} // namespace
} // namespace tavix
