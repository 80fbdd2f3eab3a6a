#include "tabs/TypeRows.h"

#include "report/CountText.h"

#include <utility>

namespace tavix {

namespace {

constexpr int kFormWidth = 140;
constexpr int kValueWidth = 100;
constexpr int kCountWidth = 60;
constexpr int kShareWidth = 80;
constexpr std::string_view kMisfitMark = "(does not fit)";

enum FormColumns { FormName, FormRowCount, FormShare, FormValueCount, FormExampleValue };
enum MisfitColumns { MisfitValue, MisfitRowCount, MisfitShare };

GridColumn exampleColumn() {
    GridColumn column = listColumn("Example", kValueWidth);
    column.toolTip = "The most frequent value of the form";
    column.takesRest = true;
    return column;
}

GridColumn shareColumn() {
    GridColumn column = listColumn("Share", kShareWidth, CellAlignment::Right);
    column.toolTip = "Of the rows that are neither null, empty nor blank";
    return column;
}

GridCell shareCell(std::int64_t rows, std::int64_t all) {
    const double share = all > 0 ? static_cast<double>(rows) / static_cast<double>(all) : 0;
    GridCell cell = percentCell(100 * share, share);
    cell.shown = shareText(100 * share);
    return cell;
}

GridColumn valueColumn() {
    GridColumn column = listColumn("Value", kValueWidth);
    column.takesRest = true;
    return column;
}

} // namespace

FormRows::FormRows()
    : ListRows({listColumn("Form", kFormWidth), listColumn("Rows", kCountWidth, CellAlignment::Right), shareColumn(),
                listColumn("Values", kCountWidth, CellAlignment::Right), exampleColumn()}) {
    SetToolTip(FormValueCount, "Distinct values");
}

void FormRows::Show(const FieldBreakdown& breakdown) {
    m_breakdown = breakdown;
    m_conditions.clear();
    for (std::size_t form = 0; form < breakdown.forms.size(); ++form)
        m_conditions.push_back(formCondition(breakdown, form));
    ShowRecords(breakdown.forms.size());
}

void FormRows::Clear() {
    Show({});
}

const std::string& FormRows::GetCondition(std::int64_t row) const {
    return m_conditions.at(Record(row));
}

GridCell FormRows::CellOf(int column, std::size_t record) const {
    const FieldBreakdown::Form& form = m_breakdown.forms.at(record);
    switch (column) {
    case FormName: {
        GridCell cell = textCell(form.form);
        if (m_breakdown.hasMisfits() && !form.fits)
            cell.mark = kMisfitMark;
        return cell;
    }
    case FormRowCount:
        return countCell(form.rows);
    case FormShare:
        return shareCell(form.rows, m_breakdown.rows);
    case FormValueCount:
        return countCell(form.values);
    default:
        return valueCell(form.example);
    }
}

MisfitRows::MisfitRows()
    : ListRows({valueColumn(), listColumn("Rows", kCountWidth, CellAlignment::Right), shareColumn()}) {}

void MisfitRows::Show(const FieldBreakdown& breakdown, std::vector<CountedValue> misfits) {
    m_misfits = std::move(misfits);
    m_rows = breakdown.rows;
    m_otherValues = breakdown.misfitValues() - static_cast<std::int64_t>(m_misfits.size());
    m_otherRows = breakdown.misfitRows();
    for (const CountedValue& misfit : m_misfits)
        m_otherRows -= misfit.rows;
    const bool hasOthers = m_otherValues > 0;
    const std::size_t listed = m_misfits.size();
    ShowRecords(listed + (hasOthers ? 1 : 0), hasOthers ? static_cast<std::int64_t>(listed) : kNoPin);
}

void MisfitRows::Clear() {
    Show({}, {});
}

std::optional<KvbString> MisfitRows::GetValue(std::int64_t row) const {
    const std::uint32_t record = Record(row);
    return record < m_misfits.size() ? std::optional(m_misfits[record].value) : std::nullopt;
}

GridCell MisfitRows::CellOf(int column, std::size_t record) const {
    const bool isOthers = record >= m_misfits.size();
    const std::int64_t rows = isOthers ? m_otherRows : m_misfits[record].rows;
    switch (column) {
    case MisfitValue: {
        if (!isOthers)
            return valueCell(m_misfits[record].value);
        GridCell cell = textCell(countOf(m_otherValues, "more value"));
        cell.state = CellState::Unknown;
        return cell;
    }
    case MisfitRowCount:
        return countCell(rows);
    default:
        return shareCell(rows, m_rows);
    }
}

} // namespace tavix
