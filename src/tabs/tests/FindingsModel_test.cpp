#include "report/ReportTables.h"
#include "support/RowsText.h"
#include "support/RunScript.h"
#include "support/SampleViewer.h"
#include "tabs/FindingsModel.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <locale>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class FindingsOfSample : public testing::SampleViewer {
  protected:
    ReportSubject orders() {
        ReportSubject subject;
        subject.selection.kind = ReportSelection::Kind::Table;
        subject.table = *findTable(*m_viewer, m_sample.tables.at("orders"), "Warehouse");
        subject.selection.table = subject.table;
        return subject;
    }
    ReportSubject note() {
        ReportSubject subject = orders();
        subject.selection.fieldId = m_sample.fields.at("orders/note");
        subject.field = readFields(*m_viewer, subject.table.id).at(1);
        return subject;
    }
    FindingsModel m_table{false, std::locale::classic()};
    FindingsModel m_field{true, std::locale::classic()};
};

TEST_F(FindingsOfSample, ATableListsThoseOfItsFieldsTheGravestFirst) {
    ASSERT_TRUE(m_table.Fill(*m_viewer, orders()));
    EXPECT_THAT(m_table.GetText(), StartsWith("2 findings: 1 definite, 1 possible  ·  "));
    EXPECT_THAT(m_table.GetText(), HasSubstr(" (note)"));
    EXPECT_EQ("Finding:150|Likelihood:85|Field:90|>Rows:60|>Values:60|What Was Found:130",
              headingsOf(m_table.GetRows()));
    EXPECT_THAT(linesOf(m_table.GetRows()),
                ElementsAre("Control characters|definite|note|>30|>2|2 values in 30 rows, such as line end",
                            "Few rows|possible||>|>|100 rows"));
    EXPECT_TRUE(m_table.IsOpenAtFirst());
    ASSERT_TRUE(m_table.GetRows().Sort(1, false));
    EXPECT_EQ("few-rows", m_table.At(0)->code) << "possible before definite";
    EXPECT_EQ(nullptr, m_table.At(-1));
    EXPECT_EQ(nullptr, m_table.At(2));
}

TEST_F(FindingsOfSample, AFieldHasItsOwnAndARunThatDidNotLookHasNone) {
    ASSERT_TRUE(m_field.Fill(*m_viewer, note()));
    EXPECT_THAT(linesOf(m_field.GetRows()),
                ElementsAre("Control characters|definite|>30|>2|2 values in 30 rows, such as line end"));
    EXPECT_EQ("orders.note", m_field.At(0)->place());
    EXPECT_EQ("has_control_chars(`Value`)", m_field.At(0)->condition);
    ReportSubject collection;
    collection.selection.kind = ReportSelection::Kind::Collection;
    ASSERT_TRUE(m_table.Fill(*m_viewer, collection));
    EXPECT_EQ("", m_table.GetText());
    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[0]));
    ASSERT_TRUE(m_field.Fill(*m_viewer, note()));
    EXPECT_EQ("", m_field.GetText());
    EXPECT_FALSE(m_field.IsOpenAtFirst());
    const ReportSubject subject = note();
    m_viewer->close();
    EXPECT_FALSE(m_field.Fill(*m_viewer, subject));
}

TEST_F(FindingsOfSample, ADismissedOneIsListedOnDemandAndCanBeRestored) {
    ASSERT_TRUE(m_table.Fill(*m_viewer, orders()));
    ASSERT_TRUE(FindingsModel::Dismiss(*m_viewer, *m_table.At(0), "ada", "Tabs are meant."));
    ASSERT_TRUE(FindingsModel::Dismiss(*m_viewer, *m_table.At(1), "ada", "A sample"));
    EXPECT_FALSE(FindingsModel::Dismiss(*m_viewer, *m_table.At(0), "ada", "  "));
    ASSERT_TRUE(m_table.Fill(*m_viewer, orders()));
    EXPECT_EQ("no findings", m_table.GetText());
    EXPECT_EQ("2 dismissed", m_table.GetDismissedText());
    EXPECT_THAT(linesOf(m_table.GetRows()), IsEmpty());
    m_table.ShowDismissed(true);
    ASSERT_EQ(2, m_table.GetRows().GetRowCount());
    EXPECT_THAT(lineOf(m_table.GetRows(), 0), StartsWith("Control characters (dismissed)|definite|note"));
    EXPECT_THAT(m_table.ExplanationOf(*m_table.At(0)), HasSubstr("Dismissed by ada, "));
    EXPECT_THAT(m_table.ExplanationOf(*m_table.At(0)), HasSubstr(": Tabs are meant."));
    ASSERT_TRUE(FindingsModel::Restore(*m_viewer, *m_table.At(0)));
    ASSERT_TRUE(m_table.Fill(*m_viewer, orders()));
    EXPECT_THAT(m_table.GetText(), StartsWith("1 finding: 1 definite  ·  "));
    EXPECT_EQ("1 dismissed", m_table.GetDismissedText());
    EXPECT_FALSE(FindingsModel::Restore(*m_viewer, *m_table.At(0))) << "it is not dismissed";
}

TEST_F(FindingsOfSample, TheCatalogueExplainsThoseThatItKnows) {
    testing::runScript(m_sample.path, "UPDATE finding SET code = 'numbers-as-text' WHERE code = 'control-characters'");
    ASSERT_TRUE(m_field.Fill(*m_viewer, note()));
    const FindingRecord* finding = m_field.At(0);
    EXPECT_NE("", finding->meaning());
    EXPECT_NE("", finding->advice());
    EXPECT_EQ(std::string(finding->meaning()) + " " + std::string(finding->advice()), m_field.ExplanationOf(*finding));
}

} // namespace
} // namespace tavix
