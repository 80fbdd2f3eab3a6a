#include "alert/CAlertsFilter.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

AlertState alertOf(const char* table, AlertSubject subject = AlertSubject::StandardMetric) {
    AlertState alert;
    alert.dataSource = "Sales";
    alert.catalog = "north";
    alert.table = table;
    alert.subject = subject;
    return alert;
}

TEST(CAlertsFilter, SaysItsCriteriaInTheirOrder) {
    CAlertsFilter filter;
    EXPECT_EQ("Current filter: None", filter.Text());
    filter.Set(CAlertsFilter::Type, "Business Rule");
    EXPECT_EQ("Current filter: Type = Business Rule", filter.Text());
    filter.Set(CAlertsFilter::Schema, "public");
    filter.Set(CAlertsFilter::Table, "orders");
    filter.Set(CAlertsFilter::Catalog, "north");
    EXPECT_EQ("Current filter: Catalog = north, Schema = public, Table = orders, Type = Business Rule", filter.Text());
    filter.Set(CAlertsFilter::DataSource, "Sales");
    EXPECT_EQ("Current filter: DSN = Sales, Catalog = north, Schema = public, Table = orders, Type = Business Rule",
              filter.Text());
}

TEST(CAlertsFilter, AcceptsAlertsThatEqualEveryCriterion) {
    CAlertsFilter filter;
    const AlertState orders = alertOf("orders");
    const AlertState rule = alertOf("orders", AlertSubject::BusinessRule);
    EXPECT_TRUE(filter.Accepts(orders));
    filter.Set(CAlertsFilter::Table, "Orders");
    EXPECT_FALSE(filter.Accepts(orders)) << "another case is another table";
    filter.Set(CAlertsFilter::Table, "orders");
    EXPECT_TRUE(filter.Accepts(orders));
    EXPECT_TRUE(filter.Accepts(rule));
    filter.Set(CAlertsFilter::Type, "Business Rule");
    EXPECT_FALSE(filter.Accepts(orders));
    EXPECT_TRUE(filter.Accepts(rule));
    filter.Set(CAlertsFilter::Schema, "public");
    EXPECT_FALSE(filter.Accepts(rule)) << "the alert has no schema";
}

TEST(CAlertsFilter, OffersTheValuesOfTheAlertsOnce) {
    const std::vector<AlertState> alerts = {alertOf("returns"), alertOf("orders", AlertSubject::CustomMetric),
                                            alertOf("orders")};
    EXPECT_THAT(CAlertsFilter::ValuesOf(CAlertsFilter::Table, alerts), ElementsAre("orders", "returns"));
    EXPECT_THAT(CAlertsFilter::ValuesOf(CAlertsFilter::Schema, alerts), IsEmpty());
    EXPECT_THAT(CAlertsFilter::ValuesOf(CAlertsFilter::Type, alerts), ElementsAre("Custom Metric", "Standard Metric"));
}

} // namespace
} // namespace tavix
