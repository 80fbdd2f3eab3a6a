#include "base/tests/TempFolder.h"
#include "repository/RuleStore.h"
#include "repository/RunDeletion.h"
#include "repository/RunWriter.h"
#include "repository/Schema.h"
#include "sql/tests/StoredRows.h"

#include <gtest/gtest.h>

#include <string>

namespace tavix::repository {
namespace {

using testing::storedRows;

class RuleStore : public ::testing::Test {
  protected:
    std::unique_ptr<RunWriter> begin() {
        auto writer = RunWriter::begin(m_path, {"Job", "", "", {}});
        EXPECT_TRUE(writer) << writer.error().text;
        TableFacts table;
        table.name = "t";
        m_table = *(*writer)->addTable(table);
        for (const char* name : {"id", "x"}) {
            FieldFacts field;
            field.name = name;
            field.ordinal = name[0] == 'i' ? 1 : 2;
            EXPECT_TRUE((*writer)->addField(m_table, field));
        }
        return std::move(*writer);
    }

    testing::TempFolder m_folder;
    std::string m_path = m_folder.file("r.tavix");
    int m_table = -1;
};

BusinessRuleFacts sampleRule() {
    BusinessRuleFacts rule{"Positive", "`x` > 0", {"x"}, 10, 3, 1, {"id", "x"}, 1, {}};
    rule.log = {{2, {"a\"\n", KvbString()}}, {7, {"", "\u00E4"}}};
    return rule;
}

TEST_F(RuleStore, RunsShareTheIdentityAndKeepTheirFigures) {
    for (int run = 1; run <= 2; ++run) {
        auto writer = begin();
        CustomMetricFacts sum{"Sum", "total", false, "sum", "`x` * 2", {{"x", {}}}, 12.5 * run, 9, 1};
        CustomMetricFacts ratio{"Ratio", "Ratio", true, "metric", "`x:Mean`", {{"x", MetricId::Mean}}, {}, 0, 0};
        ASSERT_TRUE(writer->addCustomMetric(m_table, sum));
        ASSERT_TRUE(writer->addCustomMetric(m_table, ratio));
        ASSERT_TRUE(writer->addBusinessRule(m_table, sampleRule()));
        ASSERT_TRUE(writer->commit({}));
    }
    EXPECT_EQ(storedRows(m_path,
                         "SELECT run, metric_key, metric, output_name, kind, figure, expression, value, used_rows, "
                         "error_rows FROM v_custom_metrics WHERE table_name = 't' ORDER BY run, metric_key"),
              "1|M1|Sum|total|rows|sum|`x` * 2|12.5|9|1\n1|M2|Ratio|Ratio|metrics|metric|`x:Mean`|NULL|NULL|0\n"
              "2|M1|Sum|total|rows|sum|`x` * 2|25.0|9|1\n2|M2|Ratio|Ratio|metrics|metric|`x:Mean`|NULL|NULL|0\n");
    EXPECT_EQ(storedRows(m_path, "SELECT run, rule_key, rule, condition, checked_rows, failed_rows, failed_percent, "
                                 "error_rows, logged_rows FROM v_business_rules"),
              "1|B1|Positive|`x` > 0|10|3|30.0|1|2\n2|B1|Positive|`x` > 0|10|3|30.0|1|2\n");
    EXPECT_EQ(storedRows(m_path,
                         "SELECT position, record, json_extract(column_names, '$[0]'), row_values FROM v_rule_rows "
                         "WHERE run = 2"),
              "0|2|id|[\"a\\\"\\n\",null]\n1|7|id|[\"\",\"\u00E4\"]\n");
    const std::vector<KvbString> expected = {"a\"\n", KvbString()};
    EXPECT_EQ(*readTextList(R"(["a\"\n",null])"), expected);
    for (const char* damaged : {"", "{}", "[1]", "[\"a\"", "[[]]"})
        EXPECT_FALSE(readTextList(damaged)) << damaged;
    {
        auto connection = openRepository(m_path, sql::OpenMode::Write);
        ASSERT_TRUE(connection && deleteRuns(**connection, 1, 1, 1));
    }
    for (const char* table : {"run_custom_metric", "custom_metric_input", "run_rule", "rule_input", "rule_row"}) {
        const std::string count = "SELECT count(*) FROM " + std::string(table);
        EXPECT_EQ(storedRows(m_path, count + " WHERE run = 1"), "0\n") << table;
        EXPECT_NE(storedRows(m_path, count + " WHERE run = 2"), "0\n") << table;
    }
}

TEST_F(RuleStore, WhatDoesNotFitTheTableEndsTheRun) {
    const auto failed = [&](auto add) {
        auto writer = begin();
        EXPECT_FALSE(add(*writer));
        EXPECT_FALSE(writer->commit({}));
    };
    failed([&](RunWriter& w) { return w.addBusinessRule(m_table + 1, sampleRule()); });
    failed([&](RunWriter& w) {
        BusinessRuleFacts rule = sampleRule();
        rule.inputs = {"y"};
        return w.addBusinessRule(m_table, rule);
    });
    failed([&](RunWriter& w) {
        CustomMetricFacts metric{"M", "M", false, "sum", "`y`", {{"y", {}}}, {}, 0, 0};
        return w.addCustomMetric(m_table, metric);
    });
}

TEST_F(RuleStore, AVersion1FileIsReadAsItIsAndBroughtUpToDateByTheNextRun) {
    {
        auto connection = sql::Connection::openFile(m_path, sql::OpenMode::Create);
        ASSERT_TRUE(connection && prepareSchema(**connection, sql::OpenMode::Create, schemaSteps().first(1)));
        ASSERT_TRUE((*connection)
                        ->execute("INSERT INTO job(id, name, created) VALUES(1, 'Job', 0);"
                                  "INSERT INTO run(id, job, started, finished) VALUES(1, 1, 0, 0);"
                                  "INSERT INTO data_source VALUES(1, '', 4);"
                                  "INSERT INTO profiled_table VALUES(1, 1, '', '', 't', '', 'Y');"
                                  "INSERT INTO run_table(run, position, table_id, total_records, processed_records, "
                                  "damaged_records, query, filter, alternate_filter) VALUES(1, 1, 1, 5, 5, 0, '', '', "
                                  "'')"));
    }
    ASSERT_TRUE(openRepository(m_path, sql::OpenMode::Read));
    EXPECT_EQ(storedRows(m_path, "PRAGMA user_version"), "1\n");
    auto writer = begin();
    EXPECT_EQ(m_table, 1) << "the table that was there";
    ASSERT_TRUE(writer->addBusinessRule(m_table, sampleRule()));
    ASSERT_TRUE(writer->commit({}));
    EXPECT_EQ(storedRows(m_path, "PRAGMA user_version"), std::to_string(schemaSteps().size()) + "\n");
    EXPECT_EQ(storedRows(m_path, "SELECT run, total_records FROM v_tables"), "1|5\n2|0\n");
    EXPECT_EQ(storedRows(m_path, "SELECT run, failed_rows FROM v_business_rules"), "2|3\n");
    EXPECT_EQ(storedRows(m_path, "SELECT * FROM pragma_foreign_key_check"), "");
}

} // namespace
} // namespace tavix::repository
