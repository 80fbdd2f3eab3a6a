#pragma once

#include "doc/CTavixDoc.h"
#include "report/ReportSubject.h"
#include "report/RunList.h"
#include "tabs/ChangeRows.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tavix {

class PrViewDisplayMessage;

/// The tab of changes without its window: which runs are compared, why they cannot be, and the rows.
class ChangesModel {
  public:
    /// Of a table or collection. All must outlive the model.
    ChangesModel(CTavixDoc& document, const ReportSubject& subject, TableChangeRows& rows);
    /// Of a field.
    ChangesModel(CTavixDoc& document, const ReportSubject& subject, FieldChangeRows& rows);

    /// Reads the runs of the report and resolves which two are compared.
    void ReadRuns();
    /// The latest first.
    [[nodiscard]] const std::vector<RunRow>& GetRuns() const { return m_runs; }
    /// The ids of the compared runs; -1 when there is none.
    [[nodiscard]] const ComparedRuns& GetPair() const { return m_pair; }
    /// The user's choice by row of GetRuns(). The run that is shown is followed when another one is shown.
    void Choose(std::size_t sinceRow, std::size_t untilRow);
    /// Whether the runs were chosen anew elsewhere.
    [[nodiscard]] bool IsOutdated() const { return m_chosen != m_document.GetComparedRuns(); }

    /// Why nothing can be compared; "" when it can.
    [[nodiscard]] std::string GetObstacle() const;
    /// False when a run cannot be read: the rows are unchanged and have the message. When the sink stops the
    /// comparison, the rows are empty and say so.
    [[nodiscard]] bool Fill(PrViewDisplayMessage& sink);
    /// What was found, in a line; "" when nothing was.
    [[nodiscard]] const std::string& GetSummary() const { return m_summary; }

  private:
    [[nodiscard]] const RunRow* FindRun(int id) const;
    void Compare(PrViewer& before, PrViewer& after, const ReportSubject& subject, RunComparisonOptions options);
    void ShowNone(const std::string& why);

    CTavixDoc& m_document;
    const ReportSubject& m_subject;
    ChangeRows& m_rows;
    TableChangeRows* m_tableRows = nullptr; ///< m_rows of a table or collection
    FieldChangeRows* m_fieldRows = nullptr; ///< m_rows of a field
    std::vector<RunRow> m_runs;
    ComparedRuns m_chosen;
    ComparedRuns m_pair;
    std::string m_summary;
};

} // namespace tavix
