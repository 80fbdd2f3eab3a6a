#include "access/Layouts.h"
#include "access/tests/PrViewerFixture.h"
#include "base/LibraryDate.h"
#include "repository/RunWriter.h"
#include "support/RunScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavix {
namespace {

using tavix::testing::PrViewerTest;
using tavix::testing::rowsOf;
using tavix::testing::SampleRepository;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(PrViewerTest, CollectionsShowTheCurrentRunOrTheLatestThatHasTheField) {
    int keys = m_sample.collections.at("Customer keys");
    auto list = read(m_viewer->getGlobalCollections());
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[1], std::to_string(keys) + "|Customer keys|Whatever names a customer|3");
    auto fields = m_viewer->getGlobalCollFieldListPKR(keys);
    ASSERT_TRUE(fields && fields->next());
    EXPECT_EQ(fields->getColumnValue(layout::SourceDsn), KvbString("Warehouse"));
    EXPECT_EQ(fields->getColumnValue(layout::SourceCatalog), KvbString("crm"));
    EXPECT_EQ(fields->getColumnInt(layout::kCollectionFieldListPkrMetrics), 1000);
    ASSERT_TRUE(fields->next());
    EXPECT_EQ(fields->getColumnInt(layout::CollectionPkrKeyAnalyses), 1);
    fields.reset();

    // Another report does not have these fields; their latest run has.
    ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.inventoryJob));
    auto plain = m_viewer->getGlobalCollFieldList(keys);
    ASSERT_TRUE(plain && plain->next());
    EXPECT_EQ(plain->getColumnInt(layout::kCollectionFieldListMetrics), 1000);
    expectFailure(!m_viewer->getGlobalCollFieldList(99), "There is no collection with the number 99.");

    EXPECT_EQ(ids(m_viewer->getGlobalCollForTable(table("customers"))).size(), 2U);
    int city = field("customers/city");
    ASSERT_TRUE(m_viewer->createGlobalCollFieldMapping(keys, city)) << error();
    EXPECT_EQ(ids(m_viewer->getGlobalCollFieldList(keys)).back(), city);
    expectFailure(!m_viewer->createGlobalCollFieldMapping(keys, city), "The collection has this field already.");
    expectFailure(!m_viewer->createGlobalCollFieldMapping(keys, 999), "There is no field with the number 999.");
}

TEST_F(PrViewerTest, RefreshingACollectionDropsFieldsThatNoRunHas) {
    int keys = m_sample.collections.at("Customer keys");
    int days = field("late orders/days");
    ASSERT_TRUE(m_viewer->createGlobalCollFieldMapping(keys, days));
    ASSERT_TRUE(m_viewer->refreshGlobalCollForTable(table("late orders")));
    EXPECT_EQ(ids(m_viewer->getGlobalCollFieldList(keys)).size(), 4U);
    ASSERT_TRUE(m_viewer->deleteJobs(m_sample.salesRuns[1], -1, -1)) << error();
    ASSERT_TRUE(m_viewer->refreshGlobalCollForTable(table("late orders"))) << error();
    EXPECT_EQ(ids(m_viewer->getGlobalCollFieldList(keys)).size(), 3U);
    EXPECT_FALSE(m_viewer->refreshGlobalCollForTable(99));
}

TEST_F(PrViewerTest, DeletingHistoryLeavesTheSessionUsable) {
    expectFailure(!m_viewer->deleteJobs(-1, -1, -1), "At least one run of a report must stay.");
    expectFailure(!m_viewer->deleteJobs(-1, 0, -1), "There is no run to delete in this range.");
    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[0]));
    auto halfRead = m_viewer->getFreqDist(field("customers/id"), "");
    ASSERT_TRUE(halfRead && halfRead->next());
    ASSERT_TRUE(m_viewer->deleteJobs(-1, m_sample.salesRuns[1], -1)) << error();
    EXPECT_EQ(m_viewer->getJobCount(), 1);
    EXPECT_EQ(m_viewer->getCurrentJob(), m_sample.salesRuns[0]);
    expectFailure(!m_viewer->getTableList(-1), "The run was deleted. Choose another one.");
    EXPECT_EQ(m_viewer->getFreqDistSum(field("customers/id")), -1);
    EXPECT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[2]));
    EXPECT_EQ(m_viewer->getFreqDistSum(field("customers/id")), 1000);
}

TEST_F(PrViewerTest, NotesAreKeptDatedAndOrdered) {
    int customers = table("customers");
    ASSERT_TRUE(m_viewer->createNewTableNote(customers, 'T', -1, "me", "new")) << error();
    auto notes = m_viewer->getTableNotes(customers, 'T', 1);
    ASSERT_TRUE(notes && notes->next());
    EXPECT_EQ(notes->getColumnValue(layout::NoteText), KvbString("new"));
    EXPECT_EQ(notes->getColumnDouble(layout::NoteDate), toLibraryDate(m_clock.now()));
    EXPECT_TRUE(notes->isColumnNull(layout::NoteCategory));
    EXPECT_EQ(notes->getColumnInt(layout::NoteCategoryId), -1);
    int id = notes->getColumnInt(layout::NoteId);
    EXPECT_EQ(rowsOf(*notes).size(), 2U);
    ASSERT_TRUE(m_viewer->deleteTableNote(id));
    expectFailure(!m_viewer->deleteTableNote(id), "There is no note with the number " + std::to_string(id) + ".");
    auto oldest = m_viewer->getTableNotes(customers, 'T', 0);
    ASSERT_TRUE(oldest && oldest->next());
    EXPECT_EQ(oldest->getColumnValue(layout::NoteCategory), KvbString("Question"));
    EXPECT_FALSE(m_viewer->getTableNotes(customers, 'X', 0));
    EXPECT_FALSE(m_viewer->createNewTableNote(99, 'C', -1, "me", "text"));
    EXPECT_FALSE(m_viewer->createNewFieldNote(field("customers/id"), 99, "me", "text"));

    int question = m_sample.noteCategories.at("Question");
    ASSERT_TRUE(m_viewer->editNoteCategory(question, "Asked"));
    EXPECT_THAT(read(m_viewer->getNoteCategories()), ElementsAre("1|Asked", "2|Decision"));
    expectFailure(!m_viewer->createNewNoteCategory("Asked"), "There is a note category \"Asked\" already.");
    EXPECT_FALSE(m_viewer->createNewNoteCategory(""));
    ASSERT_TRUE(m_viewer->deleteNoteCategory(question));
    auto fieldNotes = read(m_viewer->getFieldNotes(field("customers/balance"), 1));
    ASSERT_EQ(fieldNotes.size(), 1U) << "a note outlives its category";
    EXPECT_THAT(fieldNotes[0], ::testing::EndsWith("<null>|ada|Signs are right.|-1"));
}

TEST_F(PrViewerTest, AnEditedNoteKeepsItsUserAndItsDate) {
    const int question = m_sample.noteCategories.at("Question");
    const auto notes = [&] { return read(m_viewer->getTableNotes(table("customers"), 'T', 0)); };
    const auto fieldNotes = [&] { return read(m_viewer->getFieldNotes(field("customers/balance"), 0)); };
    const std::vector<std::string> before = notes();
    ASSERT_EQ(before.size(), 2U);
    ASSERT_THAT(before[0], ::testing::EndsWith("|Question|ada|Why so many nulls?|" + std::to_string(question)));
    const std::string start = before[0].substr(0, before[0].find("|Question"));

    ASSERT_TRUE(m_viewer->editTableNote(1, -1, "Answered:\r\nthey are new.\n\n")) << error();
    EXPECT_THAT(notes(), ElementsAre(start + "|<null>|ada|Answered:\nthey are new.|-1", before[1]));
    ASSERT_TRUE(m_viewer->editFieldNote(1, m_sample.noteCategories.at("Decision"), "Keep")) << error();
    EXPECT_THAT(fieldNotes(), ElementsAre(::testing::HasSubstr("|Decision|ada|Keep|")));

    const std::vector<std::string> now = notes();
    expectFailure(!m_viewer->editTableNote(1, 99, "x"), "There is no note category with the number 99.");
    expectFailure(!m_viewer->editTableNote(99, -1, "x"), "There is no note with the number 99.");
    expectFailure(!m_viewer->editFieldNote(99, -1, "x"), "There is no note with the number 99.");
    expectFailure(!m_viewer->editTableNote(1, -1, " \n\t"), "A note needs a text.");
    expectFailure(!m_viewer->editFieldNote(1, -1, std::string(20001, 'x')),
                  "The note is too long: 20001 characters, and 20000 is the most.");
    expectFailure(!m_viewer->createNewTableNote(table("customers"), 'T', -1, "me", ""), "A note needs a text.");
    expectFailure(!m_viewer->createNewFieldNote(field("customers/id"), -1, "me", "\xff"),
                  "The note is not valid UTF-8.");
    EXPECT_EQ(notes(), now);
}

TEST_F(PrViewerTest, NotesOfWhatVanishedAreErrors) {
    const int amounts = m_sample.collections.at("Amounts");
    auto notes = m_viewer->getTableNotes(amounts, 'C', 0);
    ASSERT_TRUE(notes && notes->next());
    const int note = notes->getColumnInt(layout::NoteId);
    notes.reset();
    testing::runScript(m_sample.path, "DELETE FROM collection_field WHERE collection = " + std::to_string(amounts) +
                                          "; DELETE FROM collection WHERE id = " + std::to_string(amounts));
    const std::string missing = "There is no collection with the number " + std::to_string(amounts) + ".";
    expectFailure(!m_viewer->getTableNotes(amounts, 'C', 0), missing);
    expectFailure(!m_viewer->createNewTableNote(amounts, 'C', -1, "me", "text"), missing);
    expectFailure(!m_viewer->editTableNote(note, -1, "text"), missing);
    EXPECT_TRUE(m_viewer->deleteTableNote(note)) << error();
    expectFailure(!m_viewer->getFieldNotes(999, 0), "There is no field with the number 999.");
}

TEST_F(PrViewerTest, NoteCategoriesHaveNamesThatDiffer) {
    const int question = m_sample.noteCategories.at("Question");
    expectFailure(!m_viewer->createNewNoteCategory(" \t\n"), "A note category needs a name.");
    expectFailure(!m_viewer->createNewNoteCategory("  QUESTION "), "There is a note category \"Question\" already.");
    expectFailure(!m_viewer->editNoteCategory(question, "decision"), "There is a note category \"Decision\" already.");
    expectFailure(!m_viewer->createNewNoteCategory(std::string(100, 'x')),
                  "The name of the category is too long: 100 characters, and 60 is the most.");
    expectFailure(!m_viewer->editNoteCategory(99, "x"), "There is no note category with the number 99.");
    expectFailure(!m_viewer->deleteNoteCategory(99), "There is no note category with the number 99.");
    ASSERT_TRUE(m_viewer->editNoteCategory(question, "question")) << "its own name in other letters: " << error();
    ASSERT_TRUE(m_viewer->createNewNoteCategory(" To  do ")) << error();
    EXPECT_THAT(
        read(m_viewer->getNoteCategories()),
        ElementsAre(::testing::EndsWith("|Decision"), ::testing::EndsWith("|To do"), ::testing::EndsWith("|question")));
}

TEST_F(PrViewerTest, ChartsKeepTheirPropertiesInOrder) {
    EXPECT_THAT(read(m_viewer->getChartProperties(m_sample.chart)), ElementsAre("TYPE|0|Bar", "DATATYPE|0|0"));
    ASSERT_TRUE(m_viewer->clearChartProperties(m_sample.chart));
    ASSERT_TRUE(m_viewer->addChartProperty(m_sample.chart, "TYPE", 0, "Pie"));
    EXPECT_THAT(read(m_viewer->getChartProperties(m_sample.chart)), ElementsAre("TYPE|0|Pie"));
    int chart = -1;
    ASSERT_TRUE(m_viewer->createEditCategoryChart(chart, 7, "New", ""));
    EXPECT_THAT(ids(m_viewer->getCategoryCharts(7)), ElementsAre(chart));
    ASSERT_TRUE(m_viewer->createEditTableChart(chart, table("customers"), "Renamed", "text"));
    EXPECT_EQ(ids(m_viewer->getTableCharts(table("customers"))).size(), 2U);
    int missing = 99;
    expectFailure(!m_viewer->createEditTableChart(missing, table("customers"), "x", ""),
                  "There is no chart with the number 99.");
    EXPECT_EQ(missing, 99);
    ASSERT_TRUE(m_viewer->deleteChart(m_sample.chart));
    EXPECT_FALSE(m_viewer->getChartProperties(m_sample.chart));
    EXPECT_FALSE(m_viewer->addChartProperty(m_sample.chart, "TYPE", 0, "Bar"));
}

TEST_F(PrViewerTest, ChangesMadeAsOneAreKeptOrDroppedAsOne) {
    const auto properties = [this](PrViewer& viewer) { return rowsOf(*viewer.getChartProperties(m_sample.chart)); };
    const auto before = properties(*m_viewer);
    auto other = PrViewer::create();
    ASSERT_TRUE(other->init(m_sample.path));
    const auto save = [this](int chart) {
        EXPECT_TRUE(m_viewer->beginChanges()) << error();
        EXPECT_TRUE(m_viewer->clearChartProperties(m_sample.chart)) << error();
        return m_viewer->addChartProperty(m_sample.chart, "TYPE", 0, "Pie") &&
               m_viewer->addChartProperty(chart, "MODE", 0, "1");
    };
    ASSERT_TRUE(save(m_sample.chart)) << error();
    EXPECT_THAT(properties(*m_viewer), ElementsAre("TYPE|0|Pie", "MODE|0|1")) << "the session sees its own changes";
    EXPECT_EQ(properties(*other), before) << "nobody else does";
    EXPECT_FALSE(m_viewer->beginChanges());
    EXPECT_FALSE(m_viewer->deleteJobs(-1, 1, -1));
    m_viewer->dropChanges();
    EXPECT_EQ(properties(*m_viewer), before);

    EXPECT_FALSE(save(99));
    expectFailure(!m_viewer->keepChanges(), "There is no chart with the number 99.");
    EXPECT_EQ(properties(*m_viewer), before) << "half a chart";

    const ProfileCursorHandle held = m_viewer->getChartProperties(m_sample.chart);
    ASSERT_TRUE(held && held->next());
    ASSERT_TRUE(save(m_sample.chart)) << error();
    ASSERT_TRUE(m_viewer->keepChanges()) << error();
    EXPECT_THAT(properties(*m_viewer), ElementsAre("TYPE|0|Pie", "MODE|0|1"));
    EXPECT_THAT(properties(*other), ElementsAre("TYPE|0|Pie", "MODE|0|1"));
    expectFailure(!m_viewer->keepChanges(), "No changes were begun.");
    EXPECT_TRUE(held->next()) << "a cursor from before goes on";

    ASSERT_TRUE(save(m_sample.chart));
    ASSERT_TRUE(m_viewer->close());
    EXPECT_TRUE(other->createNewNoteCategory("free")) << other->getErrorString().view();
}

TEST_F(PrViewerTest, KeyAnalysesAndRedundanciesAreStored) {
    int supplier = field("suppliers/id");
    int customer = field("customers/id");
    EXPECT_THAT(read(m_viewer->getPKFKAnalysis(supplier)),
                ElementsAre(std::to_string(customer) + "|id|Warehouse|crm|public|customers|60"));
    EXPECT_THAT(read(m_viewer->getPKFKAnalysisOutliers(supplier, customer)), ElementsAre("5001|2", "5002|1"));
    ASSERT_TRUE(m_viewer->deletePKFKAnalysis(supplier, customer)) << error();
    EXPECT_THAT(read(m_viewer->getPKFKAnalysis(supplier)), IsEmpty());
    EXPECT_TRUE(m_viewer->deletePKFKAnalysis(supplier, customer)) << "it is gone already: " << error();
    EXPECT_FALSE(m_viewer->getPKFKAnalysisOutliers(supplier, customer));

    EXPECT_THAT(read(m_viewer->getRdaCfgs()), ElementsAre("1|Same people|Customers that are suppliers|2"));
    EXPECT_THAT(ids(m_viewer->getRdaCfgFields(m_sample.redundancy)), ElementsAre(customer, supplier));
    expectFailure(!m_viewer->createFldRdaMap(m_sample.redundancy, customer),
                  "The redundant data analysis has this field already.");
    ASSERT_TRUE(m_viewer->deleteAllRdaMaps(m_sample.redundancy));
    ASSERT_TRUE(m_viewer->createFldRdaMap(m_sample.redundancy, supplier)) << error();
    EXPECT_THAT(ids(m_viewer->getRdaCfgFields(m_sample.redundancy)), ElementsAre(supplier));
    int made = -1;
    ASSERT_TRUE(m_viewer->createRdaCfg("Other", "", made));
    EXPECT_FALSE(m_viewer->updateRdaCfg(made, "Same people", ""));
    ASSERT_TRUE(m_viewer->updateRdaCfg(made, "Another", "text"));
    EXPECT_THAT(read(m_viewer->getRdaCfg(made)), ElementsAre("2|Another|text|0"));
    ASSERT_TRUE(m_viewer->deleteRdaCfg(m_sample.redundancy));
    EXPECT_FALSE(m_viewer->getRdaCfgFields(m_sample.redundancy));
}

TEST_F(PrViewerTest, ANewRunIsSeenAtOnce) {
    auto writer = repository::RunWriter::begin(m_sample.path, {"Sales", "", "new", {}});
    ASSERT_TRUE(writer);
    EXPECT_EQ(m_viewer->getJobCount(), 3);
    ASSERT_TRUE((*writer)->commit({}));
    EXPECT_EQ(m_viewer->getJobCount(), 4);
    EXPECT_EQ(m_viewer->getCurrentJob(), m_sample.salesRuns[2]);
}

} // namespace
} // namespace tavix
