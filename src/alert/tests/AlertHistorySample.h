#pragma once

#include "report/AlertStates.h"
#include "report/ReportTables.h"
#include "support/RunScript.h"
#include "support/SampleRules.h"
#include "support/SampleViewer.h"

#include <fmt/format.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace tavix::testing {

/// Adds runs to "Sales" that are copies of the latest one, each a day after the run before, with these null counts of
/// customers.name. The runs of the sample itself have 230, 229 and 228.
inline void addRunsWithNulls(const SampleRepository& sample, const std::vector<int>& nulls) {
    std::string script = "CREATE TEMP TABLE copied AS SELECT * FROM run_field WHERE 0;";
    for (const int count : nulls)
        script += fmt::format(
            R"(INSERT INTO run(job, started, finished) SELECT job, started + 86400000, finished + 86400000
                   FROM run WHERE job = {0} ORDER BY id DESC LIMIT 1;
               DELETE FROM copied;
               INSERT INTO copied SELECT * FROM run_field
                   WHERE run = (SELECT MAX(id) FROM run WHERE job = {0} AND id < (SELECT MAX(id) FROM run));
               UPDATE copied SET run = (SELECT MAX(id) FROM run);
               UPDATE copied SET null_count = {1} WHERE field = {2};
               INSERT INTO run_field SELECT * FROM copied;
               CREATE TEMP TABLE tables AS SELECT * FROM run_table
                   WHERE run = (SELECT MAX(id) FROM run WHERE job = {0} AND id < (SELECT MAX(id) FROM run));
               UPDATE tables SET run = (SELECT MAX(id) FROM run);
               INSERT INTO run_table SELECT * FROM tables;
               DROP TABLE tables;)",
            sample.salesJob, count, sample.fields.at("customers/name"));
    runScript(sample.path, script);
}

/// The sample with eight runs of "Sales": null counts of customers.name 230, 229, 228, 231, 230, 400, 229, 232.
class AlertHistorySample : public SampleViewer {
  protected:
    void SetUp() override {
        SampleViewer::SetUp();
        addRules(m_sample);
        addRunsWithNulls(m_sample, {231, 230, 400, 229, 232});
        ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob));
    }
    [[nodiscard]] AlertDefinition nullsOfName() const {
        AlertDefinition alert;
        alert.table = m_sample.tables.at("customers");
        alert.field = m_sample.fields.at("customers/name");
        alert.metric = MetricId::NullCount;
        return alert;
    }
    /// The stored alert with that id, judged.
    [[nodiscard]] AlertState stateOf(int id) {
        for (AlertState& state : readAlertStates(*m_viewer, m_sample.salesJob))
            if (state.id == id)
                return std::move(state);
        throw std::runtime_error("no such alert");
    }
    /// Stores an alert of the user "ada".
    [[nodiscard]] AlertState store(const AlertDefinition& alert) {
        int id = -1;
        EXPECT_TRUE(m_viewer->createEditAlert(id, alert, "ada")) << m_viewer->getErrorString().str();
        return stateOf(id);
    }
};

} // namespace tavix::testing
