#include "frame/ViewModel.h"
#include "support/RunScript.h"
#include "support/SampleViewer.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

using testing::SampleViewer;

ReportSelection selection(ReportSelection::Kind kind, int fieldId = -1) {
    ReportSelection selected;
    selected.kind = kind;
    selected.fieldId = fieldId;
    return selected;
}

TEST(ViewModel, ThePaneFollowsTheSelection) {
    using Kind = ReportSelection::Kind;
    ViewModel model;
    EXPECT_EQ(ReportPaneKind::Empty, model.GetPaneKind());
    for (const Kind kind : {Kind::Table, Kind::Collection}) {
        model.Select(NavigatorPage::Tables, selection(kind));
        EXPECT_EQ(ReportPaneKind::Table, model.GetPaneKind());
        model.Select(NavigatorPage::Tables, selection(kind, 7));
        EXPECT_EQ(ReportPaneKind::Field, model.GetPaneKind());
        EXPECT_EQ(7, model.GetSelection().fieldId);
    }
    model.Select(NavigatorPage::Tables, selection(Kind::Nothing, 7));
    EXPECT_EQ(ReportPaneKind::Empty, model.GetPaneKind());
}

TEST(ViewModel, AnEmptyPaneSaysWhy) {
    ViewModel model;
    EXPECT_EQ((EmptyPaneText{"No report is open", ""}), model.GetEmptyText(false, false));
    EXPECT_EQ("No table selected", model.GetEmptyText(true, false).title);
    EXPECT_EQ("This report has no tables", model.GetEmptyText(true, true).title);
    model.Select(NavigatorPage::Collections, {});
    EXPECT_EQ((EmptyPaneText{"No report is open", ""}), model.GetEmptyText(false, true));
    EXPECT_EQ("No collection selected", model.GetEmptyText(true, false).title);
    EXPECT_EQ("There are no collections", model.GetEmptyText(true, true).title);
    model.Select(NavigatorPage::Analyses, {});
    EXPECT_EQ((EmptyPaneText{"No results to show", "This version lists the analyses but cannot show their results."}),
              model.GetEmptyText(true, false));
    EXPECT_EQ("There are no redundant data analyses", model.GetEmptyText(true, true).title);
}

TEST(ViewModel, TwoCommandsDependOnThePage) {
    ViewModel model;
    for (const NavigatorPage page : {NavigatorPage::Tables, NavigatorPage::Collections, NavigatorPage::Analyses}) {
        model.Select(page, {});
        EXPECT_EQ(page == NavigatorPage::Collections, model.CanRefreshCollections());
        EXPECT_EQ(page != NavigatorPage::Collections, model.CanToggleTableInformation());
    }
}

TEST(ViewModel, ConnectionTypesAreExact) {
    EXPECT_EQ(0, dataSourceMode("ODBC"));
    EXPECT_EQ(4, dataSourceMode("KVTK"));
    for (const char* other : {"", "odbc", "kvtk", "ODBC "})
        EXPECT_EQ(std::nullopt, dataSourceMode(other)) << other;
}

TEST_F(SampleViewer, ARunHasTablesUnlessTheyAreGoneOrUnreadable) {
    EXPECT_TRUE(hasTables(*m_viewer));
    testing::runScript(m_sample.path, "PRAGMA foreign_keys=OFF; DELETE FROM run_table");
    EXPECT_FALSE(hasTables(*m_viewer));
    testing::runScript(m_sample.path, "PRAGMA foreign_keys=OFF; DROP TABLE run_table");
    EXPECT_FALSE(hasTables(*m_viewer));
}

} // namespace
} // namespace tavix
