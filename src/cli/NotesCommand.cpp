#include "cli/NotesCommand.h"

#include "access/Layouts.h"
#include "base/LoginName.h"
#include "base/NoteText.h"
#include "cli/CommandError.h"
#include "cli/Session.h"
#include "cli/ShownDate.h"

#include <CLI/App.hpp>

#include <algorithm>

namespace tavix::cli {

namespace {

constexpr int kOldestFirst = 0;

/// The owner of the notes.
struct Subject {
    bool isField;
    int id;

    [[nodiscard]] ProfileCursorHandle notes(Session& session) const {
        return session.checked(isField ? session.viewer().getFieldNotes(id, kOldestFirst)
                                       : session.viewer().getTableNotes(id, 'T', kOldestFirst));
    }
    void add(Session& session, int category, const std::string& text) const {
        session.check(isField ? session.viewer().createNewFieldNote(id, category, loginName(), text)
                              : session.viewer().createNewTableNote(id, 'T', category, loginName(), text));
    }
};

void checkUsage(const Status& checked) {
    if (!checked)
        throw CommandError(ExitCode::Usage, checked.error().text);
}

std::optional<int> findCategory(Session& session, const std::string& name) {
    const ProfileCursorHandle categories = session.checked(session.viewer().getNoteCategories());
    while (categories->next()) {
        if (isSameNoteCategory(categories->getColumnValue(layout::CategoryName).view(), name))
            return categories->getColumnInt(layout::CategoryId);
    }
    return std::nullopt;
}

} // namespace

CLI::App* NotesCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("notes", "List the notes of a table or a field, or add one");
    command->add_option("SUBJECT", m_subject, "A table, as with --table, or TABLE.FIELD, as with --field")
        ->type_name("");
    command->add_option("-t,--table", m_table, "The table")->type_name("NAME");
    command->add_option("-f,--field", m_field, "The field, as TABLE.FIELD, or as FIELD with --table")->type_name("T.F");
    constexpr const char* kNew = "A new note";
    command->add_option("--add", m_add, "Add a note with this text under your login name")
        ->type_name("TEXT")
        ->group(kNew);
    command->add_option("--category", m_category, "Its category, which is created if it does not exist")
        ->type_name("NAME")
        ->group(kNew);
    m_runChoice.declare(*command);
    command->footer("Notes are listed from the oldest to the latest; after --add only the new one is listed. A note\n"
                    "belongs to a table or field, not to a run, and appears in every run.\n\n"
                    "Examples:\n"
                    "  tavix notes -R profile.tavix --table airports\n"
                    "  tavix notes -R profile.tavix --field airports.state --add \"Two letters, not always US\" \\\n"
                    "              --category Question");
    return command;
}

void NotesCommand::run(const CommonOptions& options) {
    if (!m_subject && !m_table && !m_field)
        throw CommandError(ExitCode::Usage, "notes of what? Name a table with --table or a field with --field");
    if (m_category && !m_add)
        throw CommandError(ExitCode::Usage, "--category goes with --add");
    // All arguments are checked before anything is stored.
    if (m_add)
        checkUsage(checkNote(tidyNote(*m_add)));
    if (m_category)
        checkUsage(checkNoteCategory(tidyNoteCategory(*m_category)));

    Session session(options.repository);
    m_runChoice.select(session);
    if (m_subject)
        session.addressSubject(*m_subject, m_table, m_field);
    const Subject subject =
        m_field ? Subject{true, session.field(*m_field, m_table).id} : Subject{false, session.table(*m_table).id};
    Listing listing(options);
    if (m_add) {
        // Do not leave a new category without its note.
        session.check(session.viewer().beginChanges());
        subject.add(session, categoryId(session), *m_add);
        session.check(session.viewer().keepChanges());
    }

    // The new note has the highest id.
    int latest = -1;
    if (m_add) {
        const ProfileCursorHandle notes = subject.notes(session);
        while (notes->next())
            latest = std::max(latest, notes->getColumnInt(layout::NoteId));
    }
    listing.begin(
        {"notes",
         "Notes",
         {{"date", "Date"}, {"category", "Category"}, {"user", "User"}, {"note", "Note", Column::Kind::Prose}}});
    const ProfileCursorHandle notes = subject.notes(session);
    while (notes->next()) {
        if (m_add && notes->getColumnInt(layout::NoteId) != latest)
            continue;
        listing.row(Row{shownDate(notes->getColumnDouble(layout::NoteDate)),
                        notes->getColumnValue(layout::NoteCategory), notes->getColumnValue(layout::NoteUser),
                        notes->getColumnValue(layout::NoteText)});
    }
    listing.end();
    listing.finish();
}

int NotesCommand::categoryId(Session& session) const {
    if (!m_category)
        return -1;
    const std::string name = tidyNoteCategory(*m_category);
    if (const auto found = findCategory(session, name))
        return *found;
    session.check(session.viewer().createNewNoteCategory(name));
    return findCategory(session, name).value_or(-1);
}

} // namespace tavix::cli
