// The texts above the tabs, and the placement of detached views.
#include "tabs/SubjectText.h"
#include "tabs/TearOffPlacement.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

ReportSubject tableSubject(TableKind kind, std::int64_t total, std::int64_t processed) {
    ReportSubject subject;
    subject.selection.kind = ReportSelection::Kind::Table;
    subject.table = {7, kind, "Warehouse", "crm", "public", "orders", "", "", "", "", total, processed, 0, 0, false};
    subject.table.isSample = kind != TableKind::Filter && processed >= 0 && processed < total;
    subject.selection.table = subject.table;
    return subject;
}

ReportSubject fieldSubject(const char* typeCode, KvbString distinct, KvbString nulls) {
    ReportSubject subject = tableSubject(TableKind::Plain, 1000, 1000);
    subject.selection.fieldId = 3;
    subject.selection.fieldName = "as selected";
    FieldRecord field;
    field.id = 3;
    field.name = "amount";
    field.typeCode = typeCode;
    field.metrics[static_cast<std::size_t>(MetricId::UniqueCount)] = std::move(distinct);
    field.metrics[static_cast<std::size_t>(MetricId::NullCount)] = std::move(nulls);
    subject.field = std::move(field);
    return subject;
}

TEST(SubjectText, ATableSaysHowManyRecordsThereAreAndHowManyWereTaken) {
    const struct {
        TableKind kind;
        std::int64_t total;
        std::int64_t processed;
        const char* text;
    } cases[] = {
        {TableKind::Plain, 0, 0, "0 records"},
        {TableKind::Plain, 1, 1, "1 record"},
        {TableKind::Plain, 1'234'567, 1'234'567, "1,234,567 records"},
        {TableKind::Plain, 1000, 100, "1,000 records, 100 sampled"},
        {TableKind::Filter, 1000, 120, "120 of 1,000 records pass"},
        {TableKind::Filter, 1, 1, "1 of 1 record passes"},
        {TableKind::Filter, 1000, 0, "0 of 1,000 records pass"},
        {TableKind::Query, 1000, 0, "1,000 records, 0 sampled"},
        {TableKind::Plain, 1000, -1, "1,000 records"},
        {TableKind::Plain, -1, 100, ""},
    };
    for (const auto& each : cases)
        EXPECT_EQ(each.text, detailOf(tableSubject(each.kind, each.total, each.processed)));
    ReportSubject query = tableSubject(TableKind::Query, 50, 50);
    EXPECT_EQ("orders", titleOf(query));
    query.table.objectName = "big orders";
    EXPECT_EQ("big orders", titleOf(query));
}

TEST(SubjectText, AFieldSaysWhereItComesFromAndWhatItsSharesAreOf) {
    EXPECT_EQ("amount", titleOf(fieldSubject("R", "3", "0")));
    const struct {
        ReportSubject subject;
        const char* text;
    } cases[] = {
        {fieldSubject("R", "3", "0"), "orders  ·  real  ·  1,000 records  ·  3 distinct values"},
        {fieldSubject("S", "1", "1"), "orders  ·  text  ·  1,000 records  ·  1 distinct value  ·  1 null"},
        {fieldSubject("", "0", "1000"), "orders  ·  1,000 records  ·  0 distinct values  ·  1,000 nulls"},
        {fieldSubject("D", KvbString(), KvbString()), "orders  ·  date  ·  1,000 records"},
        {fieldSubject("?", "many", "-5"), "orders  ·  1,000 records"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(each.text, detailOf(each.subject));

    // A field that is missing from the run keeps the name of the selection; a field of another report has no size.
    ReportSubject gone = fieldSubject("R", "3", "0");
    gone.field.reset();
    EXPECT_EQ("as selected", titleOf(gone));
    EXPECT_EQ("orders", detailOf(gone));
    ReportSubject foreign = fieldSubject("I", "3", "0");
    foreign.table.totalRecords = foreign.table.processedRecords = -1;
    EXPECT_EQ("orders  ·  integer  ·  3 distinct values", detailOf(foreign));
    foreign.table = {};
    foreign.table.totalRecords = -1;
    EXPECT_EQ("integer  ·  3 distinct values", detailOf(foreign));
}

TEST(SubjectText, ACollectionHasItsNameAndNothingElse) {
    ReportSubject collection;
    collection.selection.kind = ReportSelection::Kind::Collection;
    collection.selection.id = 2;
    collection.selection.name = "Amounts";
    EXPECT_EQ("Amounts", titleOf(collection));
    EXPECT_EQ("", detailOf(collection));
    collection.selection.fieldId = 3;
    collection.selection.fieldName = "balance";
    EXPECT_EQ("balance", titleOf(collection));
}

TEST(TearOffPlacement, StaysInsideTheRightAndTheUpperEdgeAndKeepsItsSize) {
    constexpr ScreenRect kDesktop = {0, 0, 1920, 1080};
    constexpr ScreenRect kSecondScreen = {-1280, -200, 3200, 1280};
    const struct {
        ScreenRect view;
        ScreenRect desktop;
        ScreenRect placed;
    } cases[] = {
        {{300, 200, 800, 600}, kDesktop, {350, 150, 800, 600}},
        {{0, 1000, 800, 600}, kDesktop, {50, 950, 800, 600}},
        {{1070, 200, 800, 600}, kDesktop, {1120, 150, 800, 600}},
        {{1071, 200, 800, 600}, kDesktop, {1120, 150, 800, 600}},
        {{1120, 0, 800, 600}, kDesktop, {1120, 0, 800, 600}},
        {{300, 50, 800, 600}, kDesktop, {350, 0, 800, 600}},
        {{300, 49, 800, 600}, kDesktop, {350, 0, 800, 600}},
        {{-1280, -190, 800, 600}, kSecondScreen, {-1230, -200, 800, 600}},
        {{1900, 100, 800, 600}, kSecondScreen, {1120, 50, 800, 600}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(each.placed, placeTearOff(each.view, each.desktop)) << each.view.x << ", " << each.view.y;
}

} // namespace
} // namespace tavix
