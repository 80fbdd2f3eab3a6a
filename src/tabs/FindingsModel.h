#pragma once

#include "base/LibraryDate.h"
#include "base/Result.h"
#include "report/FindingRecords.h"
#include "report/ReportSubject.h"
#include "tabs/RuleRows.h"

#include <locale>
#include <string>
#include <vector>

namespace tavix {

/// A list of findings, the gravest first.
class FindingRows final : public CellRows {
  public:
    /// `namesFields`: with a column for the field, "" for a finding about the table.
    explicit FindingRows(bool namesFields);

    void Show(const std::vector<FindingRecord>& findings);
    /// The index of the row's finding among those shown.
    [[nodiscard]] std::size_t GetFinding(std::int64_t row) const { return Record(row); }

  private:
    bool m_namesFields;
};

/// The findings about the subject of a view, as its first tab shows them: a line that says how many there are, and
/// their list on demand. Dismissed findings are listed when the user asks for them.
class FindingsModel {
  public:
    /// So few findings are listed without asking.
    static constexpr std::int64_t kFew = 2;

    /// `isOfField`: of a field, else of a table and its fields.
    explicit FindingsModel(bool isOfField, const std::locale& locale = userLocale());

    /// On an error there is nothing to show.
    [[nodiscard]] Status Fill(PrViewer& viewer, const ReportSubject& subject);
    void Clear();
    void ShowDismissed(bool shows);
    [[nodiscard]] bool ShowsDismissed() const { return m_showsDismissed; }

    /// "3 findings: 1 definite, 2 likely · the gravest: Numbers kept as text"; "" when there is nothing to show.
    [[nodiscard]] const std::string& GetText() const { return m_text; }
    /// "2 dismissed"; "" without any.
    [[nodiscard]] std::string GetDismissedText() const;
    [[nodiscard]] bool IsOpenAtFirst() const { return m_rows.GetRowCount() > 0 && m_rows.GetRowCount() <= kFew; }
    [[nodiscard]] FindingRows& GetRows() { return m_rows; }
    [[nodiscard]] const FindingRows& GetRows() const { return m_rows; }
    /// Null for no row.
    [[nodiscard]] const FindingRecord* At(std::int64_t row) const;
    /// The meaning of the finding, the advice, and why it was dismissed.
    [[nodiscard]] std::string ExplanationOf(const FindingRecord& finding) const;

    /// Both fail with the library's text, and then change nothing. The findings must be read again afterwards.
    [[nodiscard]] static Status Dismiss(PrViewer& viewer, const FindingRecord& finding, const std::string& user,
                                        const std::string& reason);
    [[nodiscard]] static Status Restore(PrViewer& viewer, const FindingRecord& finding);

  private:
    void ShowRows();

    bool m_isOfField;
    std::locale m_locale;
    bool m_showsDismissed = false;
    std::vector<FindingRecord> m_all;
    std::vector<FindingRecord> m_shown;
    std::string m_text;
    FindingRows m_rows;
};

} // namespace tavix
