#include "tabs/FreqDistModel.h"

#include "doc/CTavixDoc.h"
#include "filter/ExpressionCheck.h"
#include "filter/FilterMemory.h"
#include "filter/FilterSummary.h"
#include "settings/Settings.h"
#include "tabs/DrillThroughModel.h"
#include "tabs/FreqDistRows.h"
#include "tabs/PatternDistRows.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace tavix {

namespace {

struct EntryTexts {
    std::string_view keep;
    std::string_view exclude;
};

template <typename Rows>
std::unique_ptr<DistributionRows> makeRows() {
    return std::make_unique<Rows>();
}

/// What distinguishes the two tabs.
struct KindRow {
    DistributionKind kind;
    std::string_view name;
    EntryTexts ofOne;
    EntryTexts ofSeveral;
    std::unique_ptr<DistributionRows> (*makeRows)();
};

constexpr std::array<KindRow, 2> kKinds = {{
    {DistributionKind::Frequency,
     "Frequency Distribution",
     {"Filter to T&his Value", "&Exclude This Value"},
     {"Filter to T&hese Values", "&Exclude These Values"},
     &makeRows<FreqDistRows>},
    {DistributionKind::Pattern,
     "Pattern Frequency Distribution",
     {"Filter to T&his Pattern", "&Exclude This Pattern"},
     {"Filter to T&hese Patterns", "&Exclude These Patterns"},
     &makeRows<PatternDistRows>},
}};

const KindRow& rowOf(DistributionKind kind) {
    return *std::find_if(kKinds.begin(), kKinds.end(), [kind](const KindRow& row) { return row.kind == kind; });
}

} // namespace

std::string_view distributionListName(DistributionKind kind) {
    return rowOf(kind).name;
}

std::unique_ptr<DistributionRows> makeDistributionRows(DistributionKind kind) {
    return rowOf(kind).makeRows();
}

FreqDistModel::FreqDistModel(CTavixDoc& document, const ReportSubject& subject, DistributionKind kind,
                             DistributionRows& rows, bool isTornOff)
    : m_document(document), m_subject(subject), m_kind(kind), m_rows(rows), m_isTornOff(isTornOff) {}

const std::string& FreqDistModel::GetFilter() const {
    static const std::string kNone;
    return m_subject.field ? m_document.GetFieldFilters().Get(m_subject.field->id, m_kind) : kNone;
}

bool FreqDistModel::IsOutdated(int fieldId) const {
    return m_subject.field && m_subject.field->id == fieldId && m_appliedFilter != GetFilter();
}

bool FreqDistModel::IsLoaded() const {
    return m_subject.field && m_loadedField == m_subject.field->id && m_document.GetViewer();
}

std::string FreqDistModel::GetObstacle() const {
    return m_subject.field ? "" : "This run does not have the field.";
}

FreqDistModel::Filling FreqDistModel::Fill(PrViewer& viewer, PrViewDisplayMessage& sink,
                                           const std::function<bool()>& wasStopped) {
    // A copy: the subject may change while a long list is being read.
    const FieldRecord field = *m_subject.field;
    const std::int64_t limit = readInteger(m_document.GetSettings(), Setting::MaxFreqVals);
    m_appliedFilter = GetFilter();
    const bool isFilled = m_rows.Fill(viewer, field, KvbString(m_appliedFilter), limit, &sink);
    const bool isStopped = !isFilled && wasStopped();
    m_failure = isFilled ? std::string() : viewer.getErrorString().str();
    if (isStopped)
        KeepOrEmptyRows();
    // The user must be able to correct a filter that fails.
    m_loadedField = isFilled || isStopped || IsFiltered() ? std::optional(field.id) : std::nullopt;
    return isFilled ? Filling::Done : isStopped ? Filling::Stopped : Filling::Failed;
}

// Keeps the previous rows if they are the field's and a filter is shown above them; without one they would be mistaken
// for the whole list.
void FreqDistModel::KeepOrEmptyRows() {
    const bool keepsRows =
        IsFiltered() && m_subject.field && m_loadedField == m_subject.field->id && m_rows.GetRowCount() > 0;
    m_failure = keepsRows ? "The reading was stopped; the previous rows are shown." : "The reading was stopped.";
    if (!keepsRows)
        m_rows.ShowStopped();
}

bool FreqDistModel::CanFilter() const {
    return IsLoaded() && !m_rows.IsPlaceholder();
}

bool FreqDistModel::CanDrillThrough(std::int64_t row) const {
    return canDrillThrough(m_document) && m_subject.field && row >= 0 && row < m_rows.GetRowCount() &&
           !m_rows.IsPlaceholder() && !m_rows.IsOther(row);
}

FreqDistModel::Controls FreqDistModel::Enabled(std::int64_t currentRow,
                                               std::span<const std::int64_t> selectedRows) const {
    const bool isSeveral = selectedRows.size() > 1;
    // "Other" sums values that cannot be named. Looking for it comes last: the user may have selected a million rows.
    const auto hasOther = [this, selectedRows] {
        return m_rows.GetOtherRow() >= 0 &&
               std::any_of(selectedRows.begin(), selectedRows.end(), [this](auto row) { return m_rows.IsOther(row); });
    };
    const EntryTexts& texts = isSeveral ? rowOf(m_kind).ofSeveral : rowOf(m_kind).ofOne;
    Controls controls;
    controls.menu = !m_isTornOff && !m_rows.IsPlaceholder();
    controls.drillThrough = !isSeveral && CanDrillThrough(currentRow);
    controls.byValue = CanFilter() && !selectedRows.empty() && !hasOther();
    controls.filter = CanFilter();
    controls.stopFiltering = CanStopFiltering();
    controls.keepText = texts.keep;
    controls.excludeText = texts.exclude;
    return controls;
}

FreqDistModel::Line FreqDistModel::FilterLine() const {
    if (!IsFiltered())
        return {};
    if (!m_failure.empty())
        return {.isShown = true, .isAlarming = true, .text = "Not filtered. " + m_failure};
    const std::string summary = "Only rows with: " + FilterSummary(GetFilter());
    const std::string& warning = m_rows.GetWarning();
    return {
        .isShown = true, .isAlarming = !warning.empty(), .text = warning.empty() ? summary : warning + "  " + summary};
}

std::optional<std::string> FreqDistModel::FilterByRows(std::span<const std::int64_t> rows, ValueChoice choice) const {
    if (!CanFilter())
        return std::nullopt;
    std::vector<KvbString> values;
    for (const std::int64_t row : rows) {
        if (!m_rows.IsOther(row))
            values.push_back(m_rows.GetValue(row));
    }
    Result<std::string> filter = FilterByValues(GetFilter(), m_kind, values, choice);
    if (!filter) {
        m_document.GetMessages().warn(filter.error().text);
        return std::nullopt;
    }
    // For example, the values may be too many for an expression.
    if (const auto error = CheckFilterText(*filter).error) {
        m_document.GetMessages().warn("These values cannot be filtered:\n\n" + error->message);
        return std::nullopt;
    }
    return std::move(*filter);
}

void FreqDistModel::SetFilter(int fieldId, std::string filter) {
    // The filter applies even when the settings cannot be written.
    (void)FilterMemory(m_document.GetSettings()).Remember(m_kind, filter);
    m_document.GetFieldFilters().Set(fieldId, m_kind, std::move(filter));
}

} // namespace tavix
