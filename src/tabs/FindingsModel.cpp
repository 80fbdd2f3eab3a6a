#include "tabs/FindingsModel.h"

#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/LibraryDate.h"
#include "base/NumberText.h"
#include "report/CountText.h"

#include <algorithm>
#include <utility>

namespace tavix {

namespace {

constexpr std::string_view kSeparator = "  ·  ";

std::vector<GridColumn> columnsOf(bool namesFields) {
    std::vector<GridColumn> columns = {listColumn("Finding", 150),
                                       listColumn("Likelihood", 85),
                                       listColumn("Field", 90),
                                       listColumn("Rows", 60, CellAlignment::Right),
                                       listColumn("Values", 60, CellAlignment::Right),
                                       listColumn("What Was Found", 130)};
    columns.back().takesRest = true;
    if (!namesFields)
        columns.erase(columns.begin() + 2);
    return columns;
}

GridCell likelihoodCell(const FindingRecord& finding) {
    GridCell cell = textCell(finding.likelihoodText());
    cell.order = formatInteger(finding.likelihood);
    return cell;
}

/// Nothing for a finding that no rows or values are behind.
GridCell orNothing(std::int64_t count) {
    return count > 0 ? countCell(count) : textCell({}, CellAlignment::Right);
}

} // namespace

FindingRows::FindingRows(bool namesFields) : CellRows(columnsOf(namesFields)), m_namesFields(namesFields) {}

void FindingRows::Show(const std::vector<FindingRecord>& findings) {
    std::vector<Cells> rows;
    for (const FindingRecord& finding : findings) {
        GridCell title = textCell(finding.title());
        if (finding.dismissal)
            title.mark = "(dismissed)";
        Cells cells = {std::move(title),        likelihoodCell(finding),   textCell(finding.field),
                       orNothing(finding.rows), orNothing(finding.values), textCell(finding.detail)};
        if (!m_namesFields)
            cells.erase(cells.begin() + 2);
        rows.push_back(std::move(cells));
    }
    CellRows::Show(std::move(rows));
}

FindingsModel::FindingsModel(bool isOfField, const std::locale& locale)
    : m_isOfField(isOfField), m_locale(locale), m_rows(!isOfField) {}

void FindingsModel::Clear() {
    m_all.clear();
    m_shown.clear();
    m_text.clear();
    m_rows.Clear();
}

Status FindingsModel::Fill(PrViewer& viewer, const ReportSubject& subject) {
    Clear();
    // A collection has no findings of its own.
    const bool isKnown = m_isOfField ? subject.field.has_value()
                                     : subject.selection.kind == ReportSelection::Kind::Table && subject.table.id != -1;
    if (!isKnown)
        return {};
    try {
        m_all =
            m_isOfField ? readFieldFindings(viewer, subject.field->id) : readTableFindings(viewer, subject.table.id);
    } catch (const GenException& failure) {
        return Error{failure.getText().str()};
    }
    ShowRows();
    return {};
}

void FindingsModel::ShowDismissed(bool shows) {
    m_showsDismissed = shows;
    ShowRows();
}

void FindingsModel::ShowRows() {
    m_shown.clear();
    for (const FindingRecord& finding : m_all)
        if (m_showsDismissed || !finding.dismissal)
            m_shown.push_back(finding);
    m_rows.Show(m_shown);
    m_text.clear();
    if (m_all.empty())
        return;
    m_text = findingCounts(m_all);
    const auto gravest =
        std::find_if(m_all.begin(), m_all.end(), [](const FindingRecord& finding) { return !finding.dismissal; });
    if (gravest != m_all.end())
        m_text += std::string(kSeparator) + gravest->title() +
                  (m_isOfField || gravest->fieldId == -1 ? std::string() : " (" + gravest->field + ")");
}

std::string FindingsModel::GetDismissedText() const {
    const auto count = std::count_if(m_all.begin(), m_all.end(),
                                     [](const FindingRecord& finding) { return finding.dismissal.has_value(); });
    return count == 0 ? std::string() : groupedCount(count) + " dismissed";
}

const FindingRecord* FindingsModel::At(std::int64_t row) const {
    return row >= 0 && row < m_rows.GetRowCount() ? &m_shown.at(m_rows.GetFinding(row)) : nullptr;
}

std::string FindingsModel::ExplanationOf(const FindingRecord& finding) const {
    std::string text(finding.meaning());
    if (!finding.advice().empty())
        text += (text.empty() ? "" : " ") + std::string(finding.advice());
    if (finding.dismissal)
        text += (text.empty() ? "" : "\n") + std::string("Dismissed by ") + finding.dismissal->user + ", " +
                formatDateTime(decompose(finding.dismissal->date), m_locale) + ": " + finding.dismissal->reason;
    return text;
}

Status FindingsModel::Dismiss(PrViewer& viewer, const FindingRecord& finding, const std::string& user,
                              const std::string& reason) {
    const int field = finding.fieldId == -1 ? 0 : finding.fieldId;
    return viewer.dismissFinding(finding.tableId, field, finding.code, user, reason)
               ? Status{}
               : Status{Error{viewer.getErrorString().str()}};
}

Status FindingsModel::Restore(PrViewer& viewer, const FindingRecord& finding) {
    const int field = finding.fieldId == -1 ? 0 : finding.fieldId;
    return viewer.restoreFinding(finding.tableId, field, finding.code) ? Status{}
                                                                       : Status{Error{viewer.getErrorString().str()}};
}

} // namespace tavix
