#include "tabs/ui/CTabFreqDist.h"

#include "access/PrViewer.h"
#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "chart/FieldPictures.h"
#include "doc/CTavixDoc.h"
#include "drill/ui/ReadingProgress.h"
#include "filter/FunctionList.h"
#include "filter/ui/CFilterDlg.h"
#include "grid/ui/CUGCtrl.h"
#include "tabs/DistributionRows.h"
#include "tabs/ui/ExtentLine.h"
#include "tabs/ui/PicturePane.h"
#include "tabs/ui/SearchLine.h"

#include <QAction>
#include <QItemSelectionModel>

#include <array>

namespace tavix {

namespace {

constexpr std::array<CommandRow<CTabFreqDist>, 3> kCommands = {{
    {CommandId::QuickSearch, &CTabFreqDist::OnQuickSearch, &CTabFreqDist::CanFilter},
    {CommandId::Filter, &CTabFreqDist::OnFilter, &CTabFreqDist::CanFilter},
    {CommandId::StopFiltering, &CTabFreqDist::OnStopFiltering, &CTabFreqDist::CanStopFiltering},
}};

DistributionKind kindOf(ItemCode itemCode) {
    return itemCode == ItemCode::Frequency ? DistributionKind::Frequency : DistributionKind::Pattern;
}

} // namespace

CTabFreqDist::CTabFreqDist(CViewSite& site, const ReportSubject& subject, bool isTornOff, ItemCode itemCode,
                           QWidget* parent)
    : CListTab(distributionListName(kindOf(itemCode)), site, subject, isTornOff, parent),
      m_rows(ShowRows(makeDistributionRows(kindOf(itemCode)))),
      m_model(site.GetTavixDoc(), subject, kindOf(itemCode), m_rows, isTornOff),
      m_drill(site, *this),
      m_line(new SearchLine(this)),
      m_extent(new ExtentLine(this)),
      m_drillThrough(m_drill.MakeAction()),
      m_filter(new QAction(tr("&Filter..."), this)),
      m_stop(new QAction(tr("S&top Filtering"), this)),
      m_keep(new QAction(this)),
      m_exclude(new QAction(this)) {
    AddBeside(*new PicturePane(site, subject, *this,
                               itemCode == ItemCode::Frequency ? &chart::pictureOfRanks : &chart::pictureOfPatterns));
    AddAbove(*m_line);
    AddFooter(*m_extent);
    MakeActions();
    ShowLines();
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
    connect(m_line, &SearchLine::EditClicked, this, &CTabFreqDist::OnFilter);
    connect(m_line, &SearchLine::StopClicked, this, &CTabFreqDist::OnStopFiltering);
    connect(m_line, &SearchLine::SearchRequested, this, &CTabFreqDist::Search);
    connect(m_line, &SearchLine::ListRequested, this, &CTabFreqDist::GoToList);
    connect(m_extent, &ExtentLine::LimitChosen, this, &CTabFreqDist::ShowUpTo);
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

void CTabFreqDist::OnFilter() {
    if (!CanFilter())
        return;
    CTavixDoc& document = Site().GetTavixDoc();
    const std::shared_ptr<PrViewer> session = document.GetSession();
    const int field = Subject().field->id;
    ModalDialog<CFilterDlg> dialog(document.GetMessages(), document.GetSettings(), m_model.Kind(), m_model.GetFilter(),
                                   ReadFunctions(*session), this);
    // In another report the same id belongs to another field.
    if (dialog.isAccepted() && document.GetSession() == session)
        SetFilter(field, dialog->GetFilterText());
}

void CTabFreqDist::OnStopFiltering() {
    if (CanStopFiltering())
        SetFilter(Subject().field->id, {});
}

void CTabFreqDist::OnQuickSearch() {
    if (CanFilter())
        m_line->FocusSearch();
}

void CTabFreqDist::Search(bool isFinal) {
    if (!CanFilter())
        return;
    Result<std::optional<std::string>> filter = m_model.FilterByText(toUtf8(m_line->GetText()));
    m_line->ShowProblem(filter ? QString() : toQString(filter.error().text));
    if (filter && *filter)
        SetFilter(Subject().field->id, std::move(**filter), !isFinal);
}

void CTabFreqDist::GoToList() {
    if (Grid().isVisible() && Grid().GetCurrentRow() < 0)
        Grid().SelectRow(0);
    Grid().setFocus(Qt::OtherFocusReason);
}

void CTabFreqDist::ShowUpTo(qint64 limit) {
    m_model.ShowUpTo(limit);
    SubjectChanged();
}

void CTabFreqDist::OnDrillThrough() {
    const std::int64_t row = Grid().GetCurrentRow();
    if (!m_model.CanDrillThrough(row))
        return;
    const KvbString value = m_rows.GetValue(row);
    if (m_model.Kind() == DistributionKind::Frequency)
        m_drill.OpenValue(Subject(), value, DrillOrigin::Frequency);
    else
        m_drill.OpenPattern(Subject(), value);
}

void CTabFreqDist::FilterToSelected(ValueChoice choice) {
    if (std::optional<std::string> filter = m_model.FilterByRows(Grid().GetSelectedRows(), choice))
        SetFilter(Subject().field->id, std::move(*filter));
}

void CTabFreqDist::SetFilter(int fieldId, std::string filter, bool isProvisional) {
    m_model.SetFilter(fieldId, std::move(filter), isProvisional);
    FilterChanged();
    // Torn-off windows may show the field as well.
    Site().Broadcast(this, RefreshHint::FilterChanged, fieldId);
}

void CTabFreqDist::FilterChanged() {
    Q_EMIT CaptionChanged();
    SubjectChanged();
    ShowLines();
}

void CTabFreqDist::Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) {
    if (hint != RefreshHint::FilterChanged)
        CListTab::Refresh(sender, hint, parameter);
    else if (m_model.IsOutdated(parameter))
        FilterChanged();
}

bool CTabFreqDist::RefillsOn(RefreshHint hint) const {
    return CListTab::RefillsOn(hint) || hint == RefreshHint::TaskListLost;
}

std::string CTabFreqDist::GetObstacle() const {
    return m_model.GetObstacle();
}

bool CTabFreqDist::FillRows(PrViewer& viewer) {
    ReadingProgress progress(ReadingKind::List, this, Site().GetPatienceMilliseconds());
    const auto filling = m_model.Fill(viewer, progress, [&progress] { return progress.WasCancelled(); });
    ShowLines();
    return filling != FreqDistModel::Filling::Failed;
}

void CTabFreqDist::RowsChanged() {
    ShowLines();
    ShowActions();
}

QString CTabFreqDist::GetCaptionMark() const {
    return m_model.IsFiltered() ? tr("(Filtered)") : QString();
}

void CTabFreqDist::ShowLines() {
    QWidget* const focused = focusWidget();
    const bool hadFocus = focused && focused->isVisible() && isAncestorOf(focused);
    m_line->SetSearchesWhileTyping(m_model.SearchesWhileTyping());
    m_line->ShowSearch(m_model.Search(toUtf8(m_line->GetText())));
    m_line->ShowBase(toQString(m_model.BaseText()));
    m_line->ShowFilter(m_model.FilterLine());
    m_line->setVisible(CanFilter());
    m_extent->ShowExtent(m_model.ListExtent());
    // A button that is not there any more.
    if (hadFocus && !focused->isVisible())
        Grid().setFocus();
}

void CTabFreqDist::ShowActions() {
    const FreqDistModel::Controls controls = m_model.Enabled(Grid().GetCurrentRow(), Grid().GetSelectedRows());
    Grid().setContextMenuPolicy(controls.menu ? Qt::DefaultContextMenu : Qt::PreventContextMenu);
    m_keep->setText(toQString(controls.keepText));
    m_exclude->setText(toQString(controls.excludeText));
    m_drillThrough->setEnabled(controls.drillThrough);
    m_keep->setEnabled(controls.byValue);
    m_exclude->setEnabled(controls.byValue);
    m_filter->setEnabled(controls.filter);
    m_stop->setEnabled(controls.stopFiltering);
}

QWidget* CTabFreqDist::GetLastTabStop() {
    if (QWidget* const link = m_extent->GetLastTabStop())
        return link;
    QWidget* last = CListTab::GetLastTabStop();
    return last || !m_line->isVisibleTo(this) ? last : m_line->GetLastTabStop();
}

} // namespace tavix
