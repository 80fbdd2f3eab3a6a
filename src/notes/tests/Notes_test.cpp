#include "access/PrViewer.h"
#include "base/LibraryDate.h"
#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "notes/NoteCategories.h"
#include "notes/NoteEditor.h"
#include "notes/NoteRows.h"
#include "support/SampleRepository.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::SampleRepository;

class LaterClock final : public Clock {
  public:
    [[nodiscard]] UtcTime now() const override { return SampleRepository::runTime(9); }
};

class NotesOfSample : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(m_viewer->init(m_sample.path));
        ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob));
    }
    NoteSubject table(const char* name) const { return {NoteSubject::Kind::Table, m_sample.tables.at(name), name}; }
    NoteSubject field(const char* name) const { return {NoteSubject::Kind::Field, m_sample.fields.at(name), name}; }
    NoteSubject collection(const char* name) const {
        return {NoteSubject::Kind::Collection, m_sample.collections.at(name), name};
    }
    /// As on the screen, without the date.
    std::vector<std::string> lines(const NoteSubject& subject, bool newestFirst = false) {
        EXPECT_TRUE(m_rows.Fill(*m_viewer, subject, newestFirst)) << m_rows.GetErrorText();
        return shown();
    }
    std::vector<std::string> shown() const {
        std::vector<std::string> lines;
        for (std::int64_t row = 0; row < m_rows.GetRowCount(); ++row)
            lines.push_back(m_rows.GetCell(1, row).text + "|" + m_rows.GetCell(2, row).text + "|" +
                            m_rows.GetCell(3, row).text);
        return lines;
    }
    std::vector<Note> notes(const NoteSubject& subject) {
        (void)lines(subject);
        std::vector<Note> all;
        for (std::int64_t row = 0; row < m_rows.GetRowCount(); ++row)
            all.push_back(m_rows.GetNote(row));
        return all;
    }

    testing::TempFolder m_folder;
    SampleRepository m_sample = SampleRepository::build(m_folder.file("sample.tavix"));
    LaterClock m_clock;
    PrViewer::Handle m_viewer = PrViewer::create(&m_clock);
    testing::ScriptedMessages m_messages;
    NoteRows m_rows{std::locale::classic()};
    NoteEditor m_editor{*m_viewer, m_messages, "grace"};
};

TEST_F(NotesOfSample, StandInTheChosenOrderEachOnOneLine) {
    EXPECT_THAT(lines(table("customers")),
                ElementsAre("Question|ada|Why so many nulls?", "|grace|Known. Fixed in March."));
    EXPECT_EQ(m_rows.GetNote(1).text, "Known.\nFixed in March.");
    EXPECT_THAT(lines(table("customers"), true),
                ElementsAre("|grace|Known. Fixed in March.", "Question|ada|Why so many nulls?"));
    std::vector<std::string> headings;
    for (int column = 0; column < m_rows.GetColumnCount(); ++column)
        headings.push_back(m_rows.GetColumn(column).heading);
    EXPECT_THAT(headings, ElementsAre("Date", "Category", "User", "Note"));
    const Note& newest = m_rows.GetNote(0);
    EXPECT_EQ(m_rows.GetCell(0, 0).text, formatDateTime(decompose(newest.written), std::locale::classic()));

    EXPECT_THAT(lines(collection("Amounts")), ElementsAre("|ada|All in euros."));
    EXPECT_THAT(lines(field("customers/balance")), ElementsAre("Question|ada|Signs are right."));
    EXPECT_THAT(lines(field("customers/city")), IsEmpty());
    EXPECT_THAT(lines({}), IsEmpty());
}

TEST_F(NotesOfSample, AreSortedByTimeAndWithoutCase) {
    for (const char* text : {"zebra", "Apple", "10", "9"})
        ASSERT_TRUE(m_viewer->createNewTableNote(m_sample.tables.at("orders"), 'T', -1, "me", text));
    (void)lines(table("orders"));
    ASSERT_TRUE(m_rows.Sort(3, false));
    EXPECT_THAT(shown(), ElementsAre("|me|9", "|me|10", "|me|Apple", "|me|zebra"));
    ASSERT_TRUE(m_rows.Sort(0, true));
    EXPECT_THAT(shown(), ElementsAre("|me|9", "|me|10", "|me|Apple", "|me|zebra")) << "the last one first";
    EXPECT_EQ(m_rows.GetLatestNote(), m_rows.GetNote(0).id);
    EXPECT_EQ(m_rows.FindNote(m_rows.GetNote(2).id), 2);
    EXPECT_FALSE(m_rows.Sort(4, false));
}

TEST_F(NotesOfSample, StayOnTheScreenWhenTheyCannotBeReadAnew) {
    const std::vector<std::string> before = lines(table("customers"));
    EXPECT_FALSE(m_rows.Fill(*m_viewer, {NoteSubject::Kind::Field, 999, ""}, false));
    EXPECT_EQ(m_rows.GetErrorText(), "There is no field with the number 999.");
    EXPECT_EQ(shown(), before);
    m_viewer->close();
    EXPECT_FALSE(m_rows.Fill(*m_viewer, table("customers"), false));
    EXPECT_EQ(m_rows.GetErrorText(), "No repository is open.");
    EXPECT_EQ(shown(), before);
}

TEST_F(NotesOfSample, AreWrittenChangedAndDeletedByTheUser) {
    const int decision = m_sample.noteCategories.at("Decision");
    for (const NoteSubject& subject : {table("orders"), collection("Customer keys"), field("orders/note")}) {
        SCOPED_TRACE(subject.title);
        ASSERT_TRUE(m_editor.Add(subject, {decision, "First\nline\n"}));
        ASSERT_TRUE(m_editor.Add(subject, {-1, "Second"}));
        EXPECT_THAT(lines(subject), ElementsAre("Decision|grace|First line", "|grace|Second"));
        const Note first = m_rows.GetNote(0);
        EXPECT_EQ(first.written, toLibraryDate(m_clock.now()));
        ASSERT_TRUE(m_editor.Edit(subject, first.id, {-1, "Changed"}));
        EXPECT_THAT(lines(subject), ElementsAre("|grace|Changed", "|grace|Second"));

        m_messages.expectAsk("Delete this note?\n\n\"Changed\"", "Delete Note", Messages::Answer::No);
        EXPECT_FALSE(m_editor.Delete(subject, std::span(&m_rows.GetNote(0), 1)));
        EXPECT_THAT(lines(subject), ElementsAre("|grace|Changed", "|grace|Second"));
        m_messages.expectAsk("Delete these 2 notes?", "Delete Notes", Messages::Answer::Yes);
        EXPECT_TRUE(m_editor.Delete(subject, notes(subject)));
        EXPECT_THAT(lines(subject), IsEmpty());
    }
    EXPECT_EQ(lines(table("customers")).size(), 2U) << "others are not touched";
}

TEST_F(NotesOfSample, WithoutTextOrTooLongAreRefused) {
    const NoteSubject orders = table("orders");
    m_messages.expectWarn("Enter the text of the note.", "Missing Value");
    EXPECT_FALSE(m_editor.Add(orders, {-1, " \n\t"}));
    m_messages.expectWarn("The note is too long: 20001 characters, and 20000 is the most.", "Invalid Value");
    EXPECT_FALSE(m_editor.Add(orders, {-1, std::string(20001, 'x')}));
    EXPECT_THAT(lines(orders), IsEmpty());
    m_messages.expectWarn("Enter the text of the note.", "Missing Value");
    EXPECT_FALSE(m_editor.Edit(table("customers"), notes(table("customers"))[0].id, {-1, ""}));
    m_messages.expectWarn("Error occurred while adding the note:\n\nThere is no table with the number 99.");
    EXPECT_FALSE(m_editor.Add({NoteSubject::Kind::Table, 99, ""}, {-1, "text"}));
    m_messages.expectWarn("Error occurred while saving the note:\n\nThere is no note with the number 99.");
    EXPECT_FALSE(m_editor.Edit(orders, 99, {-1, "text"}));
    EXPECT_FALSE(m_editor.Delete(orders, {}));
}

TEST_F(NotesOfSample, ALongOneIsQuotedByItsBeginning) {
    const NoteSubject orders = table("orders");
    std::string wide;
    for (int i = 0; i < 100; ++i)
        wide += "日";
    ASSERT_TRUE(m_editor.Add(orders, {-1, wide + "\nmore"}));
    m_messages.expectAsk("Delete this note?\n\n\"" + wide.substr(0, 198) + "…\"", "Delete Note", Messages::Answer::Yes);
    EXPECT_TRUE(m_editor.Delete(orders, notes(orders)));
    ASSERT_TRUE(m_editor.Add(orders, {-1, "one"}));
    const std::vector<Note> gone = notes(orders);
    ASSERT_TRUE(m_viewer->deleteTableNote(gone[0].id));
    m_messages.expectAsk("Delete this note?\n\n\"one\"", "Delete Note", Messages::Answer::Yes);
    m_messages.expectWarn("Error occurred while deleting the note:\n\nThere is no note with the number " +
                          std::to_string(gone[0].id) + ".");
    EXPECT_FALSE(m_editor.Delete(orders, gone));
}

TEST_F(NotesOfSample, ADraftIsGivenUpOnlyOnTheUsersWord) {
    EXPECT_TRUE(m_editor.MayDiscard({1, "text\n"}, {1, "text"}));
    m_messages.expectAsk("The note is not saved. Discard what you have written?", "Discard Note", Messages::Answer::No);
    EXPECT_FALSE(m_editor.MayDiscard({2, "text"}, {1, "text"}));
    m_messages.expectAsk("The note is not saved. Discard what you have written?", "Discard Note",
                         Messages::Answer::Yes);
    EXPECT_TRUE(m_editor.MayDiscard({-1, "x"}, {}));
}

TEST_F(NotesOfSample, CategoriesAreAddedRenamedAndDeleted) {
    NoteCategories categories(*m_viewer, m_messages);
    const auto names = [&] {
        std::vector<std::string> list;
        for (const NoteCategory& category : categories.List())
            list.push_back(category.name);
        return list;
    };
    ASSERT_TRUE(categories.Read());
    EXPECT_THAT(names(), ElementsAre("Decision", "Question"));
    EXPECT_FALSE(categories.HasChanged());
    EXPECT_TRUE(categories.Add("  To  do "));
    EXPECT_THAT(names(), ElementsAre("Decision", "Question", "To do"));
    EXPECT_EQ(categories.Find("TO DO"), 2);
    EXPECT_TRUE(categories.HasChanged());

    m_messages.expectWarn("Enter a name for the category.", "Missing Value");
    EXPECT_FALSE(categories.Add(" "));
    m_messages.expectWarn("Error occurred while adding the note category:\n\n"
                          "There is a note category \"Question\" already.");
    EXPECT_FALSE(categories.Add("question"));
    m_messages.expectWarn("The name of the category is too long: 61 characters, and 60 is the most.", "Invalid Value");
    EXPECT_FALSE(categories.Rename(0, std::string(61, 'x')));
    m_messages.expectWarn("Error occurred while renaming the note category:\n\n"
                          "There is a note category \"To do\" already.");
    EXPECT_FALSE(categories.Rename(0, "to do"));
    EXPECT_FALSE(categories.Rename(3, "x"));
    EXPECT_FALSE(categories.Delete(-1));
    ASSERT_TRUE(categories.Rename(1, "Asked"));
    EXPECT_THAT(names(), ElementsAre("Asked", "Decision", "To do"));

    const std::string question = "Delete the category \"Asked\"?\n\nIts notes stay, without a category.";
    m_messages.expectAsk(question, "Delete Category", Messages::Answer::No);
    EXPECT_FALSE(categories.Delete(0));
    m_messages.expectAsk(question, "Delete Category", Messages::Answer::Yes);
    EXPECT_TRUE(categories.Delete(0));
    EXPECT_THAT(names(), ElementsAre("Decision", "To do"));
    EXPECT_THAT(lines(field("customers/balance")), ElementsAre("|ada|Signs are right."));

    m_viewer->close();
    m_messages.expectWarn("Error occurred while retrieving note categories:\n\nNo repository is open.");
    EXPECT_FALSE(categories.Read());
    EXPECT_THAT(names(), ElementsAre("Decision", "To do"));
}

TEST(NoteSubjects, FollowTheSelection) {
    using Kind = NoteSubject::Kind;
    ReportSubject subject;
    EXPECT_EQ(tableNoteSubject(subject), NoteSubject());
    EXPECT_EQ(fieldNoteSubject(subject), NoteSubject());
    subject.selection.kind = ReportSelection::Kind::Table;
    subject.selection.table.id = 7;
    subject.selection.table.name = "base";
    subject.selection.table.objectName = "german customers";
    EXPECT_EQ(tableNoteSubject(subject), (NoteSubject{Kind::Table, 7, "Table german customers"}));
    subject.selection.kind = ReportSelection::Kind::Collection;
    subject.selection.id = 3;
    subject.selection.name = "Keys";
    EXPECT_EQ(tableNoteSubject(subject), (NoteSubject{Kind::Collection, 3, "Collection Keys"}));
    subject.selection.fieldId = 5;
    subject.selection.fieldName = "city";
    subject.table.name = "customers";
    EXPECT_EQ(fieldNoteSubject(subject), (NoteSubject{Kind::Field, 5, "Field city of customers"}));
    subject.table.name.clear();
    EXPECT_EQ(fieldNoteSubject(subject).title, "Field city");
}

TEST(NoteActions, NeedAReportASubjectAndASelection) {
    const NoteSubject table{NoteSubject::Kind::Table, 1, ""};
    EXPECT_EQ(noteActions(true, table, 0), (NoteActions{true, false, false}));
    EXPECT_EQ(noteActions(true, table, 1), (NoteActions{true, true, true}));
    EXPECT_EQ(noteActions(true, table, 2), (NoteActions{true, false, true}));
    EXPECT_EQ(noteActions(false, table, 1), NoteActions());
    EXPECT_EQ(noteActions(true, {}, 1), NoteActions());
}

} // namespace
} // namespace tavix
