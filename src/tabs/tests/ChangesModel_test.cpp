#include "access/PrViewDisplayMessage.h"
#include "report/FieldRecords.h"
#include "report/ReportTables.h"
#include "support/RowsText.h"
#include "support/RunScript.h"
#include "tabs/ChangesModel.h"
#include "tabs/tests/SampleDocument.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::StartsWith;

/// Stops at the report of that number; never for -1.
class Sink final : public PrViewDisplayMessage {
  public:
    explicit Sink(int stopAt = -1) : m_stopAt(stopAt) {}
    bool progress(std::string_view text, std::int64_t done, std::int64_t total) override {
        EXPECT_THAT(std::string(text), StartsWith("Comparing two runs of "));
        EXPECT_LE(done, total);
        return ++m_reports != m_stopAt;
    }

  private:
    int m_stopAt;
    int m_reports = 0;
};

class ChangesOfSample : public testing::SampleDocument {
  protected:
    void selectTable(const std::string& name) {
        m_subject = {};
        m_subject.selection.kind = ReportSelection::Kind::Table;
        m_subject.selection.table.id = m_sample.tables.at(name);
        m_subject.table = *findTable(*m_document.GetViewer(), m_sample.tables.at(name), "Warehouse");
    }
    void selectField(const std::string& table, const std::string& name) {
        selectTable(table);
        m_subject.selection.fieldId = m_sample.fields.at(table + "/" + name);
        FieldRecords records;
        m_subject.field = **records.Find(*m_document.GetViewer(), m_subject.selection);
    }
    /// The rows; the reason why there are none; the error.
    std::vector<std::string> filled(ChangesModel& model, ChangeRows& rows, int stopAt = -1) {
        model.ReadRuns();
        if (std::string obstacle = model.GetObstacle(); !obstacle.empty())
            return {obstacle};
        Sink sink(stopAt);
        if (!model.Fill(sink))
            return {rows.GetErrorText()};
        return rows.GetRowCount() > 0 ? linesOf(rows) : std::vector{rows.GetEmptyText()};
    }

    ReportSubject m_subject;
    TableChangeRows m_tableRows;
    FieldChangeRows m_fieldRows;
    ChangesModel m_ofTable{m_document, m_subject, m_tableRows};
    ChangesModel m_ofField{m_document, m_subject, m_fieldRows};
};

TEST_F(ChangesOfSample, ATableListsItsChangesAndKnowsTheirFields) {
    selectTable("customers");
    EXPECT_THAT(
        filled(m_ofTable, m_tableRows),
        ElementsAre("name<1>|Nulls|>22.90 %|>22.80 %|-0.10 points, -1 rows|>0.10[0.00]",
                    "balance<1>|Values|>|>|2 moved: \"0.1\" 19.80 → 19.70 %, \"12.3456789\" 50.10 → 50.20 %|>0.10"
                    "[0.00]",
                    "balance<1>|Patterns|>|>|2 moved: \"9.9\" 19.80 → 19.70 %, \"99.9999999\" 50.10 → 50.20 "
                    "%|>0.10[0.00]"));
    EXPECT_EQ("14 changes", m_ofTable.GetSummary());
    EXPECT_EQ("Field:160|What:180|>Before:100|>After:100|Change:260|>Share{% of the rows}:90", headingsOf(m_tableRows));
    EXPECT_EQ(m_sample.fields.at("customers/name"), m_tableRows.GetFieldId(0));
}

TEST_F(ChangesOfSample, AFieldListsItsMetricsThenItsValuesAndPatternsWithBars) {
    selectField("customers", "name");
    EXPECT_THAT(filled(m_ofField, m_fieldRows),
                ElementsAre("Metric|Null Count|>229|>228|>-1||>0.10", "Metric|Non-null Count|>771|>772|>+1||>0.10",
                            "Metric|Percent Null|>22.9|>22.8|>-0.1|[0.23, 0.23]|>0.10",
                            "Moved value|(null value)~|>229|>228|>22.90 → 22.80 %|[0.23, 0.23]|>0.10",
                            "Moved value|Grace|>301|>302|>30.10 → 30.20 %|[0.30, 0.30]|>0.10",
                            "Moved pattern|Aaaaa|>301|>302|>39.04 → 39.12 %|[0.39, 0.39]|>0.06"));
    EXPECT_EQ("2 moved values, 1 moved pattern", m_ofField.GetSummary());
    EXPECT_EQ("What:120|Item:180|>Before:100|>After:100|>Change:140|Both Runs:140|>Share{% of the rows}:90",
              headingsOf(m_fieldRows));
}

TEST_F(ChangesOfSample, ACollectionListsTheFieldsThatItHasWithTheirTables) {
    m_subject.selection.kind = ReportSelection::Kind::Collection;
    m_subject.selection.id = m_sample.collections.at("Amounts");
    EXPECT_THAT(filled(m_ofTable, m_tableRows), Contains(StartsWith("customers.balance<1>|Values|")));
}

TEST_F(ChangesOfSample, TheRunsAreTheShownOneAndTheOneBeforeUntilTheUserChooses) {
    const auto& runs = m_sample.salesRuns;
    selectTable("customers");
    m_ofTable.ReadRuns();
    EXPECT_EQ((ComparedRuns{runs[1], runs[2]}), m_ofTable.GetPair());
    // The first run, and the one that is shown.
    m_ofTable.Choose(2, 0);
    EXPECT_TRUE(m_ofTable.IsOutdated());
    EXPECT_EQ((ComparedRuns{runs[0], -1}), m_document.GetComparedRuns());
    m_ofTable.ReadRuns();
    EXPECT_FALSE(m_ofTable.IsOutdated());
    ASSERT_TRUE(m_document.SetCurrentJob(runs[1]));
    m_ofTable.ReadRuns();
    EXPECT_EQ((ComparedRuns{runs[0], runs[1]}), m_ofTable.GetPair());
    ASSERT_TRUE(m_document.SetCurrentJob(runs[0]));
    EXPECT_THAT(filled(m_ofTable, m_tableRows),
                ElementsAre("Both are the same run. Choose another one to see what has changed."));
    m_document.SetComparedRuns({});
    EXPECT_THAT(filled(m_ofTable, m_tableRows),
                ElementsAre("Run 1 is the first one, so there is no earlier run to compare it with."));
    m_ofTable.Choose(9, 0);
    EXPECT_EQ((ComparedRuns{-1, runs[2]}), m_document.GetComparedRuns());
    m_document.SetComparedRuns({runs[2], 12345});
    m_ofTable.ReadRuns();
    EXPECT_EQ((ComparedRuns{runs[2], runs[0]}), m_ofTable.GetPair()) << "a run that was deleted";
    ASSERT_TRUE(m_document.OpenReport(m_sample.path, m_sample.inventoryJob));
    EXPECT_EQ(ComparedRuns(), m_document.GetComparedRuns()) << "of another report";
}

TEST_F(ChangesOfSample, AnEmptyListSaysWhy) {
    selectTable("late orders");
    EXPECT_THAT(filled(m_ofTable, m_tableRows), ElementsAre("No difference between runs 2 and 3."));
    selectField("customers", "name");
    EXPECT_THAT(filled(m_ofField, m_fieldRows, 1),
                ElementsAre("The comparison was stopped. Choose a run above to start it again."));
    m_subject.field.reset();
    EXPECT_THAT(filled(m_ofField, m_fieldRows), ElementsAre("This run does not have the field."));
    selectTable("customers");
    testing::runScript(m_sample.path, "ALTER TABLE run_field RENAME TO gone");
    EXPECT_THAT(filled(m_ofTable, m_tableRows),
                ElementsAre(StartsWith("Error occurred while comparing two runs:\n\n")));
}

} // namespace
} // namespace tavix
