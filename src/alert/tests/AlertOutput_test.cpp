#include "alert/AlertOutput.h"
#include "alert/tests/GivenAlerts.h"
#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "support/ReadWorksheet.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

namespace tavix {
namespace {

using testing::GivenAlerts;
using testing::priceAlert;

std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<AlertState> twoAlerts() {
    std::vector<AlertState> alerts;
    alerts.push_back(priceAlert(MetricId::Mean, {.comparison = AlertComparison::Less, .value1 = 0.1}, 7));
    AlertState rule;
    rule.dataSource = "Sales";
    rule.catalog = "ignored";
    rule.tableName = "orders";
    rule.objectName = rule.table = "late orders";
    rule.typeCode = "br";
    rule.subject = AlertSubject::BusinessRule;
    rule.input = "Paid, \"really\"";
    rule.description = "Says \"unpaid\"";
    rule.rule = AlertRule{.comparison = AlertComparison::Outside, .ofFailedPercent = true, .value1 = 2, .value2 = 1e20};
    rule.sentence = alertSentence(rule.subject, *rule.rule, {}, rule.input);
    alerts.push_back(rule);
    alerts.push_back(rule);
    alerts.back().rule.reset();
    alerts.back().description = "Broken";
    alerts.back().sentence = "Unable to retrieve alert properties";
    return alerts;
}

class AlertOutput : public ::testing::Test {
  protected:
    testing::TempFolder m_folder;
    testing::ScriptedMessages m_messages;
    GivenAlerts m_rows{twoAlerts()};
};

TEST_F(AlertOutput, TextsAreQuotedAndTheirQuotesStayAsTheyAre) {
    const std::string path = m_folder.file("alerts.csv");
    ASSERT_TRUE(m_rows.Sort(0, false));
    ASSERT_TRUE(saveAlerts(m_rows, path, m_messages));
    EXPECT_EQ("\"Description\",\"Type\",\"Input\",\"Data Source/Catalog/Schema/Table\",\"Alert\"\n"
              "\"Broken\",\"Business Rule\",\"Paid, \"really\"\",\"Sales.late orders\",\"Unable to retrieve alert "
              "properties\"\n"
              "\"Mean for field price is less than 0.1\",\"Standard Metric\",\"price\",\"Sales.north.public.orders\","
              "\"Mean for field price is less than 0.1\"\n"
              "\"Says \"unpaid\"\",\"Business Rule\",\"Paid, \"really\"\",\"Sales.late orders\",\"Percentage of failed "
              "rows for business rule Paid, \"really\" is outside the range 2 to 1e+20\"\n",
              contents(path));
}

TEST_F(AlertOutput, AWorksheetHasItsOwnHeadingOfTheTable) {
    const std::string path = m_folder.file("alerts.xls");
    ASSERT_TRUE(m_rows.Sort(0, false));
    ASSERT_TRUE(saveAlerts(m_rows, path, m_messages));
    EXPECT_EQ("#Alerts 4\n"
              "TDescription|TType|TInput|TDataSource/Catalog/Schema/Table|TAlert\n"
              "TBroken|TBusiness Rule|TPaid, \"really\"|TSales.late orders|TUnable to retrieve alert properties\n"
              "TMean for field price is less than 0.1|TStandard Metric|Tprice|TSales.north.public.orders|"
              "TMean for field price is less than 0.1\n"
              "TSays \"unpaid\"|TBusiness Rule|TPaid, \"really\"|TSales.late orders|TPercentage of failed rows for "
              "business rule Paid, \"really\" is outside the range 2 to 1e+20\n",
              testing::readWorksheet(path));
}

TEST_F(AlertOutput, AFileIsReplacedOnlyWhenTheUserAgrees) {
    const std::string path = m_folder.file("alerts.txt");
    std::ofstream(path) << "kept";
    const std::string question = path + " already exists.\nDo you want to replace it?";
    m_messages.expectAsk(question, "Overwrite", Messages::Answer::No);
    EXPECT_FALSE(saveAlerts(m_rows, path, m_messages));
    EXPECT_EQ("kept", contents(path));
    m_messages.expectAsk(question, "Overwrite", Messages::Answer::Yes);
    EXPECT_TRUE(saveAlerts(m_rows, path, m_messages));
    EXPECT_NE("kept", contents(path));
    const std::string nowhere = m_folder.file("none/alerts.txt");
    m_messages.expectWarn("Unable to open or create file " + nowhere, "File Error");
    EXPECT_FALSE(saveAlerts(m_rows, nowhere, m_messages));
}

} // namespace
} // namespace tavix
