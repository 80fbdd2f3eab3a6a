#include "support/RowsText.h"
#include "support/SampleAlerts.h"
#include "support/SampleRules.h"
#include "support/SampleViewer.h"
#include "tabs/RunOverviewModel.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <locale>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Place = OverviewDoor::Place;

class OverviewOfSample : public testing::SampleViewer {
  protected:
    void show(int run, int source = RunOverviewModel::kAllSources) {
        ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns.at(static_cast<std::size_t>(run))));
        m_model.Fill(readRunOverview(*m_viewer, m_sample.salesJob), "Sales", source);
    }
    std::vector<std::string> cards() const {
        std::vector<std::string> lines;
        for (const OverviewCard& card : m_model.GetCards())
            lines.push_back(fmt::format("{} {}{}|{}|{}|{}", card.figure, card.caption, card.isAlarming ? "!" : "",
                                        card.change, card.ofRun, card.toolTip));
        return lines;
    }
    std::vector<std::string> lines(int list) { return linesOf(m_model.GetList(list)); }

    RunOverviewModel m_model{std::locale::classic()};
};

TEST_F(OverviewOfSample, TheWholeRunWithItsChangesAndWhatEachFigureOpens) {
    testing::addRules(m_sample);
    show(1);
    EXPECT_EQ("Sales", m_model.GetTitle());
    EXPECT_THAT(m_model.GetDetail(), StartsWith("2 data sources  ·  run of "));
    EXPECT_THAT(m_model.GetDetail(), HasSubstr(", February  ·  took 1 min 30 s  ·  changes since "));
    EXPECT_THAT(cards(), ElementsAre("2,061 Records|||Opens customers, which has the most",
                                     "7 Tables|+1 (+16.67 %)||Opens customers",
                                     "16 Fields|+1 (+6.67 %)||Opens customers, which has the most",
                                     "2 Damaged rows!|||Opens airports, which has the most", "0 Alerts raised|||",
                                     "2 Rules violated!|by 32 rows||Opens Balance is positive of customers",
                                     "2 Findings!|1 definite, 1 possible||Opens orders.note: Control characters"));
    EXPECT_EQ((OverviewDoor{Place::Table, m_sample.tables.at("airports")}), m_model.GetCards()[3].door);
    EXPECT_EQ(OverviewDoor{}, m_model.GetCards()[4].door);

    EXPECT_THAT(lines(RunOverviewModel::Tables),
                ElementsAre("customers<5>|>1,000|>|>0", "suppliers<5>|>6|>|>0", "orders<5>|>1,000|>|>0",
                            "big orders<6>|>50|>|>0", "german customers<7>|>120|>|>0", "late orders (new)<7>|>9|>|>0",
                            "airports<5>|>5|>|>2"));
    EXPECT_THAT(lines(RunOverviewModel::Alerts),
                ElementsAre("Balance is positive|customers|>21|rule", "Name is known|customers|>11|rule"));
    EXPECT_EQ(Place::Rule, m_model.GetList(RunOverviewModel::Alerts).GetDoor(0).place);
    EXPECT_THAT(lines(RunOverviewModel::Findings),
                ElementsAre("Control characters|orders.note|>30|definite", "Few rows|orders|>|possible"));
    EXPECT_EQ((OverviewDoor{Place::Field, m_sample.tables.at("orders"), m_sample.fields.at("orders/note")}),
              m_model.GetList(RunOverviewModel::Findings).GetDoor(0));
    EXPECT_EQ(Place::Table, m_model.GetList(RunOverviewModel::Findings).GetDoor(1).place);
    EXPECT_THAT(lines(RunOverviewModel::Nulls),
                ElementsAre("remark<1>|customers|>1,000|>100.00[1.00]", "latitude<1>|airports|>2|>40.00[0.40]",
                            "name<1>|customers|>229|>22.90[0.23]", "code<1>|airports|>1|>20.00[0.20]",
                            "since<1>|customers|>1|>0.10[0.00]", "city<1>|customers|>7|>0.06[0.00]"));
    EXPECT_THAT(lines(RunOverviewModel::News), ElementsAre("late orders<7>||new table"));
    EXPECT_EQ("New and vanished (1)", m_model.GetList(RunOverviewModel::News).GetTitle());
}

TEST_F(OverviewOfSample, ASourceShowsItsOwnFiguresAndThoseOfTheRun) {
    show(2);
    int files = -1;
    for (const RunOverview::Source& source : readRunOverview(*m_viewer, m_sample.salesJob).sources)
        files = source.isOfFiles ? source.id : files;
    m_model.ShowSource(files);
    EXPECT_EQ("/data/files", m_model.GetTitle());
    EXPECT_THAT(m_model.GetDetail(), StartsWith("text files"));
    EXPECT_THAT(cards(), ElementsAre("5 Records||of 2,061 in the run|Opens airports, which has the most",
                                     "1 Tables||of 7 in the run|Opens airports",
                                     "2 Fields||of 16 in the run|Opens airports, which has the most",
                                     "2 Damaged rows!||of 2 in the run|Opens airports, which has the most",
                                     "0 Alerts raised||of 0 in the run|", "0 Rules violated||of 0 in the run|",
                                     "0 Findings||of 2 in the run|"));
    EXPECT_EQ("The run gives nothing away.", m_model.GetList(RunOverviewModel::Findings).GetEmptyText());
    EXPECT_THAT(lines(RunOverviewModel::Tables), ElementsAre("airports<5>|>5|>|>2"));
    EXPECT_THAT(lines(RunOverviewModel::Nulls), ElementsAre("latitude<1>|>2|>40.00[0.40]", "code<1>|>1|>20.00[0.20]"));
    EXPECT_EQ("The same tables and fields as in the run before.",
              m_model.GetList(RunOverviewModel::News).GetEmptyText());
}

TEST_F(OverviewOfSample, SortingTakesTheDoorsAlongAndTheFirstRunHasNothingToCompare) {
    show(0);
    EXPECT_EQ("– Findings|not examined||", cards().back()) << "not 0";
    EXPECT_EQ("Not examined: the run is of an older version.",
              m_model.GetList(RunOverviewModel::Findings).GetEmptyText());
    EXPECT_EQ("This is the first run.", m_model.GetList(RunOverviewModel::News).GetEmptyText());
    EXPECT_THAT(m_model.GetDetail(), HasSubstr("the first run"));
    OverviewList& tables = m_model.GetList(RunOverviewModel::Tables);
    ASSERT_TRUE(tables.Sort(1, false));
    EXPECT_THAT(lines(RunOverviewModel::Tables)[0], StartsWith("airports<5>|>5"));
    EXPECT_EQ((OverviewDoor{Place::Table, m_sample.tables.at("airports")}), tables.GetDoor(0));
}

TEST(RunOverviewTexts, DurationsReadLikeTheirSize) {
    EXPECT_EQ("0.4 s", durationText(0.42));
    EXPECT_EQ("12 s", durationText(12.3));
    EXPECT_EQ("3 min 20 s", durationText(200));
    EXPECT_EQ("2 h 5 min", durationText(7530));
    EXPECT_EQ("0.0 s", durationText(-5));
}

TEST_F(OverviewOfSample, RaisedAlertsAreMarkedByLevelAndTheOthersAreCounted) {
    const auto alert = [this](const char* field, MetricId metric, double limit, AlertLevel level) {
        return testing::addAlert(m_sample, field, metric, {.value1 = limit, .level = level});
    };
    alert("customers/name", MetricId::NullCount, 227, AlertLevel::Warning);
    alert("customers/remark", MetricId::NullCount, 1, AlertLevel::Error);
    alert("customers/remark", MetricId::Mean, 1, AlertLevel::Error); // has none
    alert("customers/name", MetricId::NullCount, 1e6, AlertLevel::Error);
    testing::muteAlert(m_sample, alert("customers/id", MetricId::Count, 1, AlertLevel::Error));
    show(2);
    EXPECT_EQ("2 Alerts raised!|1 error, 1 muted, 1 cannot be judged||Opens the alerts of customers", cards()[4]);
    OverviewList& list = m_model.GetList(RunOverviewModel::Alerts);
    EXPECT_THAT(lines(RunOverviewModel::Alerts),
                ElementsAre("Null Count for field remark is greater than 1|customers|>1,000|error",
                            "Null Count for field name is greater than 227|customers|>228|warning"));
    EXPECT_EQ(AlertMark::Error, list.GetCell(0, 0).alert);
    EXPECT_EQ(AlertMark::Warning, list.GetCell(0, 1).alert);
    EXPECT_THAT(list.GetToolTip(0, 1), StartsWith("Alert raised, warning: Null Count for field name is greater"));
    EXPECT_EQ("", list.GetToolTip(1, 1));
}

} // namespace
} // namespace tavix
