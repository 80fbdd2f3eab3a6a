#include "access/PrViewDisplayMessage.h"
#include "base/GenException.h"
#include "report/FieldRecords.h"
#include "report/ReportTables.h"
#include "tabs/DrillThroughModel.h"
#include "tabs/tests/SampleDocument.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

class Progress final : public PrViewDisplayMessage {
  public:
    bool progress(std::string_view, std::int64_t, std::int64_t) override { return true; }
};

class DrillThroughModel : public testing::SampleDocument {
  protected:
    ReportSubject subject(const std::string& table, const std::string& field) {
        ReportSubject subject;
        subject.selection.kind = ReportSelection::Kind::Table;
        subject.selection.table.id = m_sample.tables.at(table);
        subject.selection.fieldId = m_sample.fields.at(table + "/" + field);
        subject.table = *findTable(*m_document.GetViewer(), m_sample.tables.at(table), "Warehouse");
        FieldRecords records;
        subject.field = **records.Find(*m_document.GetViewer(), subject.selection);
        return subject;
    }
    /// The texts of the window: "file name | heading | rows in the run".
    static std::string wordsOf(const DrillTask& task) {
        const DrillRequest& request = task.request;
        return request.context + " | " + request.subject + " | " +
               (request.inRun ? std::to_string(*request.inRun) : "unknown");
    }
    DrillOutcome open(const std::function<DrillCursor(PrViewer&)>& openCursor) {
        DrillTask task;
        task.request.subject = "name: Ada";
        task.open = [&](PrViewer& viewer, PrViewDisplayMessage&) { return openCursor(viewer); };
        return openDrill(
            m_document, task, m_progress,
            [this](DrillRequest request) {
                m_shown.push_back(request.subject);
                if (m_failsToShow)
                    throw GenException("no room");
            },
            [this] { return m_isCancelled; });
    }
    static DrillCursor someRows(PrViewer& viewer) { return viewer.getAlerts(); }
    static DrillCursor noCursor(PrViewer&) { return ProfileCursorHandle(); }

    Progress m_progress;
    std::vector<std::string> m_shown;
    bool m_failsToShow = false;
    bool m_isCancelled = false;
};

TEST_F(DrillThroughModel, TheWindowSaysWhichRowsTheseAre) {
    PrViewer& viewer = *m_document.GetViewer();
    const ReportSubject name = subject("customers", "name");
    const auto ofValue = [&](const KvbString& value) {
        return wordsOf(drillIntoValue(viewer, name, value, DrillOrigin::Frequency));
    };
    EXPECT_EQ("name | name: \u201CAda\u201D | 400", ofValue("Ada"));
    EXPECT_EQ("name | name: (null value) | 228", ofValue({}));
    EXPECT_EQ("since | since: pattern \u201C9999-99-99\u201D | 999",
              wordsOf(drillIntoPattern(viewer, subject("customers", "since"), "9999-99-99")));
    EXPECT_EQ("name | name: 2 values do not fit | 12",
              wordsOf(drillIntoCondition(name, "`Value` = 'x'", "2 values do not fit", 12)));
    EXPECT_EQ("note | note: Control characters | unknown",
              wordsOf(drillIntoCondition(subject("orders", "note"), "`Value` = 'x'", "Control characters", 30)))
        << "of a sample";
    const std::string longValue(5000, 'x');
    EXPECT_LT(ofValue(KvbString(longValue)).size(), 300U);
}

// The source of a sampled table has more rows than the run counted, which does not mean that it has changed.
TEST_F(DrillThroughModel, ASampleIsNotComparedWithItsSource) {
    const ReportSubject note = subject("orders", "note");
    ASSERT_TRUE(note.table.isSample);
    EXPECT_EQ("note | note: \u201C=1+1\u201D | unknown",
              wordsOf(drillIntoValue(*m_document.GetViewer(), note, "=1+1", DrillOrigin::Frequency)));
}

TEST_F(DrillThroughModel, ARuleSaysHowManyOfItsRowsWereKept) {
    BusinessRuleRows::Rule rule;
    rule.failed = rule.logged = 12;
    EXPECT_EQ("Has a city | Has a city | 12", wordsOf(drillIntoRule(rule, "Has a city")));
    rule.failed = 1'234'567;
    EXPECT_EQ("Has a city | Has a city: the first 12 of 1,234,567 rows | 12",
              wordsOf(drillIntoRule(rule, "Has a city")));
    EXPECT_EQ(DrillSourceMode::RuleLog, drillIntoRule(rule, "").request.mode);
}

TEST_F(DrillThroughModel, RowsThatOpenAreShown) {
    EXPECT_TRUE(canDrillThrough(m_document));
    EXPECT_EQ(DrillOutcome::Opened, open(someRows));
    EXPECT_EQ(std::vector<std::string>{"name: Ada"}, m_shown);
    m_document.Clear();
    EXPECT_FALSE(canDrillThrough(m_document));
}

TEST_F(DrillThroughModel, AFailureIsShownWithItsReason) {
    const auto expect = [this](const std::string& reason) {
        m_messages.expectWarn("Drill through information is unavailable for this item.\n\n" + reason, "Error");
    };
    expect("disk gone");
    EXPECT_EQ(DrillOutcome::Ended, open([](PrViewer&) -> DrillCursor { throw GenException("disk gone"); }));
    EXPECT_EQ(0U, m_messages.pending());

    (void)m_document.GetViewer()->getBusinessRuleRowLog(-7, 0, true);
    const std::string reason = m_document.GetViewer()->getErrorString().str();
    ASSERT_NE("", reason);
    expect(reason);
    EXPECT_EQ(DrillOutcome::Ended,
              open([](PrViewer& viewer) { return DrillCursor(viewer.getBusinessRuleRowLog(-7, 0, true)); }));
    EXPECT_TRUE(m_shown.empty());

    m_failsToShow = true;
    expect("no room");
    EXPECT_EQ(DrillOutcome::Ended, open(someRows));
}

TEST_F(DrillThroughModel, TheUserKnowsThatHeCancelledOrClosedTheReport) {
    m_isCancelled = true;
    EXPECT_EQ(DrillOutcome::Ended, open(noCursor));
    EXPECT_EQ(DrillOutcome::Opened, open(someRows)) << "with what was read";
    m_isCancelled = false;
    EXPECT_EQ(DrillOutcome::Ended, open([this](PrViewer& viewer) {
                  DrillCursor rows = someRows(viewer);
                  m_document.Clear();
                  return rows;
              }));
}

TEST_F(DrillThroughModel, ADeclinedLoginIsNamed) {
    SourceLogins& logins = m_document.GetSourceLogins();
    logins.SetAsk([](const SourceLogins::Question&) { return std::nullopt; });
    m_messages.expectWarn(drillDeclined("shop"), "Error");
    EXPECT_EQ(DrillOutcome::Ended, open([&logins](PrViewer& viewer) {
                  (void)logins.ForSession()("shop", "refused");
                  return noCursor(viewer);
              }));
}

TEST_F(DrillThroughModel, WithoutAMissingFileNobodyIsAsked) {
    const auto ask = [](const MissingFile&) -> std::optional<KvbString> {
        ADD_FAILURE() << "asked";
        return std::nullopt;
    };
    EXPECT_FALSE(relocateDrillFile(m_document, ask));
    m_document.Clear();
    EXPECT_FALSE(relocateDrillFile(m_document, ask));
}

} // namespace
} // namespace tavix
