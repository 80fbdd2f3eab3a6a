#include "nav/CollectionRefresh.h"
#include "nav/TreeContents.h"
#include "support/RunScript.h"
#include "support/SampleViewer.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace tavix {
namespace {

// The tree as a user sees it with all nodes down to `depth` expanded.
std::string shown(TreeContents& contents, TreeNode& node, int depth, int level = 0) {
    std::string text;
    contents.Fetch(node);
    for (const auto& child : node.children) {
        const std::string count = countText(*child);
        text += std::string(static_cast<std::size_t>(level) * 2, ' ') + child->name +
                (count.empty() ? "" : " [" + count + "]") + "\n";
        if (depth > 1)
            text += shown(contents, *child, depth - 1, level + 1);
    }
    return text;
}

class TreeContentsOfSample : public testing::SampleViewer {
  protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(SampleViewer::SetUp());
        m_tables.Reset(m_viewer.get());
        m_collections.Reset(m_viewer.get());
    }

    TreeContents m_tables{NavigatorPage::Tables};
    TreeContents m_collections{NavigatorPage::Collections};
};

TEST_F(TreeContentsOfSample, TablesStandBelowTheirCatalogAndSchema) {
    const std::string text = shown(m_tables, m_tables.root(), 4);
    EXPECT_NE(std::string::npos, text.find("Warehouse ["));
    EXPECT_NE(std::string::npos, text.find("  crm\n    public\n      customers ["));
    EXPECT_NE(std::string::npos, text.find("  dbo\n    suppliers ["));
    EXPECT_NE(std::string::npos, text.find("\n  orders [1,000]\n"));
    // The count of a filtered table is the number of rows that pass.
    EXPECT_NE(std::string::npos, text.find("      german customers [120]\n"));
    EXPECT_NE(std::string::npos, text.find("\n  late orders [9]\n"));
    EXPECT_NE(std::string::npos, text.find("/data/files [1 table]\n  airports ["));
}

TEST_F(TreeContentsOfSample, NodesAreFetchedWhenTheyAreOpened) {
    m_tables.Fetch(m_tables.root());
    ASSERT_EQ(2U, m_tables.root().children.size());
    for (const auto& source : m_tables.root().children) {
        EXPECT_TRUE(source->mayHaveChildren);
        EXPECT_FALSE(source->fetched);
        EXPECT_TRUE(source->children.empty());
    }
}

TEST_F(TreeContentsOfSample, SelectionKnowsTheTableAndItsField) {
    TreeNode* table = m_tables.FindTable("Warehouse", "crm", "public", "german customers", 0);
    ASSERT_NE(nullptr, table);
    ReportSelection selection = selectionOf(*table);
    EXPECT_EQ(ReportSelection::Kind::Table, selection.kind);
    EXPECT_EQ(m_sample.tables.at("german customers"), selection.table.id);
    EXPECT_EQ(TableKind::Filter, selection.table.kind);
    EXPECT_EQ("german customers", selection.table.objectName);
    EXPECT_EQ("customers", selection.table.name);
    EXPECT_FALSE(selection.table.baseTable.empty());
    EXPECT_FALSE(selection.table.filter.empty());

    ASSERT_TRUE(m_tables.Fetch(*table));
    ASSERT_FALSE(table->children.empty());
    selection = selectionOf(*table->children.front());
    EXPECT_EQ(ReportSelection::Kind::Table, selection.kind);
    EXPECT_EQ(table->children.front()->id, selection.fieldId);
    EXPECT_EQ(ReportSelection::Kind::Nothing, selectionOf(*m_tables.root().children.front()).kind);
}

TEST_F(TreeContentsOfSample, FindTableIsExact) {
    EXPECT_NE(nullptr, m_tables.FindTable("Warehouse", "crm", "public", "customers", 0));
    EXPECT_NE(nullptr, m_tables.FindTable("Warehouse", "", "dbo", "suppliers", 0));
    EXPECT_NE(nullptr, m_tables.FindTable("Warehouse", "", "", "big orders", 0));
    EXPECT_NE(nullptr, m_tables.FindTable("/data/files", "", "", "airports", 4));
    EXPECT_EQ(nullptr, m_tables.FindTable("/data/files", "", "", "airports", 0));
    EXPECT_EQ(nullptr, m_tables.FindTable("warehouse", "crm", "public", "customers", 0));
    EXPECT_EQ(nullptr, m_tables.FindTable("Warehouse", "CRM", "public", "customers", 0));
    EXPECT_EQ(nullptr, m_tables.FindTable("Warehouse", "crm", "private", "customers", 0));
    EXPECT_EQ(nullptr, m_tables.FindTable("Warehouse", "crm", "public", "Customers", 0));
    EXPECT_EQ(nullptr, m_tables.FindTable("", "", "", "", 0));
}

// Names occur more than once, so that every comparison matters.
TEST_F(TreeContentsOfSample, FindTableWalksCatalogsAndSchemasInTheirOrder) {
    testing::runScript(m_sample.path, fmt::format(R"(
        CREATE TEMP TABLE made(catalog, schema, name, object);
        INSERT INTO made VALUES('a', 's', 't', ''), ('b', 's', 't', ''), ('b', '', 't', ''), ('', 's', 't', ''),
                               ('', 'b', 't', ''), ('', '', 't', 'shown as'), ('', '', 'shown as', '');
        INSERT INTO profiled_table(data_source, kind, catalog, schema, name, object_name)
            SELECT (SELECT id FROM data_source WHERE name = 'Warehouse'), CASE object WHEN '' THEN 'Y' ELSE 'S' END,
                   catalog, schema, name, object FROM made;
        INSERT INTO run_table(run, table_id, position, total_records, processed_records, damaged_records, fields,
                              query, filter, alternate_filter)
            SELECT {}, id, 100 + id, 0, 0, 0, 0, '', '', '' FROM profiled_table WHERE name IN ('t', 'shown as');)",
                                                  m_sample.salesRuns.back()));
    const auto where = [this](const char* first, const char* second, const char* table) -> std::string {
        const TreeNode* found = m_tables.FindTable("Warehouse", first, second, table, 0);
        if (!found)
            return "nothing";
        return found->table.catalog + "." + found->table.schema + "." + found->table.name + "." +
               found->table.objectName;
    };
    EXPECT_EQ("a.s.t.", where("a", "s", "t"));
    EXPECT_EQ("b.s.t.", where("b", "s", "t"));
    EXPECT_EQ(".s.t.", where("", "s", "t"));
    // The first qualifier names a catalog and the second one a schema.
    EXPECT_EQ("nothing", where("s", "", "t"));
    EXPECT_EQ(".b.t.", where("", "b", "t"));
    EXPECT_EQ("b..t.", where("b", "", "t"));
    EXPECT_EQ("nothing", where("a", "S", "t"));
    // A schema without a catalog matches any first qualifier.
    EXPECT_EQ(".s.t.", where("A", "s", "t"));
    // The displayed name counts, not the plain name of a query's table.
    EXPECT_EQ("nothing", where("", "", "t"));
    EXPECT_EQ("..t.shown as", where("", "", "shown as"));
}

TEST_F(TreeContentsOfSample, LoadedNamesAreFoundOnceAroundTheTree) {
    const auto next = [this](const TreeNode* from, bool skip, const std::string& name) -> const TreeNode* {
        return m_tables.FindLoaded(from, skip, [&name](const TreeNode& node) { return node.name == name; });
    };
    EXPECT_EQ(nullptr, next(nullptr, false, "customers"));
    TreeNode* customers = m_tables.FindTable("Warehouse", "crm", "public", "customers", 0);
    TreeNode* suppliers = m_tables.FindTable("Warehouse", "", "dbo", "suppliers", 0);
    ASSERT_TRUE(customers && suppliers);
    EXPECT_EQ(nullptr, next(nullptr, false, "id"));
    ASSERT_TRUE(m_tables.Fetch(*customers));
    ASSERT_TRUE(m_tables.Fetch(*suppliers));
    const TreeNode* first = next(nullptr, false, "id");
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(customers, first->parent);
    EXPECT_EQ(first, next(first, false, "id"));
    const TreeNode* second = next(first, true, "id");
    ASSERT_NE(nullptr, second);
    EXPECT_EQ(suppliers, second->parent);
    EXPECT_EQ(first, next(second, true, "id"));
    EXPECT_EQ(suppliers, next(suppliers, true, "suppliers"));
    EXPECT_EQ(nullptr, next(second, true, "nobody"));
    EXPECT_EQ(nullptr, next(nullptr, true, "nobody"));
}

TEST_F(TreeContentsOfSample, APathIsFoundAgainInAnotherRunWhereTheObjectExists) {
    TreeNode* late = m_tables.FindTable("Warehouse", "", "", "late orders", 0);
    TreeNode* customers = m_tables.FindTable("Warehouse", "crm", "public", "customers", 0);
    ASSERT_TRUE(late && customers);
    const TreePath latePath = TreeContents::pathOf(*late);
    const TreePath customersPath = TreeContents::pathOf(*customers);

    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns.front()));
    m_tables.Reset(m_viewer.get());
    EXPECT_EQ(nullptr, m_tables.Find(latePath));
    TreeNode* found = m_tables.Find(customersPath);
    ASSERT_NE(nullptr, found);
    EXPECT_EQ(m_sample.tables.at("customers"), found->id);
}

TEST_F(TreeContentsOfSample, CollectionsTellTheirFields) {
    const std::string text = shown(m_collections, m_collections.root(), 2);
    EXPECT_NE(std::string::npos, text.find("Amounts ["));
    EXPECT_NE(std::string::npos, text.find("Customer keys ["));
    ASSERT_FALSE(m_collections.root().children.empty());
    const ReportSelection selection = selectionOf(*m_collections.root().children.front());
    EXPECT_EQ(ReportSelection::Kind::Collection, selection.kind);
    EXPECT_EQ(m_sample.collections.at(selection.name), selection.id);
}

TEST_F(TreeContentsOfSample, ARepositoryThatIsGoneIsAnErrorAndNoTree) {
    m_tables.Fetch(m_tables.root());
    m_viewer->close();
    EXPECT_FALSE(m_tables.Fetch(*m_tables.root().children.front()));
    EXPECT_FALSE(m_tables.GetErrorText().empty());
    EXPECT_TRUE(m_tables.root().children.front()->children.empty());
    EXPECT_FALSE(refreshCollectionsOfAllTables(*m_viewer).ok());
}

TEST(TreeContents, WithoutASessionThereIsNothing) {
    TreeContents contents(NavigatorPage::Tables);
    EXPECT_TRUE(contents.Fetch(contents.root()));
    EXPECT_TRUE(contents.root().children.empty());
    EXPECT_EQ(nullptr, contents.FindFirstTable());
}

} // namespace
} // namespace tavix
