// When tabs query the repository, and how failures are reported.
#include "access/PrViewer.h"
#include "frame/ui/tests/ViewOverSample.h"
#include "support/RunScript.h"
#include "support/SampleRules.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using testing::ViewOverSample;

class ReportRefresh : public ViewOverSample {
  protected:
    void SetUp() override {
        ASSERT_TRUE(load());
        ASSERT_TRUE(selectField("customers", "city"));
    }
    void breakPatterns() {
        testing::runScript(m_sample.path, "UPDATE distribution_block SET payload = x'00' WHERE kind = 'P'");
    }
    /// The message for a pattern distribution that cannot be read.
    std::string patternMessage() {
        PrViewer& viewer = *m_view->GetTavixDoc().GetViewer();
        (void)viewer.getPatternDist(m_sample.fields.at("customers/city"), {});
        return "Error occurred while retrieving pattern distribution:\n\n" + viewer.getErrorString().str();
    }
    /// Lets deferred messages come.
    static void settle() { QCoreApplication::processEvents(); }
};

// An unexpected message fails the test, so a tab that reads the broken lists too early is noticed.
TEST_F(ReportRefresh, ATabThatIsNotSeenAsksNothing) {
    breakPatterns();
    const std::string message = patternMessage();
    ASSERT_TRUE(selectField("customers", "name"));
    ASSERT_TRUE(setRun(0));
    ASSERT_TRUE(setRun(2));
    for (const RefreshHint hint : {RefreshHint::CollectionsRefreshed, RefreshHint::RunLoaded,
                                   RefreshHint::OptionsChanged, RefreshHint::TaskListLost})
        m_view->Broadcast(hint);
    for (const int index : {CFieldView::Frequency, CFieldView::Percentiles, CFieldView::Outliers, CFieldView::Notes})
        report().SelectTab(index);
    settle();

    m_messages.expectWarn(message);
    report().SelectTab(CFieldView::Patterns);
    settle();
    EXPECT_EQ(0U, m_messages.pending());
    // Once: returning to the tab does not repeat the message.
    report().SelectTab(CFieldView::Frequency);
    report().SelectTab(CFieldView::Patterns);
    settle();
    EXPECT_FALSE(tab().findChild<QLabel*>(QStringLiteral("note"))->text().isEmpty());
}

TEST_F(ReportRefresh, AFailureIsOneMessageForTheViewAndItsWindowsAndLeavesWhatIsShown) {
    report().SelectTab(CFieldView::Patterns);
    const int shown = rows(tab());
    ASSERT_GT(shown, 0);
    CTearOff& window = detach();
    EXPECT_EQ(shown, rows(window.GetView().GetTab(CFieldView::Patterns)));
    breakPatterns();
    m_messages.expectWarn(patternMessage());
    ASSERT_TRUE(setRun(1));
    settle();
    EXPECT_EQ(0U, m_messages.pending());
    EXPECT_EQ(shown, rows(tab()));
    EXPECT_TRUE(grid(tab()).isVisible());
    EXPECT_EQ(shown, rows(window.GetView().GetTab(CFieldView::Patterns)));
}

// All three pages of the navigator and the tab read the table.
TEST_F(ReportRefresh, ARunOfWhichNothingCanBeReadIsOneMessage) {
    testing::runScript(m_sample.path, "PRAGMA foreign_keys=OFF; DROP TABLE run_table; DROP TABLE collection; "
                                      "DROP TABLE redundancy; DROP TABLE run_field");
    (void)m_view->GetTavixDoc().GetViewer()->getDSNList();
    m_messages.expectWarn("The contents of the report cannot be read:\n\n" +
                          m_view->GetTavixDoc().GetViewer()->getErrorString().str());
    ASSERT_TRUE(setRun(0));
    settle();
    EXPECT_EQ(0U, m_messages.pending());
}

// The frame keeps its views, which must not show contents of the previous report.
TEST_F(ReportRefresh, AReportThatIsOpenedAfterAnotherShowsNothingOfIt) {
    report().SelectTab(CFieldView::Patterns);
    ASSERT_GT(rows(tab()), 0);
    breakPatterns();
    const std::string message = patternMessage();
    m_view->OnNew();
    ASSERT_TRUE(load());
    m_messages.expectWarn(message);
    ASSERT_TRUE(selectField("customers", "city"));
    report().SelectTab(CFieldView::Patterns);
    settle();
    EXPECT_EQ(0U, m_messages.pending());
    EXPECT_FALSE(grid(tab()).isVisible());
    EXPECT_FALSE(tab().findChild<QLabel*>(QStringLiteral("note"))->text().isEmpty());
}

TEST_F(ReportRefresh, MetricsThatCannotBeReadAreTold) {
    ASSERT_TRUE(selectTable("customers"));
    ASSERT_EQ(7, rows(tab()));
    testing::runScript(m_sample.path, "ALTER TABLE run_field RENAME COLUMN null_count TO renamed");
    (void)m_view->GetTavixDoc().GetViewer()->getFieldList(m_sample.tables.at("customers"));
    const std::string message = "Error occurred while retrieving the standard metrics:\n\n" +
                                m_view->GetTavixDoc().GetViewer()->getErrorString().str();
    m_messages.expectWarn(message);
    m_view->Broadcast(RefreshHint::OptionsChanged);
    settle();
    EXPECT_EQ(0U, m_messages.pending());
    EXPECT_EQ(7, rows(tab()));
    EXPECT_TRUE(grid(tab()).isVisible());
}

TEST_F(ReportRefresh, EachTabFillsAgainOnItsHintsAlone) {
    using enum RefreshHint;
    const RefreshHint all[] = {CollectionsRefreshed, OptionsChanged, TaskListLost,
                               HistoryDeletion,      NotesChanged,   HistoryDeleted};
    // Each fill shows the wait cursor once.
    const auto refilling = [&] {
        std::vector<RefreshHint> hints;
        for (const RefreshHint hint : all) {
            const int before = m_messages.busyCount();
            m_view->Broadcast(hint);
            if (m_messages.busyCount() != before)
                hints.push_back(hint);
        }
        return hints;
    };
    const auto ofField = [&](int index) {
        report().SelectTab(index);
        return refilling();
    };
    EXPECT_THAT(ofField(CFieldView::ColumnProfiling), ElementsAre(TaskListLost));
    EXPECT_THAT(ofField(CFieldView::Frequency), ElementsAre(OptionsChanged, TaskListLost));
    EXPECT_THAT(ofField(CFieldView::Patterns), ElementsAre(OptionsChanged, TaskListLost));
    EXPECT_THAT(ofField(CFieldView::Percentiles), ElementsAre(TaskListLost));
    EXPECT_THAT(ofField(CFieldView::Outliers), ElementsAre(TaskListLost));
    EXPECT_THAT(ofField(CFieldView::KeyAnalysis), ElementsAre(OptionsChanged));
    EXPECT_THAT(ofField(CFieldView::Notes), ElementsAre(OptionsChanged, NotesChanged));
    ASSERT_TRUE(selectTable("customers"));
    EXPECT_THAT(refilling(), ElementsAre(CollectionsRefreshed, OptionsChanged, HistoryDeleted));
    report().SelectTab(CTableView::Visualizations);
    EXPECT_THAT(refilling(), ElementsAre(OptionsChanged));
    report().SelectTab(CTableView::CustomMetrics);
    EXPECT_THAT(refilling(), ElementsAre(OptionsChanged, HistoryDeleted));
}

// A history lists other runs. A deleted run must disappear from it, in detached windows too.
TEST_F(ReportRefresh, DeletedRunsLeaveTheHistoriesAndTheFieldsOfCollections) {
    testing::addRules(m_sample);
    ASSERT_TRUE(selectTable("customers"));
    const auto history = [](CReportView& view) {
        const bool isMetric = view.GetCurrentTab() == CTableView::CustomMetrics;
        const QAbstractItemModel& runs =
            *list(view.GetTab(view.GetCurrentTab()), isMetric ? "History of the metric" : "History of the rule")
                 .model();
        std::string values;
        for (int row = 0; row < runs.rowCount(); ++row)
            values += toUtf8(runs.index(row, 2).data().toString()) + ' ';
        return values;
    };
    report().SelectTab(CTableView::BusinessRules);
    CTearOff& window = detach();
    report().SelectTab(CTableView::CustomMetrics);
    list(tab(), "Custom Metrics").SelectRow(1);
    EXPECT_EQ("22 21 20 ", history(report()));
    EXPECT_EQ("12 11 10 ", history(window.GetView()));
    // A field of a collection has the metrics of the latest run that has the field; here that run is deleted.
    ASSERT_TRUE(m_view->GetTavixDoc().GetViewer()->createGlobalCollFieldMapping(
        m_sample.collections.at("Amounts"), m_sample.fields.at("airports/latitude")));
    testing::runScript(m_sample.path, fmt::format("DELETE FROM run_field WHERE field = {} AND run <> {}",
                                                  m_sample.fields.at("airports/latitude"), m_sample.salesRuns[0]));
    selectCollection(0);
    ASSERT_TRUE(m_view->SelectField(m_sample.fields.at("airports/latitude")));
    EXPECT_NE(std::string::npos, header(report()).find("real")) << header(report());
    CTearOff& ofField = detach();

    const int bound = m_sample.salesRuns[0];
    m_view->GetTavixDoc().DeleteHistory([bound](HistoryDeletion& deletion) {
        deletion.bound = bound;
        return true;
    });
    EXPECT_EQ("12 11 ", history(window.GetView()));
    for (CReportView* view : {&report(), &ofField.GetView()})
        EXPECT_FALSE(view->GetSubject().field) << header(*view);
    navigator().ShowPage(NavigatorPage::Tables);
    ASSERT_TRUE(selectTable("customers"));
    report().SelectTab(CTableView::CustomMetrics);
    list(tab(), "Custom Metrics").SelectRow(1);
    EXPECT_EQ("22 21 ", history(report()));
}

TEST_F(ReportRefresh, WhatIsShownIsReadOnceWhenSomethingElseIsSelectedOrLoaded) {
    const auto readings = [this](const auto& action) {
        const int before = m_messages.busyCount();
        action();
        return m_messages.busyCount() - before;
    };
    report().SelectTab(CFieldView::Outliers);
    EXPECT_EQ(1, readings([this] { ASSERT_TRUE(m_view->SelectField(m_sample.fields.at("customers/balance"))); }));
    EXPECT_EQ("9000", cell(tab(), 0, 1));
    EXPECT_EQ(0, readings([this] { ASSERT_TRUE(m_view->SelectField(m_sample.fields.at("customers/balance"))); }));
    EXPECT_EQ(1, readings([this] { m_view->Broadcast(RefreshHint::RunLoaded); }));
    // A view of the other kind replaces it.
    EXPECT_EQ(1, readings([this] { selectCollection(0); }));
    EXPECT_EQ(2, rows(tab()));
}

TEST_F(ReportRefresh, ARunWithoutTheFieldsTableLeavesNothingOfItOnTheScreen) {
    ASSERT_TRUE(selectField("late orders", "days"));
    ASSERT_TRUE(setRun(0));
    EXPECT_NE(ReportSelection::Kind::Table, m_view->GetSelection().kind);
    EXPECT_TRUE(isEmptyViewShown());
    ASSERT_TRUE(selectField("customers", "city"));
    ASSERT_TRUE(setRun(2));
    EXPECT_EQ("city  customers  ·  text  ·  1,000 records  ·  150 distinct values  ·  7 nulls", header(report()));
}

} // namespace
} // namespace tavix
