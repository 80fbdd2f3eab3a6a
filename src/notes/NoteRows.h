#pragma once

#include "grid/CUGDataSource.h"
#include "notes/Notes.h"

#include <locale>
#include <string>
#include <vector>

namespace tavix {

class PrViewer;

/// The rows of a notes tab: one for each note of a table, a collection or a field.
class NoteRows final : public CUGDataSource {
  public:
    /// Formats dates for `locale`.
    explicit NoteRows(const std::locale& locale = userLocale()) : m_locale(locale) {}

    /// Reads the notes, the newest or the oldest first. False when the repository fails: GetErrorText() then says why,
    /// and the rows are unchanged.
    bool Fill(PrViewer& viewer, const NoteSubject& subject, bool newestFirst);
    void Clear();
    [[nodiscard]] const std::string& GetErrorText() const { return m_error; }

    [[nodiscard]] const Note& GetNote(std::int64_t row) const { return m_rows.at(static_cast<std::size_t>(row)).note; }
    /// The note's row; -1 when there is none.
    [[nodiscard]] std::int64_t FindNote(int noteId) const;
    /// The id of the note that was added last; -1 without notes.
    [[nodiscard]] int GetLatestNote() const;
    [[nodiscard]] std::string DateText(const Note& note) const;

    [[nodiscard]] int GetColumnCount() const override;
    [[nodiscard]] std::int64_t GetRowCount() const override { return static_cast<std::int64_t>(m_rows.size()); }
    [[nodiscard]] GridColumn GetColumn(int column) const override;
    /// A note's text is shown as one line, which also keeps a copied row one line.
    [[nodiscard]] GridCell GetCell(int column, std::int64_t row) const override;
    [[nodiscard]] std::int64_t GetRowKey(std::int64_t row) const override { return GetNote(row).id; }
    bool Sort(int column, bool descending) override;

  private:
    struct Row {
        Note note;
        std::string date;
        std::string line; ///< the text as one line
    };

    std::locale m_locale;
    std::vector<Row> m_rows;
    std::string m_error;
};

} // namespace tavix
