#include "report/FieldBreakdown.h"
#include "support/SampleFits.h"
#include "support/SampleViewer.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;

FieldBreakdown integers() {
    FieldBreakdown breakdown;
    breakdown.isExamined = true;
    breakdown.values = 60;
    breakdown.rows = 1400;
    breakdown.reading = "integer";
    breakdown.fitValues = 59;
    breakdown.fitRows = 1399;
    breakdown.hasFigures = true;
    breakdown.forms = {{"integer", 59, 1399, "7"}, {"text", 1, 1, "unknown"}};
    return breakdown;
}

TEST(FieldBreakdownText, SaysHowManyFitAndNamesTheMisfits) {
    FieldBreakdown breakdown = integers();
    EXPECT_EQ("integer 1,399 of 1,400; does not fit: unknown (1)", breakdownText(breakdown, {{"unknown", 1}}));
    breakdown.fitValues = 45;
    const std::vector<CountedValue> misfits{{"n/a", 1204}, {"two\nlines", 3}, {std::string(90, 'x'), 2}, {"-", 1}};
    EXPECT_EQ("integer 1,399 of 1,400; do not fit: n/a (1,204), two lines (3), " + std::string(40, 'x') +
                  "… (2) and 12 more",
              breakdownText(breakdown, misfits));
    EXPECT_EQ("integer 1,399 of 1,400; do not fit: 15", breakdownText(breakdown, {}));

    breakdown.fitValues = 60;
    breakdown.fitRows = 1400;
    EXPECT_EQ("integer 1,400 of 1,400", breakdownText(breakdown, {}));
    breakdown.reading.clear();
    EXPECT_EQ("integer 1,399 of 1,400, text 1 of 1,400", breakdownText(breakdown, {}));
    EXPECT_FALSE(breakdown.hasMisfits()) << "without a type nothing can fail to fit it";
    FieldBreakdown nothing;
    nothing.isExamined = true;
    EXPECT_EQ("no values", breakdownText(nothing, {}));
    EXPECT_EQ("not examined", breakdownText({}, {}));
}

TEST(FieldBreakdownText, TellsAnAmbiguityWithTheWayOut) {
    FieldBreakdown breakdown;
    breakdown.isExamined = true;
    breakdown.rows = breakdown.values = 2;
    EXPECT_EQ("", ambiguityText(breakdown));
    breakdown.ambiguity = "day-first or month-first";
    breakdown.forms = {{"text", 1, 1, "x"}, {"date day-first", 1, 1, "01/02/2003"}};
    EXPECT_EQ("01/02/2003 can be read day-first or month-first; state it in the job: dates: day-first",
              ambiguityText(breakdown));
    breakdown.ambiguity = "with a decimal point or a decimal comma";
    breakdown.forms = {{"real", 2, 2, "1,234"}};
    EXPECT_EQ("1,234 can be read with a decimal point or a decimal comma", ambiguityText(breakdown))
        << "no job option for numbers";
}

TEST(FieldBreakdownText, SetsTheDeclaredTypeBesideTheValues) {
    FieldRecord field;
    field.typeCode = "S";
    FieldBreakdown breakdown = integers();
    breakdown.reading = "date day-first";
    EXPECT_EQ("", declaredText(field, breakdown)) << "a text file declares nothing";
    field.metrics[index(MetricId::DefinedType)] = "varchar";
    field.metrics[index(MetricId::DefinedLength)] = "20";
    EXPECT_EQ("declared varchar(20); values: date day-first", declaredText(field, breakdown));
    EXPECT_TRUE(disagreesWithDeclared(field, breakdown));
    breakdown.reading.clear();
    EXPECT_EQ("declared varchar(20); values: text", declaredText(field, breakdown));
    EXPECT_FALSE(disagreesWithDeclared(field, breakdown));
    field.metrics[index(MetricId::DefinedType)] = "timestamp with time zone";
    field.typeCode = "D";
    EXPECT_FALSE(disagreesWithDeclared(field, breakdown));
    field.metrics[index(MetricId::DefinedType)] = "geometry";
    EXPECT_FALSE(disagreesWithDeclared(field, breakdown)) << "of a type that we do not know, nothing is said";
    EXPECT_EQ("", declaredText(field, {})) << "not examined";
}

TEST(FitFigures, NamesTheValues) {
    EXPECT_EQ("Over the 399 of 400 values that are integers", fitSentence({"integer", 399, 400}));
    EXPECT_EQ("Over all 400 values, which are dates, day-first", fitSentence({"date day-first", 400, 400}));
    EXPECT_EQ("numbers with a decimal comma in €", fitNoun("real decimal-comma unit=€"));
    EXPECT_EQ("dates, epoch-seconds", fitNoun("date epoch-seconds"));
    EXPECT_EQ("something else", fitNoun("something else")) << "of a later version";
    EXPECT_EQ("R", fitTypeCode({"real unit=%", 1, 1}));
    EXPECT_EQ("", fitTypeCode({"", 1, 1}));
    std::string marked;
    for (const MetricInfo& metric : metricCatalogue())
        if (!fitSuffix(static_cast<int>(metric.id), FitFigures{"integer", 1, 2}).empty())
            marked += fmt::format("{}, ", metric.name);
    EXPECT_EQ("Minimum Value, Maximum Value, Mean, Median, Standard Deviation, Standard Error, ", marked);
    EXPECT_EQ("", fitSuffix(static_cast<int>(MetricId::Mean), std::nullopt));
}

TEST(FieldBreakdownConditions, QuoteTheReading) {
    EXPECT_EQ("not isblank(`Value`) and not fits(`Value`, 'real unit=''')", misfitCondition("real unit='"));
}

using FieldBreakdownOfSample = testing::SampleViewer;

TEST_F(FieldBreakdownOfSample, MisfitsAreTheMostFrequentOnes) {
    testing::makeFits(m_sample, 200, "date");
    const int balance = m_sample.fields.at("customers/balance");
    auto breakdown = readFieldBreakdown(*m_viewer, balance);
    ASSERT_TRUE(breakdown) << breakdown.error().text;
    breakdown->fitValues = 0;
    const auto first = readMisfits(*m_viewer, balance, *breakdown, 2);
    ASSERT_TRUE(first) << first.error().text;
    EXPECT_THAT(*first, ElementsAre(CountedValue{"12.3456789", 502}, CountedValue{"-3.5", 300}));
    breakdown->reading = "real";
    const auto none = readMisfits(*m_viewer, balance, *breakdown, 9);
    ASSERT_TRUE(none);
    EXPECT_THAT(*none, ElementsAre()) << "all of them are numbers";
    EXPECT_TRUE(breakdown->forms.front().form == "date" && !breakdown->forms.front().fits);
    breakdown->reading = "no type";
    EXPECT_FALSE(readMisfits(*m_viewer, balance, *breakdown, 9));
}

TEST_F(FieldBreakdownOfSample, ARunThatDidNotLookIsNotExamined) {
    const int note = m_sample.fields.at("orders/note");
    const auto latest = readFieldBreakdown(*m_viewer, note);
    ASSERT_TRUE(latest) << latest.error().text;
    EXPECT_EQ("text 100 of 100", breakdownText(*latest, {}));
    EXPECT_THAT(latest->forms, ElementsAre(FieldBreakdown::Form{"text", 4, 100, "=1+1"}));
    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[0]));
    const auto first = readFieldBreakdown(*m_viewer, note);
    ASSERT_TRUE(first);
    EXPECT_EQ("not examined", breakdownText(*first, {}));
    m_viewer->close();
    EXPECT_FALSE(readFieldBreakdown(*m_viewer, note));
}

} // namespace
} // namespace tavix
