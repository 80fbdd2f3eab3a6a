#include "notes/NoteRows.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "grid/CellOrder.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace tavix {

namespace {

enum ColumnIndex { DateColumn, CategoryColumn, UserColumn, NoteColumn };

struct ColumnInfo {
    std::string_view heading;
    int width;
};

constexpr std::array<ColumnInfo, 4> kColumns = {{{"Date", 190}, {"Category", 110}, {"User", 90}, {"Note", 400}}};

constexpr int kNewestFirst = 1;
constexpr int kOldestFirst = 0;

ProfileCursorHandle openNotes(PrViewer& viewer, const NoteSubject& subject, int order) {
    switch (subject.kind) {
    case NoteSubject::Kind::Table:
        return viewer.getTableNotes(subject.id, 'T', order);
    case NoteSubject::Kind::Collection:
        return viewer.getTableNotes(subject.id, 'C', order);
    default:
        return viewer.getFieldNotes(subject.id, order);
    }
}

Note readNote(const ProfileCursor& cursor) {
    using namespace layout;
    Note note;
    note.id = cursor.getColumnInt(NoteId);
    note.written = cursor.getColumnDouble(NoteDate);
    note.category = cursor.getColumnValue(NoteCategory).str();
    note.categoryId = cursor.getColumnInt(NoteCategoryId);
    note.user = cursor.getColumnValue(NoteUser).str();
    note.text = cursor.getColumnValue(NoteText).str();
    return note;
}

std::string oneLine(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    bool gap = false;
    for (const char c : text) {
        if (c == ' ' || c == '\n' || c == '\r' || c == '\t') {
            gap = true;
            continue;
        }
        if (gap && !line.empty())
            line += ' ';
        gap = false;
        line += c;
    }
    return line;
}

} // namespace

bool NoteRows::Fill(PrViewer& viewer, const NoteSubject& subject, bool newestFirst) {
    std::vector<Row> rows;
    m_error.clear();
    if (subject.kind != NoteSubject::Kind::Nothing) {
        try {
            const ProfileCursorHandle notes = openNotes(viewer, subject, newestFirst ? kNewestFirst : kOldestFirst);
            if (!notes) {
                m_error = viewer.getErrorString().str();
                return false;
            }
            while (notes->next()) {
                Row row{readNote(*notes), {}, {}};
                row.date = DateText(row.note);
                row.line = oneLine(row.note.text);
                rows.push_back(std::move(row));
            }
        } catch (const GenException& exception) {
            m_error = exception.getText().str();
            return false;
        }
    }
    m_rows = std::move(rows);
    return true;
}

void NoteRows::Clear() {
    m_rows.clear();
    m_error.clear();
}

std::int64_t NoteRows::FindNote(int noteId) const {
    const auto found =
        std::find_if(m_rows.begin(), m_rows.end(), [noteId](const Row& row) { return row.note.id == noteId; });
    return found == m_rows.end() ? -1 : found - m_rows.begin();
}

int NoteRows::GetLatestNote() const {
    int latest = -1;
    for (const Row& row : m_rows)
        latest = std::max(latest, row.note.id);
    return latest;
}

std::string NoteRows::DateText(const Note& note) const {
    return formatDateTime(decompose(note.written), m_locale);
}

int NoteRows::GetColumnCount() const {
    return static_cast<int>(kColumns.size());
}

GridColumn NoteRows::GetColumn(int column) const {
    const ColumnInfo& info = kColumns.at(static_cast<std::size_t>(column));
    GridColumn result;
    result.heading = info.heading;
    result.width = info.width;
    return result;
}

GridCell NoteRows::GetCell(int column, std::int64_t row) const {
    const Row& shown = m_rows.at(static_cast<std::size_t>(row));
    GridCell cell;
    switch (column) {
    case DateColumn:
        cell.text = shown.date;
        break;
    case CategoryColumn:
        cell.text = shown.note.category;
        break;
    case UserColumn:
        cell.text = shown.note.user;
        break;
    case NoteColumn:
        cell.text = shown.line;
        break;
    default:
        break;
    }
    return cell;
}

bool NoteRows::Sort(int column, bool descending) {
    if (column < 0 || column >= GetColumnCount())
        return false;
    if (column == DateColumn) {
        std::stable_sort(m_rows.begin(), m_rows.end(), [descending](const Row& a, const Row& b) {
            const std::pair left(a.note.written, a.note.id);
            const std::pair right(b.note.written, b.note.id);
            return descending ? right < left : left < right;
        });
        return true;
    }
    const auto textOf = [column](const Row& row) -> std::string_view {
        return column == CategoryColumn ? row.note.category : column == UserColumn ? row.note.user : row.line;
    };
    sortRowsByText(std::span(m_rows), textOf, descending);
    return true;
}

} // namespace tavix
