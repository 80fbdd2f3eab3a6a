#include "alert/AlertDraft.h"
#include "alert/AlertPicture.h"
#include "alert/tests/AlertHistorySample.h"
#include "chart/tests/DrawingText.h"

#include <gmock/gmock.h>

#include <random>

namespace tavix {
namespace {

using chart::Role;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

class AlertDrafts : public testing::AlertHistorySample {
  protected:
    AlertDraft draftOf(const AlertDefinition& figure) {
        Result<AlertDraft> draft = AlertDraft::MakeNew(*m_viewer, figure);
        if (!draft)
            throw std::runtime_error(draft.error().text);
        return std::move(*draft);
    }
};

TEST_F(AlertDrafts, AreTriedOnTheStoredRunsWhileLimitsAreTyped) {
    AlertDraft draft = draftOf(nullsOfName());
    EXPECT_EQ("Field name", draft.GetInputs()[draft.GetInput()].Label());
    EXPECT_EQ("Null Count", draft.GetFigures()[draft.GetFigure()]);
    EXPECT_EQ("232", draft.GetFigureText());
    EXPECT_EQ("Enter a limit to see in which of 8 runs it would have been raised.", draft.GetBackTestText());
    EXPECT_EQ("", draft.GetSentence());
    EXPECT_FALSE(draft.IsChanged());

    draft.SetValue1("230");
    EXPECT_EQ("Null Count for field name is greater than 230", draft.GetSentence());
    EXPECT_EQ("It would have been raised in 3 of 8 runs.", draft.GetBackTestText());
    EXPECT_TRUE(draft.IsChanged());
    draft.SetComparison(AlertComparison::Outside);
    EXPECT_EQ("Enter where the range ends.", draft.GetBackTestText());
    draft.SetValue2(" 232 ");
    EXPECT_EQ("Null Count for field name is outside the range 230 to 232", draft.GetSentence());
    EXPECT_EQ("It would have been raised in 4 of 8 runs.", draft.GetBackTestText());
    draft.SetComparison(AlertComparison::ChangedBy);
    draft.SetValue1("10");
    EXPECT_EQ("Null Count for field name has changed by more than 10", draft.GetSentence());
    EXPECT_EQ("It would have been raised in 2 of 7 runs. 1 further run cannot be judged.", draft.GetBackTestText());
    draft.SetAgainst(AgainstChoice::Median);
    draft.SetRuns(3);
    EXPECT_EQ("Null Count for field name has changed by more than 10 against the median of 3 runs",
              draft.GetSentence());
    EXPECT_EQ("It would have been raised in 1 of 7 runs. 1 further run cannot be judged.", draft.GetBackTestText())
        << "one wild run does not move the median";
    draft.SetLevel(AlertLevel::Error);
    draft.SetDescription("  Too many nameless customers ");

    AlertDefinition expected = nullsOfName();
    expected.rule = {AlertComparison::ChangedBy, false, 10, 0, 3, AlertLevel::Error, AlertReference::Median};
    expected.description = "Too many nameless customers";
    EXPECT_EQ(expected, draft.GetDefinition());
    draft.SetDescription(draft.GetSentence());
    EXPECT_EQ("", draft.GetDefinition().description) << "the condition in words follows the rule";
}

TEST_F(AlertDrafts, LimitsAreReadAsPeopleWriteNumbers) {
    AlertDraft draft = draftOf(nullsOfName());
    const auto limit = [&](const std::string& text) {
        draft.SetValue1(text);
        const std::optional<AlertRule> rule = draft.GetRule();
        return rule ? fmt::format("{}", rule->value1) : draft.Check().error().text;
    };
    EXPECT_EQ("1250", limit(" 1,250 "));
    EXPECT_EQ("-1234567.5", limit("-1,234,567.5"));
    EXPECT_EQ("0.5", limit("0.5 %"));
    EXPECT_EQ("1000000", limit("1e6"));
    EXPECT_EQ("Enter the limit.", limit("  "));
    for (const char* text : {"1,25", ",100", "1,2345678", "1234,567", "1,000,", "1.5,000", "1e1,000", "nan", "inf",
                             "0x10", "12 000", "1..2", "--1", "1e999", "%"})
        EXPECT_EQ("The limit is not a number. Write it like 1250, 0.5 or 1e6.", limit(text)) << text;
    draft.SetComparison(AlertComparison::ChangedByPercent);
    EXPECT_EQ("A change is measured up and down alike: enter a limit that is not below 0.", limit("-1"));
    EXPECT_EQ("%", draft.GetUnit());
    draft.SetComparison(AlertComparison::Inside);
    EXPECT_EQ("Enter where the range begins.", limit(""));
    draft.SetValue2("-3");
    EXPECT_EQ("The range begins above its end.", limit("5"));
    EXPECT_EQ("The range begins above its end.", draft.GetBackTestText());

    std::mt19937 random(19);
    constexpr std::string_view kLetters = "0123456789,.,.-+eE% \xC3\xA9";
    for (int i = 0; i < 20'000; ++i) {
        std::string text(random() % 70, ' ');
        for (char& letter : text)
            letter = kLetters[random() % kLetters.size()];
        draft.SetValue1(text);
        draft.SetValue2("1e300");
        const std::optional<AlertRule> rule = draft.GetRule();
        ASSERT_TRUE(!rule || (std::isfinite(rule->value1) && rule->value1 <= rule->value2)) << text;
    }
}

TEST_F(AlertDrafts, TheHistoryProposesLimits) {
    AlertDraft draft = draftOf(nullsOfName());
    ASSERT_THAT(draft.GetProposals(), SizeIs(3));
    EXPECT_EQ("is greater than 400: raised in no run (above all 8 runs)", draft.ProposalText(0));
    draft.Apply(2);
    EXPECT_EQ("Null Count for field name is outside the range 220 to 400", draft.GetSentence());
    EXPECT_EQ("It would have been raised in 0 of 8 runs.", draft.GetBackTestText());
    draft.SetComparison(AlertComparison::Less);
    EXPECT_THAT(draft.ProposalText(0), HasSubstr("is less than 220: ")) << "those of the comparison come first";
    draft.SetComparison(AlertComparison::ChangedByPercent);
    EXPECT_THAT(draft.ProposalText(0), HasSubstr("changes by more than 74 %: "));
}

TEST_F(AlertDrafts, OfferAllThatATableHas) {
    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns.back()));
    AlertDefinition rule;
    rule.table = m_sample.tables.at("customers");
    rule.subject = AlertSubject::BusinessRule;
    rule.watched = testing::ruleId("Name is known");
    rule.rule.ofFailedPercent = true;
    AlertDraft draft = draftOf(rule);
    std::vector<std::string> inputs;
    for (const AlertDraft::Input& input : draft.GetInputs())
        inputs.push_back(input.Label());
    EXPECT_THAT(inputs, ElementsAre("Records of the table", "Field id", "Field name", "Field balance", "Field since",
                                    "Field active", "Field remark", "Field city", "Custom metric Spread",
                                    "Custom metric Margin", "Business rule Name is known",
                                    "Business rule Balance is positive"));
    EXPECT_THAT(draft.GetFigures(), ElementsAre("Failed row count", "Percentage of failed rows"));
    EXPECT_EQ(1U, draft.GetFigure());
    EXPECT_EQ("%", draft.GetUnit());
    draft.SetValue1("1.05");
    EXPECT_EQ("Percentage of failed rows for business rule Name is known is greater than 1.05", draft.GetSentence());
    EXPECT_THAT(draft.GetBackTestText(), HasSubstr("It would have been raised in 2 of 3 runs."));
    EXPECT_EQ(rule.watched, draft.GetDefinition().watched);

    draft.ChooseFigure(*m_viewer, 0);
    EXPECT_EQ("", draft.GetUnit());
    EXPECT_FALSE(draft.GetDefinition().rule.ofFailedPercent);
    draft.ChooseInput(*m_viewer, 8);
    EXPECT_THAT(draft.GetFigures(), ElementsAre("out"));
    EXPECT_EQ("out for custom metric Spread is greater than 1.05", draft.GetSentence());
    draft.ChooseInput(*m_viewer, 0);
    EXPECT_EQ("Number of records is greater than 1.05", draft.GetSentence());
    EXPECT_EQ(-1, draft.GetDefinition().field);
    draft.ChooseInput(*m_viewer, 3);
    EXPECT_THAT(draft.GetFigures(), Contains("Standard Deviation"));
    EXPECT_THAT(draft.GetFigures(), ::testing::Not(Contains("Actual Type"))) << "it is a word";

    rule.watched = 4711;
    const Result<AlertDraft> none = AlertDraft::MakeNew(*m_viewer, rule);
    ASSERT_FALSE(none);
    EXPECT_EQ("The run that is shown does not have this figure.", none.error().text);
    m_viewer->close();
    EXPECT_EQ("No repository is open.", AlertDraft::MakeNew(*m_viewer, nullsOfName()).error().text);
}

TEST_F(AlertDrafts, AStoredAlertKeepsItsFigure) {
    AlertDefinition stored = nullsOfName();
    stored.rule = {AlertComparison::Outside, false, 0.1, 1e20};
    stored.description = "Names";
    AlertDraft draft = AlertDraft::Edit(*m_viewer, store(stored));
    EXPECT_FALSE(draft.CanChooseFigure());
    EXPECT_THAT(draft.GetFigures(), ElementsAre("Null Count"));
    EXPECT_EQ("0.1", draft.GetValue1());
    EXPECT_EQ("1e+20", draft.GetValue2());
    EXPECT_EQ(stored, draft.GetDefinition());
    EXPECT_FALSE(draft.IsChanged());
    draft.SetValue1("250");
    EXPECT_TRUE(draft.IsChanged());
    EXPECT_EQ("It would have been raised in 7 of 8 runs.", draft.GetBackTestText());
}

TEST_F(AlertDrafts, AreDrawnWithTheirLimits) {
    AlertDraft draft = draftOf(nullsOfName());
    const auto drawn = [&](double width = 500) {
        const AlertPicture picture(draft.GetBackTest(), draft.GetRule(), draft.IsPercent(), "Null Count");
        return picture.draw(chart::plainCanvas(width, 200));
    };
    const auto marks = [](const chart::Drawing& drawing) {
        return chart::testing::shapesOf<chart::Area>(drawing, Role::Alert).size();
    };
    EXPECT_THAT(chart::testing::shapesOf<chart::Line>(drawn(), Role::Alert), SizeIs(0));
    draft.SetValue1("230");
    const chart::Drawing drawing = drawn();
    EXPECT_TRUE(chart::testing::isInside(drawing));
    EXPECT_THAT(chart::testing::texts(drawing), Contains("limit 230"));
    EXPECT_EQ(3U, marks(drawing));
    EXPECT_THAT(chart::testing::shapesOf<chart::Line>(drawing, Role::Alert), SizeIs(1));
    ASSERT_THAT(drawing.hits, SizeIs(8));
    EXPECT_THAT(drawing.hits[5].text, HasSubstr(": 400, raised"));
    EXPECT_THAT(drawing.hits[6].text, HasSubstr(": 229, quiet"));
    EXPECT_THAT(AlertPicture(draft.GetBackTest(), draft.GetRule(), false, "Null Count").description(),
                HasSubstr("Raised in 3 of 8 runs: "));

    draft.SetValue1("1e9");
    EXPECT_THAT(chart::testing::texts(drawn()), Contains("limit beyond: 1,000,000,000 ↑"))
        << "the line is not flattened for a limit far away";
    EXPECT_TRUE(chart::testing::isInside(drawn()));
    draft.SetComparison(AlertComparison::ChangedBy);
    draft.SetValue1("10");
    EXPECT_EQ(2U, marks(drawn()));
    EXPECT_THAT(drawn().hits[5].text, HasSubstr(": 400, compared with 230, raised"));
    EXPECT_THAT(drawn().hits[0].text, HasSubstr(": 230, cannot be judged"));
    EXPECT_THAT(drawn(40).shapes, SizeIs(0)) << "there is no room";
}

TEST(AlertPicture, DrawsAnyHistory) {
    std::mt19937 random(7);
    constexpr double kValues[] = {0, 1, -5, 1e-9, 0.3, 1e15, 1e300, -1e300, 12};
    for (int round = 0; round < 300; ++round) {
        std::vector<BackTestRun> runs;
        const std::size_t count = round % 3 == 0 ? random() % 1500 : random() % 12;
        for (std::size_t i = 0; i < count; ++i)
            runs.push_back({static_cast<int>(i),
                            46'000.0 + static_cast<double>(i),
                            1,
                            random() % 5 == 0 ? std::nullopt : std::optional(kValues[random() % std::size(kValues)]),
                            {}});
        AlertRule rule;
        rule.comparison = static_cast<AlertComparison>(random() % 7);
        rule.value1 = kValues[random() % std::size(kValues)];
        rule.value2 = kValues[random() % std::size(kValues)];
        const AlertPicture picture(backTest(rule, runs), rule, round % 2 == 0, "Mean");
        const chart::Drawing drawing = picture.draw(chart::plainCanvas(100 + static_cast<double>(random() % 600), 150));
        ASSERT_TRUE(chart::testing::isInside(drawing)) << round;
        ASSERT_LE(drawing.hits.size(), count);
    }
}

} // namespace
} // namespace tavix
