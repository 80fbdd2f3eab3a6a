#include "tabs/ui/CTabFreqDist.h"

#include "access/PrViewer.h"
#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "doc/CTavixDoc.h"
#include "drill/ui/ReadingProgress.h"
#include "filter/ExpressionCheck.h"
#include "filter/FilterMemory.h"
#include "filter/FilterSummary.h"
#include "filter/FunctionList.h"
#include "filter/ValueFilter.h"
#include "filter/ui/CFilterDlg.h"
#include "grid/ui/CUGCtrl.h"
#include "settings/Settings.h"
#include "tabs/FreqDistRows.h"
#include "tabs/PatternDistRows.h"
#include "tabs/ui/FilterLine.h"

#include <QAction>
#include <QItemSelectionModel>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace tavix {

namespace {

constexpr int kFrequencyDistribution = 6;

constexpr std::array<CommandRow<CTabFreqDist>, 2> kCommands = {{
    {CommandId::Filter, &CTabFreqDist::OnFilter, &CTabFreqDist::CanFilter},
    {CommandId::StopFiltering, &CTabFreqDist::OnStopFiltering, &CTabFreqDist::CanStopFiltering},
}};

} // namespace

CTabFreqDist::CTabFreqDist(CViewSite& site, const ReportSubject& subject, bool isTornOff, int itemCode, QWidget* parent)
    : CListTab(itemCode == kFrequencyDistribution ? "Frequency Distribution" : "Pattern Frequency Distribution", site,
               subject, isTornOff, parent),
      patienceMilliseconds(ReadingProgress::kPatienceMilliseconds),
      m_kind(itemCode == kFrequencyDistribution ? DistributionKind::Frequency : DistributionKind::Pattern),
      m_drill(site, *this),
      m_line(new FilterLine(this)),
      m_drillThrough(m_drill.MakeAction()),
      m_filter(new QAction(tr("&Filter..."), this)),
      m_stop(new QAction(tr("S&top Filtering"), this)),
      m_keep(new QAction(this)),
      m_exclude(new QAction(this)) {
    if (m_kind == DistributionKind::Frequency)
        m_rows = &ShowRows(std::make_unique<FreqDistRows>());
    else
        m_rows = &ShowRows(std::make_unique<PatternDistRows>());
    AddAbove(*m_line);
    MakeActions();
    ShowFilterLine();
}

void CTabFreqDist::MakeActions() {
    m_filter->setObjectName(QStringLiteral("filter"));
    m_stop->setObjectName(QStringLiteral("stopFiltering"));
    m_keep->setObjectName(QStringLiteral("filterToValue"));
    m_exclude->setObjectName(QStringLiteral("excludeValue"));
    const auto separator = [this] {
        auto* made = new QAction(this);
        made->setSeparator(true);
        return made;
    };
    Grid().addActions({m_drillThrough, separator(), m_keep, m_exclude, separator(), m_filter, m_stop});
    connect(m_drillThrough, &QAction::triggered, this, &CTabFreqDist::OnDrillThrough);
    connect(&Grid(), &CUGCtrl::RowActivated, this, &CTabFreqDist::OnDrillThrough);
    connect(m_filter, &QAction::triggered, this, &CTabFreqDist::OnFilter);
    connect(m_stop, &QAction::triggered, this, &CTabFreqDist::OnStopFiltering);
    connect(m_keep, &QAction::triggered, this, [this] { FilterToSelected(ValueChoice::Keep); });
    connect(m_exclude, &QAction::triggered, this, [this] { FilterToSelected(ValueChoice::Exclude); });
    connect(m_line, &FilterLine::EditClicked, this, &CTabFreqDist::OnFilter);
    connect(m_line, &FilterLine::StopClicked, this, &CTabFreqDist::OnStopFiltering);
    connect(Grid().selectionModel(), &QItemSelectionModel::selectionChanged, this, &CTabFreqDist::ShowActions);
}

std::span<const CommandRow<CTabFreqDist>> CTabFreqDist::CommandRows() {
    return kCommands;
}

bool CTabFreqDist::ExecuteCommand(int commandId) {
    return execute(CommandRows(), *this, commandId);
}

CommandState CTabFreqDist::UpdateCommand(int commandId) const {
    return stateOf(CommandRows(), *this, commandId);
}

const std::string& CTabFreqDist::GetFilter() const {
    static const std::string kNone;
    const FieldFilters& filters = Site().GetTavixDoc().GetFieldFilters();
    return Subject().field ? filters.Get(Subject().field->id, m_kind) : kNone;
}

bool CTabFreqDist::IsLoaded() const {
    return Subject().field && m_loadedField == Subject().field->id && Site().GetTavixDoc().GetViewer();
}

bool CTabFreqDist::CanFilter() const {
    return IsLoaded() && !m_rows->IsPlaceholder();
}

void CTabFreqDist::OnFilter() {
    if (!CanFilter())
        return;
    CTavixDoc& document = Site().GetTavixDoc();
    const std::shared_ptr<PrViewer> session = document.GetSession();
    const int field = Subject().field->id;
    ModalDialog<CFilterDlg> dialog(document.GetMessages(), document.GetSettings(), m_kind, GetFilter(),
                                   ReadFunctions(*session), this);
    // In another report the same number is another field's.
    if (dialog.isAccepted() && document.GetSession() == session)
        SetFilter(field, dialog->GetFilterText());
}

void CTabFreqDist::OnStopFiltering() {
    if (CanStopFiltering())
        SetFilter(Subject().field->id, {});
}

bool CTabFreqDist::CanDrillThrough() const {
    const std::int64_t row = Grid().GetCurrentRow();
    return m_drill.IsOffered() && Subject().field && row >= 0 && row < m_rows->GetRowCount() &&
           !m_rows->IsPlaceholder() && !m_rows->IsOther(row);
}

void CTabFreqDist::OnDrillThrough() {
    if (!CanDrillThrough())
        return;
    const KvbString value = m_rows->GetValue(Grid().GetCurrentRow());
    if (m_kind == DistributionKind::Frequency)
        m_drill.OpenValue(Subject(), value, DrillOrigin::Frequency);
    else
        m_drill.OpenPattern(Subject(), value);
}

void CTabFreqDist::FilterToSelected(ValueChoice choice) {
    if (!CanFilter())
        return;
    std::vector<KvbString> values;
    for (const std::int64_t row : Grid().GetSelectedRows()) {
        if (!m_rows->IsOther(row))
            values.push_back(m_rows->GetValue(row));
    }
    Messages& messages = Site().GetTavixDoc().GetMessages();
    Result<std::string> filter = FilterByValues(GetFilter(), m_kind, values, choice);
    if (!filter)
        return messages.warn(filter.error().text);
    // More values than an expression can name, for example.
    if (const auto error = CheckFilterText(*filter).error)
        return messages.warn("These values cannot be filtered:\n\n" + error->message);
    SetFilter(Subject().field->id, std::move(*filter));
}

void CTabFreqDist::SetFilter(int fieldId, std::string filter) {
    CTavixDoc& document = Site().GetTavixDoc();
    // The filter does its work also when the settings cannot be written.
    (void)FilterMemory(document.GetSettings()).Remember(m_kind, filter);
    document.GetFieldFilters().Set(fieldId, m_kind, std::move(filter));
    Q_EMIT CaptionChanged();
    SubjectChanged();
    ShowFilterLine();
    // The field may also be shown in windows of its own.
    Site().Broadcast(this, RefreshHint::FilterChanged, fieldId);
}

void CTabFreqDist::Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) {
    if (hint != RefreshHint::FilterChanged)
        return CListTab::Refresh(sender, hint, parameter);
    if (!Subject().field || Subject().field->id != parameter || m_appliedFilter == GetFilter())
        return;
    Q_EMIT CaptionChanged();
    SubjectChanged();
    ShowFilterLine();
}

bool CTabFreqDist::RefillsOn(RefreshHint hint) const {
    return CListTab::RefillsOn(hint) || hint == RefreshHint::TaskListLost;
}

std::string CTabFreqDist::GetObstacle() const {
    return Subject().field ? "" : "This run does not have the field.";
}

bool CTabFreqDist::FillRows(PrViewer& viewer) {
    // A copy: while a long list is read, the view may come to show something else.
    const FieldRecord field = *Subject().field;
    const std::int64_t limit = readInteger(Site().GetTavixDoc().GetSettings(), Setting::MaxFreqVals);
    m_appliedFilter = GetFilter();
    const KvbString filter(m_appliedFilter);
    ReadingProgress progress(ReadingKind::List, this, patienceMilliseconds);
    const bool filled = m_kind == DistributionKind::Frequency
                            ? static_cast<FreqDistRows&>(*m_rows).Fill(viewer, field, filter, limit, &progress)
                            : static_cast<PatternDistRows&>(*m_rows).Fill(viewer, field.id, filter, limit, &progress);
    const bool wasStopped = !filled && progress.WasCancelled();
    m_failure = filled ? std::string() : viewer.getErrorString().str();
    if (wasStopped)
        ShowStopped();
    // A filter that fails must be there to be corrected.
    m_loadedField = filled || wasStopped || IsFiltered() ? std::optional(field.id) : std::nullopt;
    ShowFilterLine();
    return filled || wasStopped;
}

// Who stops the reading of a filter goes on with the rows that are there, if they are the field's.
void CTabFreqDist::ShowStopped() {
    const bool keepsRows =
        IsFiltered() && Subject().field && m_loadedField == Subject().field->id && m_rows->GetRowCount() > 0;
    m_failure = keepsRows ? "The reading was stopped; these are the rows from before." : "The reading was stopped.";
    if (!keepsRows)
        m_rows->ShowStopped();
}

void CTabFreqDist::RowsChanged() {
    Grid().setContextMenuPolicy(!IsTornOff() && !m_rows->IsPlaceholder() ? Qt::DefaultContextMenu
                                                                         : Qt::PreventContextMenu);
    ShowFilterLine();
    ShowActions();
}

void CTabFreqDist::ShowFilterLine() {
    const bool hadFocus = m_line->isAncestorOf(focusWidget()) && m_line->isVisible();
    m_line->setVisible(IsFiltered());
    if (!IsFiltered()) {
        if (hadFocus)
            Grid().setFocus();
        return;
    }
    const QString summary = tr("Only rows with: %1").arg(toQString(FilterSummary(GetFilter())));
    if (!m_failure.empty())
        m_line->ShowText(tr("Not filtered. %1").arg(toQString(m_failure)), true);
    else if (!m_rows->GetWarning().empty())
        m_line->ShowText(QStringLiteral("%1  %2").arg(toQString(m_rows->GetWarning()), summary), true);
    else
        m_line->ShowText(summary, false);
}

void CTabFreqDist::ShowActions() {
    const std::vector<std::int64_t> selected = Grid().GetSelectedRows();
    // "Other" stands for no value that could be named.
    const bool hasOther = m_rows->GetOtherRow() >= 0 && std::any_of(selected.begin(), selected.end(),
                                                                    [this](auto row) { return m_rows->IsOther(row); });
    const bool canChoose = CanFilter() && !selected.empty() && !hasOther && !m_rows->IsPlaceholder();
    const bool several = selected.size() > 1;
    if (m_kind == DistributionKind::Frequency) {
        m_keep->setText(several ? tr("Filter to T&hese Values") : tr("Filter to T&his Value"));
        m_exclude->setText(several ? tr("&Exclude These Values") : tr("&Exclude This Value"));
    } else {
        m_keep->setText(several ? tr("Filter to T&hese Patterns") : tr("Filter to T&his Pattern"));
        m_exclude->setText(several ? tr("&Exclude These Patterns") : tr("&Exclude This Pattern"));
    }
    m_drillThrough->setEnabled(CanDrillThrough() && !several);
    m_keep->setEnabled(canChoose);
    m_exclude->setEnabled(canChoose);
    m_filter->setEnabled(CanFilter());
    m_stop->setEnabled(CanStopFiltering());
}

QWidget* CTabFreqDist::GetLastTabStop() {
    QWidget* last = CListTab::GetLastTabStop();
    return last || !m_line->isVisibleTo(this) ? last : m_line->GetLastTabStop();
}

} // namespace tavix
