#include "report/ReportTables.h"
#include "support/RowsText.h"
#include "support/RunScript.h"
#include "support/SampleFits.h"
#include "support/SampleViewer.h"
#include "tabs/TypesModel.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

FieldBreakdown dates() {
    FieldBreakdown breakdown;
    breakdown.isExamined = true;
    breakdown.values = 50;
    breakdown.rows = 1000;
    breakdown.reading = "date day-first";
    breakdown.fitValues = 47;
    breakdown.fitRows = 996;
    breakdown.forms = {{"date DD.MM.YYYY", 40, 800, "14.01.2001", true},
                       {"date YYYY-MM-DD", 7, 196, "2001-01-14", true},
                       {"text", 3, 4, "unknown", false}};
    return breakdown;
}

TEST(FormRows, ShowTheirShareAndWhichDoNotFit) {
    FormRows rows;
    rows.Show(dates());
    EXPECT_EQ("Form:140|>Rows:60|>Share:80|>Values:60|Example:100", headingsOf(rows));
    EXPECT_THAT(linesOf(rows), ElementsAre("date DD.MM.YYYY|>800|>80.00 %[0.80]|>40|14.01.2001",
                                           "date YYYY-MM-DD|>196|>19.60 %[0.20]|>7|2001-01-14",
                                           "text (does not fit)|>4|>0.40 %[0.00]|>3|unknown"));
    EXPECT_EQ("", rows.GetCondition(0)) << "of two forms that fit, no filter tells one";
    EXPECT_EQ(misfitCondition("date day-first"), rows.GetCondition(2));
    ASSERT_TRUE(rows.Sort(1, false));
    EXPECT_EQ(misfitCondition("date day-first"), rows.GetCondition(0)) << "the condition stays with its form";

    FieldBreakdown all = dates();
    all.fitValues = all.values = 40;
    all.fitRows = all.rows = 800;
    all.forms.resize(1);
    rows.Show(all);
    EXPECT_EQ("fits(`Value`, 'date day-first')", rows.GetCondition(0));
    all.reading.clear();
    rows.Show(all);
    EXPECT_EQ("", rows.GetCondition(0)) << "texts have no type that they could fit";
}

TEST(MisfitRows, EndWithTheNumberOfOthers) {
    MisfitRows rows;
    rows.Show(dates(), {{"unknown", 2}, {"n/a", 1}});
    EXPECT_THAT(linesOf(rows),
                ElementsAre("unknown|>2|>0.20 %[0.00]", "n/a|>1|>0.10 %[0.00]", "1 more value?|>1|>0.10 %[0.00]"));
    EXPECT_EQ(KvbString("n/a"), rows.GetValue(1));
    EXPECT_EQ(std::nullopt, rows.GetValue(2));
    ASSERT_TRUE(rows.Sort(0, false));
    EXPECT_EQ(KvbString("n/a"), rows.GetValue(0));
    EXPECT_EQ(std::nullopt, rows.GetValue(2)) << "the others stay last";
    rows.Show(dates(), {{"a", 2}, {"b", 1}, {"c", 1}});
    EXPECT_EQ(3, rows.GetRowCount());
}

class TypesModelOfSample : public testing::SampleViewer {
  protected:
    FieldRecord record(const std::string& table, std::size_t field) {
        return readFields(*m_viewer, m_sample.tables.at(table)).at(field);
    }
    TypesModel m_model;
};

TEST_F(TypesModelOfSample, AFieldOfOneFormIsOneLine) {
    ASSERT_TRUE(m_model.Fill(*m_viewer, record("orders", 1)));
    EXPECT_EQ("Types: text 100 of 100", m_model.GetText());
    EXPECT_FALSE(m_model.HasForms() || m_model.HasMisfits());
    EXPECT_EQ("declared text; values: text", m_model.GetRemark());
    EXPECT_EQ("", m_model.GetMisfitCondition());
    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[0]));
    ASSERT_TRUE(m_model.Fill(*m_viewer, record("orders", 1)));
    EXPECT_THAT(m_model.GetText(), StartsWith("Types: not examined."));
}

TEST_F(TypesModelOfSample, MisfitsAreListedBesideTheForms) {
    testing::makeFits(m_sample, 999, "real");
    testing::runScript(m_sample.path, fmt::format("UPDATE type_breakdown SET fit_values = 3 WHERE field = {0};"
                                                  "UPDATE run_field SET defined_type = 'varchar', defined_length = 12, "
                                                  "value_rows = 500 WHERE field = {0}",
                                                  m_sample.fields.at("customers/balance")));
    FieldRecord balance = record("customers", 2);
    balance.freqCount = TypesModel::kMostToSearch + 1;
    ASSERT_TRUE(m_model.Fill(*m_viewer, balance));
    EXPECT_EQ("Types: real 999 of 1,000; does not fit: 1", m_model.GetText()) << "too many values to look for it";
    EXPECT_EQ("declared varchar(12); values: real (they disagree)", m_model.GetRemark());
    EXPECT_TRUE(m_model.HasForms());
    EXPECT_EQ("1 value does not fit", m_model.GetMisfitHeading());
    EXPECT_EQ(misfitCondition("real"), m_model.GetMisfitCondition());
    EXPECT_THAT(linesOf(m_model.GetMisfits()), ElementsAre("1 more value?|>1|>0.10 %[0.00]"));
    m_viewer->close();
    EXPECT_FALSE(m_model.Fill(*m_viewer, balance));
    EXPECT_THAT(linesOf(m_model.GetForms()), IsEmpty());
}

} // namespace
} // namespace tavix
