#include "access/PrViewer.h"
#include "base/tests/TempFolder.h"
#include "nav/SelectionInformation.h"
#include "nav/TreeContents.h"
#include "support/SampleRepository.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

TEST(SelectionInformation, ATableAFieldAndAFieldOfACollectionHaveTheirText) {
    testing::TempFolder folder;
    const auto sample = testing::SampleRepository::build(folder.file("sample.tavix"));
    const PrViewer::Handle viewer = PrViewer::create();
    ASSERT_TRUE(viewer->init(sample.path));
    ASSERT_TRUE(viewer->setCurrentJobSetup(sample.salesJob));
    TreeContents tree(NavigatorPage::Tables);
    tree.Reset(viewer.get());
    TreeNode* node = tree.FindTable("Warehouse", "crm", "public", "customers", 0);
    ASSERT_TRUE(node);

    SelectionInformation information;
    ReportSelection selection = selectionOf(*node);
    auto text = information.TextOf(*viewer, selection);
    ASSERT_TRUE(text.ok());
    EXPECT_THAT(*text, ::testing::StartsWith("Name: customers\r\nType: Table\r\nSchema: public\r\nCatalog: crm\r\n"));

    selection.fieldId = sample.fields.at("customers/balance");
    text = information.TextOf(*viewer, selection);
    ASSERT_TRUE(text.ok());
    EXPECT_THAT(*text, ::testing::StartsWith("Field: balance\r\nDefined type: text\r\nDefined length: \r\n"
                                             "Parent name: customers\r\nParent type: Table\r\n"));
    const std::string ofTheTree = *text;

    ReportSelection collected;
    collected.kind = ReportSelection::Kind::Collection;
    collected.id = sample.collections.at("Amounts");
    text = information.TextOf(*viewer, collected);
    ASSERT_TRUE(text.ok());
    EXPECT_EQ("", *text);
    collected.fieldId = selection.fieldId;
    text = information.TextOf(*viewer, collected);
    ASSERT_TRUE(text.ok()) << text.error().text;
    EXPECT_EQ(ofTheTree, *text);

    selection.fieldId = 4711;
    EXPECT_FALSE(information.TextOf(*viewer, selection).ok());
    EXPECT_FALSE(information.TextOf(*viewer, {ReportSelection::Kind::Collection, {}, 1, "", 4711, ""}).ok());
    information.Forget();
    viewer->close();
    selection.fieldId = sample.fields.at("customers/balance");
    EXPECT_FALSE(information.TextOf(*viewer, selection).ok()) << "the session is closed";
}

// A field of another report in a collection is described with the table of its own report.
TEST(SelectionInformation, AQueryAndAFilterOfAnotherReportHaveTheirText) {
    testing::TempFolder folder;
    const auto sample = testing::SampleRepository::build(folder.file("sample.tavix"));
    const PrViewer::Handle viewer = PrViewer::create();
    ASSERT_TRUE(viewer->init(sample.path));
    const auto textOf = [&](int job, const char* collection, const char* field) {
        EXPECT_TRUE(viewer->setCurrentJobSetup(job));
        ReportSelection collected;
        collected.kind = ReportSelection::Kind::Collection;
        collected.id = sample.collections.at(collection);
        collected.fieldId = sample.fields.at(field);
        const auto text = SelectionInformation().TextOf(*viewer, collected);
        return text ? *text : text.error().text;
    };
    const std::string query = textOf(sample.inventoryJob, "Amounts", "big orders/amount");
    EXPECT_EQ("Field: amount\r\nDefined type: text\r\nDefined length: \r\nParent name: big orders\r\n"
              "Parent type: SQL query\r\nData source: Warehouse\r\nTotal records: 50\r\nQuery:\r\n"
              "SELECT *\r\nFROM orders\r\nWHERE amount > 100\r\n",
              query);
    EXPECT_EQ(textOf(sample.salesJob, "Amounts", "big orders/amount"), query);
    const std::string filter = textOf(sample.inventoryJob, "Customer keys", "german customers/id");
    EXPECT_THAT(filter, ::testing::EndsWith("Parent type: Filter (based on crm.public.customers)\r\n"
                                            "Data source: Warehouse\r\nTotal records: 1000\r\n"
                                            "Filtered records: 120\r\nFilter:\r\ncountry = 'DE'\r\n"));
    EXPECT_EQ(textOf(sample.salesJob, "Customer keys", "german customers/id"), filter);
    EXPECT_TRUE(viewer->close());
}

} // namespace
} // namespace tavix
