#pragma once

#include "access/Layouts.h"
#include "access/tests/PrViewerFixture.h"
#include "base/AlertDefinition.h"
#include "repository/RunWriter.h"

#include <fmt/format.h>

#include <map>
#include <string>
#include <vector>

namespace tavix::testing {

/// A job "Shop" of its own in the sample repository, whose runs follow each other day by day from Thursday, 2026-01-15.
/// The run with the number n has n nulls in orders.x and n of 10 rows that violate the rule "Positive" of "orders"; the
/// custom metric "Sum" is n + 0.5, and there are 100 + n records.
class AlertRuns : public PrViewerTest {
  protected:
    using AlertFacts = repository::AlertFacts;

    static AlertFacts onNulls(AlertRule rule, std::string description = "") {
        return {"orders", AlertSubject::StandardMetric, "x", MetricId::NullCount, "", rule, std::move(description)};
    }
    static AlertFacts onRecords(AlertRule rule) {
        return {"orders", AlertSubject::StandardMetric, "", MetricId::Count, "", rule, ""};
    }
    static AlertFacts onSum(AlertRule rule) {
        return {"orders", AlertSubject::CustomMetric, "", MetricId::Count, "Sum", rule, ""};
    }
    static AlertFacts onPositive(AlertRule rule) {
        return {"orders", AlertSubject::BusinessRule, "", MetricId::Count, "Positive", rule, ""};
    }
    static AlertRule above(double limit) { return {.value1 = limit}; }

    /// Adds a run and opens it.
    int run(const std::vector<AlertFacts>& alerts, const std::vector<std::string>& fields = {"x", "y"}) {
        const int number = ++m_runs;
        const UtcTime started = SampleRepository::runTime(0) + std::chrono::hours(24 * (number - 1));
        auto writer = repository::RunWriter::begin(m_sample.path, {"Shop", "", "", started});
        EXPECT_TRUE(writer) << writer.error().text;
        repository::TableFacts table;
        table.name = "orders";
        table.dataSource = "Shop";
        m_orders = *(*writer)->addTable(table);
        int ordinal = 0;
        for (const std::string& name : fields) {
            repository::FieldFacts field;
            field.name = name;
            field.ordinal = ++ordinal;
            field.metrics[index(MetricId::Count)] = 100 + number;
            if (name == "x")
                field.metrics[index(MetricId::NullCount)] = number;
            field.metrics[index(MetricId::MinimumValue)] = "a";
            EXPECT_TRUE((*writer)->addField(m_orders, field));
        }
        EXPECT_TRUE((*writer)->addCustomMetric(
            m_orders, {"Sum", "total", false, "sum", "`x`", {{fields.front(), {}}}, number + 0.5, 9, 0}));
        EXPECT_TRUE(
            (*writer)->addBusinessRule(m_orders, {"Positive", "`x` > 0", {fields.front()}, 10, number, 0, {}, 0, {}}));
        const Status set = (*writer)->setAlerts(alerts);
        EXPECT_TRUE(set) << (set ? "" : set.error().text);
        EXPECT_TRUE((*writer)->commit(started));
        m_job = (*writer)->jobId();
        EXPECT_TRUE(m_viewer->init(m_sample.path) && m_viewer->setCurrentJobSetup(m_job)) << error();
        return (*writer)->runId();
    }

    [[nodiscard]] AlertDefinition definition(AlertRule rule, std::string description = "") const {
        return {.table = m_orders,
                .field = field("x"),
                .metric = MetricId::NullCount,
                .rule = rule,
                .description = std::move(description)};
    }
    [[nodiscard]] int field(const char* name) const {
        const ProfileCursorHandle fields = m_viewer->getFieldList(m_orders);
        while (fields && fields->next())
            if (fields->getColumnValue(layout::FieldName) == KvbString(name))
                return fields->getColumnInt(layout::FieldId);
        return -1;
    }

    int create(const AlertDefinition& definition) {
        int id = -1;
        EXPECT_TRUE(m_viewer->createEditAlert(id, definition, "ada")) << error();
        return id;
    }

    /// The alerts of the job: "3 Null Count for field x is greater than 0", and " by ada" for one of a user.
    std::vector<std::string> alerts() {
        std::vector<std::string> lines;
        const ProfileCursorHandle cursor = m_viewer->getAlerts();
        while (cursor && cursor->next())
            if (cursor->getColumnInt(layout::AlertReportId) == m_job)
                lines.push_back(fmt::format("{} {}{}", cursor->getColumnInt(layout::AlertId),
                                            cursor->getColumnValue(layout::AlertDescription).str(),
                                            cursor->getColumnInt(layout::AlertIsOfUser) == 1
                                                ? " by " + cursor->getColumnValue(layout::AlertAuthor).str()
                                                : ""));
        return lines;
    }

    /// "before -> after", with the user or "run" in front.
    std::vector<std::string> changes(int alert) {
        std::vector<std::string> lines;
        const ProfileCursorHandle cursor = m_viewer->getAlertChanges(alert);
        while (cursor && cursor->next()) {
            const std::string user = cursor->getColumnValue(layout::AlertChangeAuthor).str();
            lines.push_back(fmt::format("{}: {} -> {}", user.empty() ? "run" : user,
                                        cursor->getColumnValue(layout::AlertChangeBefore).str(),
                                        cursor->getColumnValue(layout::AlertChangeAfter).str()));
        }
        return lines;
    }

    int m_job = -1;
    int m_orders = -1;
    int m_runs = 0;
};

} // namespace tavix::testing
