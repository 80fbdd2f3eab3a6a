#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/Metrics.h"
#include "report/MetricHistory.h"
#include "support/RunScript.h"
#include "support/SampleViewer.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cmath>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MetricHistoryOfSample : public testing::SampleViewer {
  protected:
    MetricHistory read(const std::string& table, MetricId metric, int runs = 12) {
        return readMetricHistory(*m_viewer, m_sample.tables.at(table), static_cast<int>(metric), runs);
    }
    /// "229 228 -" of a field.
    std::string figures(const MetricHistory& history, const std::string& field) {
        std::string text;
        for (const double figure : history.Of(m_sample.fields.at(field)))
            text += (std::isnan(figure) ? "-" : fmt::format("{}", figure)) + " ";
        return text;
    }
};

TEST_F(MetricHistoryOfSample, HasAFigureOfEveryFieldForEveryRunTheOldestFirst) {
    const MetricHistory nulls = read("customers", MetricId::NullCount);
    EXPECT_EQ(m_sample.salesRuns, nulls.runs);
    EXPECT_EQ(3U, nulls.dates.size());
    EXPECT_LT(nulls.dates[0], nulls.dates[1]);
    EXPECT_EQ("230 229 228 ", figures(nulls, "customers/name"));
    EXPECT_EQ("229 228 ", figures(read("customers", MetricId::NullCount, 2), "customers/name"));
    EXPECT_THAT(nulls.Of(m_sample.fields.at("orders/note")), IsEmpty()) << "a field of another table";
    // From the second run on.
    EXPECT_THAT(read("late orders", MetricId::NullCount).runs,
                ElementsAre(m_sample.salesRuns[1], m_sample.salesRuns[2]));
}

TEST_F(MetricHistoryOfSample, WhatIsNotANumberOrNotThereIsAGap) {
    const int name = m_sample.fields.at("customers/name");
    testing::runScript(m_sample.path, fmt::format("UPDATE run_field SET mode = '7' WHERE field = {0} AND run = {1};"
                                                  "UPDATE run_field SET mode = 'seven' WHERE field = {0} AND run = {2};"
                                                  "DELETE FROM run_field WHERE field = {3} AND run = {2};"
                                                  "UPDATE run_field SET mode = NULL WHERE field = {0} AND run = {4}",
                                                  name, m_sample.salesRuns[0], m_sample.salesRuns[1],
                                                  m_sample.fields.at("customers/balance"), m_sample.salesRuns[2]));
    const MetricHistory modes = read("customers", MetricId::Mode);
    EXPECT_EQ("7 - - ", figures(modes, "customers/name"));
    EXPECT_EQ(3U, modes.Of(m_sample.fields.at("customers/balance")).size());
    EXPECT_TRUE(std::isnan(modes.Of(m_sample.fields.at("customers/balance"))[1]));
}

TEST_F(MetricHistoryOfSample, AFailureIsThrown) {
    EXPECT_THROW((void)readMetricHistory(*m_viewer, 999, 2, 12), GenException);
    m_viewer->close();
    EXPECT_THROW((void)read("customers", MetricId::NullCount), GenException);
}

} // namespace
} // namespace tavix
