#include "tabs/FreqDistModel.h"

#include "doc/CTavixDoc.h"
#include "filter/ExpressionCheck.h"
#include "filter/FilterMemory.h"
#include "filter/FilterSummary.h"
#include "filter/QuickSearch.h"
#include "report/CountText.h"
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

/// The first limit that is offered in place of a smaller one; further ones are ten times as high.
constexpr std::int64_t kFirstStep = 1000;
/// A list holds its entries in memory.
constexpr std::int64_t kMostShown = 5'000'000;
/// The entries of a list that is searched within a fraction of a second.
constexpr std::int64_t kMostWhileTyping = 1'000'000;

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
    if (m_chosenLimit && m_chosenLimit->field != field.id)
        m_chosenLimit.reset();
    const std::int64_t limit = Limit();
    m_appliedFilter = GetFilter();
    const bool isFilled = m_rows.Fill(viewer, field, KvbString(m_appliedFilter), limit, &sink);
    const bool isStopped = !isFilled && wasStopped();
    m_failure = isFilled ? std::string() : viewer.getErrorString().str();
    if (isFilled)
        m_shown = {field.id, m_appliedFilter, limit};
    if (isStopped)
        KeepOrEmptyRows();
    // The user must be able to correct a filter that fails.
    m_loadedField = isFilled || isStopped || IsFiltered() ? std::optional(field.id) : std::nullopt;
    return isFilled ? Filling::Done : isStopped ? Filling::Stopped : Filling::Failed;
}

// Keeps the previous rows if they are the field's and a filter is shown above them; without one they would be mistaken
// for the whole list, unless only more or fewer of its rows were asked for.
void FreqDistModel::KeepOrEmptyRows() {
    const bool hasRows = m_subject.field && m_loadedField == m_subject.field->id && m_rows.GetRowCount() > 0;
    const bool isSameList = m_shown && m_subject.field && m_shown->field == m_subject.field->id &&
                            m_shown->filter == GetFilter() && m_shown->limit != Limit();
    const bool keepsRows = hasRows && (IsFiltered() || isSameList);
    if (keepsRows && isSameList)
        ShowUpTo(m_shown->limit);
    m_failure = keepsRows ? "The reading was stopped; the previous rows are shown." : "The reading was stopped.";
    if (!keepsRows) {
        m_rows.ShowStopped();
        m_shown.reset();
        m_chosenLimit.reset();
    }
}

std::int64_t FreqDistModel::UsualLimit() const {
    return readInteger(m_document.GetSettings(), Setting::MaxFreqVals);
}

std::int64_t FreqDistModel::Limit() const {
    const bool isChosen = m_chosenLimit && m_subject.field && m_chosenLimit->field == m_subject.field->id;
    return isChosen ? m_chosenLimit->limit : UsualLimit();
}

void FreqDistModel::ShowUpTo(std::int64_t limit) {
    if (m_subject.field)
        m_chosenLimit = {m_subject.field->id, limit};
}

FreqDistModel::Extent FreqDistModel::ListExtent() const {
    if (!CanFilter() || m_rows.GetRowCount() == 0)
        return {};
    const std::int64_t listed = m_rows.GetListed();
    const std::int64_t all = listed + m_rows.GetFolded();
    const std::int64_t usual = UsualLimit();
    if (listed == all && listed <= usual)
        return {};
    Extent extent;
    if (!m_failure.empty() && !IsFiltered())
        extent.text = "The reading was stopped  ·  ";
    const std::string_view noun = m_kind == DistributionKind::Pattern ? "pattern" : "value";
    extent.text += listed == all ? "showing all " + countOf(all, noun)
                                 : "showing " + groupedCount(listed) + " of " + countOf(all, noun);
    const auto offer = [&extent](std::string text, std::int64_t limit) {
        extent.steps.push_back({std::move(text), limit});
    };
    if (listed < all) {
        std::int64_t next = kFirstStep;
        while (next <= listed)
            next *= 10;
        if (next < all)
            offer("show " + groupedCount(next), next);
        if (all <= kMostShown)
            offer("all", all);
    }
    if (listed > usual)
        offer("show " + groupedCount(usual), usual);
    return extent;
}

std::string FreqDistModel::BaseText() const {
    if (!CanFilter() || !m_shown || m_shown->field != m_subject.field->id)
        return {};
    const FieldRecord& field = *m_subject.field;
    const bool isPattern = m_kind == DistributionKind::Pattern;
    const std::int64_t all = isPattern ? patternTotal(field.metrics) : valueTotal(field.metrics);
    const DistributionShare& share = m_rows.GetShare();
    if (!m_shown->filter.empty())
        return passingText(m_kind, share.Total(), std::max(all, share.Total()));
    const TableIdentity& table = m_subject.table;
    std::string text = "Shares " + share.BaseText();
    if (table.isSample && table.kind != TableKind::Filter && table.totalRecords >= 0)
        text += ", a sample of " + groupedCount(table.totalRecords);
    return text;
}

FreqDistModel::SearchField FreqDistModel::Search(std::string_view text) const {
    SearchField field;
    field.isEnabled = CanFilter();
    field.placeholder = m_kind == DistributionKind::Pattern ? "Search patterns: text, =x, ~regexp"
                                                            : "Search: text, =x, >n, ~regexp, null";
    const std::string& filter = GetFilter();
    if (const auto meant = QuickFilter(text, m_kind); meant && *meant == filter) {
        field.text = text;
        return field;
    }
    if (auto typed = QuickSearchOf(filter, m_kind))
        field.text = std::move(*typed);
    else
        field.placeholder = "(edited in the dialog)";
    return field;
}

Result<std::optional<std::string>> FreqDistModel::FilterByText(std::string_view typed) const {
    Result<std::string> filter = QuickFilter(typed, m_kind);
    if (!filter)
        return filter.error();
    return *filter == GetFilter() ? std::optional<std::string>() : std::optional(std::move(*filter));
}

bool FreqDistModel::SearchesWhileTyping() const {
    if (!m_subject.field)
        return false;
    const FieldRecord& field = *m_subject.field;
    return (m_kind == DistributionKind::Pattern ? field.patternCount : field.freqCount) <= kMostWhileTyping;
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

void FreqDistModel::SetFilter(int fieldId, std::string filter, bool isProvisional) {
    // The filter applies even when the settings cannot be written.
    if (!isProvisional)
        (void)FilterMemory(m_document.GetSettings()).Remember(m_kind, filter);
    m_document.GetFieldFilters().Set(fieldId, m_kind, std::move(filter));
}

} // namespace tavix
