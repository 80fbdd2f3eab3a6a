#include "report/Findings.h"

#include "access/PrViewer.h"
#include "support/RunScript.h"
#include "support/SampleViewer.h"

#include <gtest/gtest.h>

#include <string>

namespace tavix {
namespace {

class Findings : public testing::SampleViewer {
  protected:
    static std::string textOf(const std::vector<FindingEntry>& findings) {
        std::string text;
        for (const FindingEntry& entry : findings)
            text += entry.table + "." + entry.field + " " + entry.sentence + "\n";
        return text;
    }
};

TEST_F(Findings, AreReadWithTheirTextsAndKeptApartOnceDismissed) {
    FindingList list = readFindings(*m_viewer);
    EXPECT_TRUE(list.isExamined);
    ASSERT_FALSE(list.open.empty());
    for (std::size_t i = 1; i < list.open.size(); ++i)
        EXPECT_GE(list.open[i - 1].likelihood, list.open[i].likelihood);
    const FindingEntry first = list.open.front();
    EXPECT_EQ(first.title, "Control characters");
    EXPECT_EQ(first.rule, "not ifnull(has_control_chars(`" + first.field + "`), false)");
    EXPECT_EQ(first.watch, "the rule " + first.rule);
    EXPECT_FALSE(first.meaning.empty() || first.advice.empty());
    const FindingEntry last = list.open.back();
    EXPECT_EQ(last.code, "few-rows") << "of another version: it has no texts";
    EXPECT_EQ(last.sentence, "few-rows: 100 rows");
    EXPECT_EQ(last.meaning + last.rule, "");

    ASSERT_TRUE(m_viewer->dismissFinding(first.tableId, first.fieldId, first.code, "ann", "As agreed"));
    const FindingList after = readFieldFindings(*m_viewer, first.fieldId);
    EXPECT_EQ(textOf(after.open), "");
    ASSERT_EQ(textOf(after.dismissed), first.table + "." + first.field + " " + first.sentence + "\n");
    EXPECT_EQ(after.dismissed.front().dismissal->reason, "As agreed");
    EXPECT_EQ(after.dismissed.front().dismissal->user, "ann");
    EXPECT_EQ(readFindings(*m_viewer).open.size() + 1, list.open.size());
    EXPECT_EQ(textOf(readTableFindings(*m_viewer, last.tableId).open).find("few-rows") != std::string::npos, true);
}

TEST_F(Findings, ARunOfAnOlderVersionIsNotExamined) {
    testing::runScript(m_sample.path, "DELETE FROM run_examination");
    ASSERT_TRUE(m_viewer->init(m_sample.path));
    ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob));
    EXPECT_FALSE(readFindings(*m_viewer).isExamined);
}

} // namespace
} // namespace tavix
