#include "base/AlertProperties.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace tavix {
namespace {

TEST(AlertProperties, GiveBackEveryRule) {
    for (const AlertSubject subject :
         {AlertSubject::StandardMetric, AlertSubject::CustomMetric, AlertSubject::BusinessRule})
        for (int comparison = 0; comparison <= static_cast<int>(AlertComparison::ChangedByPercent); ++comparison)
            for (const AlertReference reference :
                 {AlertReference::Mean, AlertReference::Median, AlertReference::SameWeekday}) {
                const AlertRule rule{.comparison = static_cast<AlertComparison>(comparison),
                                     .ofFailedPercent = subject == AlertSubject::BusinessRule && comparison % 2 == 0,
                                     .value1 = -0.1,
                                     .value2 = 1e300,
                                     .runs = 12,
                                     .level = AlertLevel::Error,
                                     .reference = reference};
                const AlertDefinition definition{.subject = subject, .field = 7, .rule = rule, .description = {}};
                EXPECT_EQ(readAlertRule(subject, alertProperties(definition, "2", 5)), rule) << comparison;
            }
}

TEST(AlertProperties, AreWrittenAsTextsWithoutALocale) {
    const AlertDefinition records{.table = 3, .rule = {.value1 = 0.1, .runs = 1000}, .description = {}};
    const AlertProperties expected{{"METRIC", "0"},      {"COMPARE", "0"}, {"VALUE1", "0.1"},
                                   {"VALUE2", "0"},      {"JOB", "12"},    {"RUNS", "1000"},
                                   {"LEVEL", "warning"}, {"RECORDS", "1"}, {"REFERENCE", "mean"}};
    EXPECT_EQ(alertProperties(records, "0", 12), expected);
}

TEST(AlertProperties, ThatAreMissingOrGarbageHaveTheirDefaults) {
    const AlertRule plain;
    EXPECT_EQ(readAlertRule(AlertSubject::StandardMetric, {}), plain);
    EXPECT_EQ(readAlertRule(AlertSubject::StandardMetric, {{"COMPARE", "x"},
                                                           {"VALUE1", "1,5"},
                                                           {"VALUE2", ""},
                                                           {"RUNS", "many"},
                                                           {"LEVEL", "ERROR"},
                                                           {"REFERENCE", "mode"},
                                                           {"compare", "3"}}),
              plain);
    EXPECT_EQ(readAlertRule(AlertSubject::CustomMetric, {{"RUNS", "-4"}})->runs, 1);
    EXPECT_EQ(readAlertRule(AlertSubject::CustomMetric, {{"RUNS", "99999999999999999"}})->runs, 100'000);
    for (const char* code : {"7", "-1", "99999999999999999999", "-99999999999999999999"})
        EXPECT_FALSE(readAlertRule(AlertSubject::StandardMetric, {{"COMPARE", code}})) << code;
    EXPECT_TRUE(readAlertRule(AlertSubject::BusinessRule, {{"COMPARE", "7 "}})->ofFailedPercent);
}

TEST(AlertProperties, AreCheckedBeforeTheyAreStored) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto said = [](const AlertRule& rule) {
        const Status checked = checkAlertRule(rule);
        return checked ? std::string() : checked.error().text;
    };
    EXPECT_EQ(said({.value1 = -1}), "");
    EXPECT_EQ(said({.comparison = AlertComparison::Inside, .value1 = 2, .value2 = 2, .runs = 1000}), "");
    EXPECT_EQ(said({.value2 = nan}), "The limit of an alert must be a number.");
    EXPECT_EQ(said({.comparison = AlertComparison::ChangedByPercent, .value1 = -0.5}),
              "A change is measured up and down; its limit must not be below 0.");
    EXPECT_EQ(said({.runs = 1001}), "A change is measured against 1 to 1000 earlier runs.");
}

} // namespace
} // namespace tavix
