#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "doc/CTavixDoc.h"
#include "doc/CollectionMembers.h"
#include "support/RunScript.h"
#include "support/SampleRepository.h"

#include <gmock/gmock.h>

#include <array>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class Hints final : public DocumentFrame {
  public:
    void SetLoading(bool) override {}
    void Broadcast(RefreshHint hint) override { seen.push_back(hint); }
    std::vector<RefreshHint> seen;
};

class CollectionMembers : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(m_doc.OpenReport(m_sample.path, m_sample.salesJob));
        m_hints.seen.clear();
    }
    [[nodiscard]] int field(const std::string& name) const { return m_sample.fields.at(name); }
    [[nodiscard]] std::vector<std::string> collectionsOf(const std::string& table, const std::string& name) {
        return m_doc.GetCollectionsOfField(m_sample.tables.at(table), field(table + "/" + name));
    }

    testing::TempFolder m_folder;
    testing::SampleRepository m_sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    std::unique_ptr<SettingsStore> m_settings = makeMemorySettings();
    testing::ScriptedMessages m_messages;
    Hints m_hints;
    CTavixDoc m_doc{m_hints, *m_settings, m_messages};
    int m_amounts = m_sample.collections.at("Amounts");
};

TEST_F(CollectionMembers, AFieldIsAddedAndEverybodyHears) {
    EXPECT_THAT(collectionChoices(m_doc), ElementsAre(Pair(m_amounts, "Amounts"),
                                                      Pair(m_sample.collections.at("Customer keys"), "Customer keys")));
    EXPECT_THAT(collectionsOf("customers", "name"), IsEmpty());
    const std::array<int, 2> fields{field("customers/name"), field("customers/city")};
    EXPECT_EQ(2, addFieldsToCollection(m_doc, m_amounts, fields));
    EXPECT_THAT(collectionsOf("customers", "name"), ElementsAre("Amounts"));
    EXPECT_THAT(collectionsOf("customers", "city"), ElementsAre("Amounts"));
    EXPECT_THAT(m_hints.seen, ElementsAre(RefreshHint::CollectionsRefreshed));
}

TEST_F(CollectionMembers, AFieldThatIsTurnedDownIsToldAndChangesNothing) {
    const int balance = field("customers/balance");
    m_messages.expectWarn("Unable to create field collection mapping:\n\nThe collection has this field already.");
    EXPECT_EQ(0, addFieldsToCollection(m_doc, m_amounts, {&balance, 1}));
    EXPECT_THAT(m_hints.seen, IsEmpty());

    // The fields added before the failure stay, and the hint is broadcast.
    const std::array<int, 3> fields{field("customers/name"), balance, field("customers/city")};
    m_messages.expectWarn("Unable to create field collection mapping:\n\nThe collection has this field already.");
    EXPECT_EQ(1, addFieldsToCollection(m_doc, m_amounts, fields));
    EXPECT_THAT(m_hints.seen, ElementsAre(RefreshHint::CollectionsRefreshed));
    EXPECT_THAT(collectionsOf("customers", "city"), IsEmpty());
}

TEST_F(CollectionMembers, WithoutASessionOrAFieldNothingHappens) {
    EXPECT_EQ(0, addFieldsToCollection(m_doc, m_amounts, {}));
    m_doc.Clear();
    const int name = field("customers/name");
    m_hints.seen.clear();
    EXPECT_EQ(0, addFieldsToCollection(m_doc, m_amounts, {&name, 1}));
    EXPECT_THAT(collectionChoices(m_doc), IsEmpty());
    EXPECT_THAT(m_hints.seen, IsEmpty());
}

TEST_F(CollectionMembers, CollectionsThatCannotBeReadAreNoChoices) {
    testing::runScript(m_sample.path, "PRAGMA foreign_keys = OFF; DROP TABLE collection;");
    EXPECT_THAT(collectionChoices(m_doc), IsEmpty());
}

} // namespace
} // namespace tavix
