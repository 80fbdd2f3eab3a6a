#include "tabs/ui/CTabStdMet.h"

#include "access/PrViewer.h"
#include "alert/ui/AlertActions.h"
#include "base/Metrics.h"
#include "base/NumberText.h"
#include "base/ui/ChoiceMenu.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "doc/CTavixDoc.h"
#include "doc/CollectionMembers.h"
#include "grid/ui/CUGCtrl.h"
#include "settings/Settings.h"
#include "tabs/FieldPictures.h"
#include "tabs/ui/FindingsStrip.h"

#include <QItemSelectionModel>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace tavix {

namespace {

// The place of the frequency distribution among the tabs of a field.
constexpr int kFrequencyTab = 1;
const CollectionsByField kNoCollections;
const std::string kReadFailed = "Error occurred while retrieving the standard metrics:\n\n";

} // namespace

CTabStdMet::CTabStdMet(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CProfTab(site, subject, isTornOff, parent),
      m_stack(new QStackedWidget(this)),
      m_grid(new CUGCtrl(this)),
      m_note(new QLabel(this)),
      m_collectionMenu(new QMenu(QStringLiteral("&Add to Collection"), this)),
      m_drill(site, *this),
      m_findings(new FindingsStrip(site, subject, *this, false)) {
    setObjectName(QStringLiteral("standardMetrics"));
    m_note->setTextFormat(Qt::PlainText);
    m_note->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_note->setAlignment(Qt::AlignCenter);
    m_note->setWordWrap(true);
    m_grid->setAccessibleName(QStringLiteral("Standard metrics"));
    m_grid->SetSource(&m_rows);
    QAction* drill = m_drill.MakeAction();
    m_grid->addAction(m_collectionMenu->menuAction());
    m_grid->addAction(drill);
    connect(drill, &QAction::triggered, this, &CTabStdMet::OpenRows);
    const auto showAction = [this, drill] { drill->setEnabled(CurrentDoor() != MetricDoor::None); };
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentChanged, this, showAction);
    connect(m_grid->model(), &QAbstractItemModel::modelReset, this, showAction);
    showAction();
    (new AlertActions(site, *m_grid, [this] { return CurrentFigure(); }))->AddMenuToList();
    m_grid->SetHeadingEntries([this](QMenu& menu, int column) { AddHeadingEntries(menu, column); });
    connect(m_collectionMenu, &QMenu::aboutToShow, this, &CTabStdMet::FillCollectionMenu);
    connect(m_grid, &CUGCtrl::RowActivated, this, [this](qint64 row) {
        if (CurrentDoor() != MetricDoor::None)
            OpenRows();
        else
            OpenField(row);
    });
    m_stack->addWidget(m_grid);
    m_stack->addWidget(m_note);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_findings);
    layout->addWidget(m_stack, 1);
}

// The grid must not fetch rows while they are being destroyed.
CTabStdMet::~CTabStdMet() {
    disconnect(m_grid->model(), nullptr, this, nullptr);
    disconnect(m_grid->selectionModel(), nullptr, this, nullptr);
    m_grid->SetSource(nullptr);
}

void CTabStdMet::OpenField(std::int64_t row) {
    // A torn-off window keeps its object; the frame opens the field.
    if (IsTornOff())
        Site().OpenField(Subject().selection, m_rows.GetFieldId(row));
    else
        Site().SelectField(m_rows.GetFieldId(row));
}

MetricDoor CTabStdMet::CurrentDoor() const {
    const QModelIndex at = m_grid->currentIndex();
    if (!at.isValid() || at.row() >= m_rows.GetRowCount() || !m_drill.IsOffered())
        return MetricDoor::None;
    return doorOf(m_rows.GetColumn(at.column()).parameter, m_rows.GetCell(at.column(), at.row()));
}

void CTabStdMet::OpenRows() {
    const MetricDoor door = CurrentDoor();
    if (door == MetricDoor::None)
        return;
    const QModelIndex at = m_grid->currentIndex();
    ReportSubject field = Subject();
    field.selection.fieldId = m_rows.GetFieldId(at.row());
    field.field.emplace();
    field.field->id = field.selection.fieldId;
    field.field->name = m_rows.GetFieldName(at.row());
    const std::string text = m_rows.GetCell(at.column(), at.row()).text;
    if (door == MetricDoor::Blanks)
        OpenBlanks(field, parseInteger(text).value_or(0));
    else
        m_drill.OpenValue(field, door == MetricDoor::Nulls ? KvbString() : KvbString(text),
                          DrillOrigin::StandardMetrics);
}

AlertTarget CTabStdMet::CurrentFigure() const {
    AlertTarget target;
    const QModelIndex at = m_grid->currentIndex();
    const bool isTable = Subject().selection.kind == ReportSelection::Kind::Table;
    if (!isTable || !at.isValid() || at.row() >= m_rows.GetRowCount() || at.column() >= m_rows.GetColumnCount())
        return target;
    if (const int metric = m_rows.GetWatchable(at.column()); metric != -1) {
        target.figure.emplace();
        target.figure->table = Subject().selection.table.id;
        target.figure->field = m_rows.GetFieldId(at.row());
        target.figure->metric = static_cast<MetricId>(metric);
    }
    target.alerts = m_rows.GetAlerts(at.column(), at.row());
    return target;
}

void CTabStdMet::OpenBlanks(const ReportSubject& field, std::int64_t count) {
    CTavixDoc& document = Site().GetTavixDoc();
    const std::shared_ptr<PrViewer> session = document.GetSession();
    const auto blanks = [&] {
        const std::unique_ptr<Messages::Busy> busy = document.GetMessages().busy();
        return readBlanks(*session, field.field->id, count, 2);
    }();
    if (!blanks)
        return WarnSoon(kReadFailed + blanks.error().text);
    if (blanks->size() == 1)
        return m_drill.OpenValue(field, blanks->front(), DrillOrigin::StandardMetrics);
    // Blanks of different lengths are different values: the field's list shows them, and each opens its rows.
    document.GetFieldFilters().Set(field.field->id, DistributionKind::Frequency, std::string(kBlankFilter));
    document.SetTab(ReportPaneKind::Field, Site().GetMode(), kFrequencyTab);
    OpenField(m_grid->GetCurrentRow());
}

void CTabStdMet::AddHeadingEntries(QMenu& menu, int column) {
    if (m_rows.GetTrendMetric() == -1)
        return;
    const auto nameOf = [](int metric) { return toQString(findMetric(metric)->name); };
    const std::vector<int> metrics = trendMetrics();
    if (m_rows.IsTrend(column)) {
        menu.addSeparator();
        QMenu* choices = menu.addMenu(QStringLiteral("&Metric of the Lines"));
        for (const int metric : metrics) {
            QAction* choice = choices->addAction(nameOf(metric), this, [this, metric] { ShowTrendOf(metric); });
            choice->setCheckable(true);
            choice->setChecked(metric == m_rows.GetTrendMetric());
        }
        return;
    }
    const int metric = m_rows.GetColumn(column).parameter;
    if (std::find(metrics.begin(), metrics.end(), metric) == metrics.end())
        return;
    menu.addSeparator();
    menu.addAction(QStringLiteral("Show the &Last Runs of %1").arg(nameOf(metric)), this,
                   [this, metric] { ShowTrendOf(metric); })
        ->setEnabled(metric != m_rows.GetTrendMetric());
}

void CTabStdMet::ShowTrendOf(int metricId) {
    // The line is shown even when the choice cannot be stored.
    (void)writeInteger(Site().GetTavixDoc().GetSettings(), Setting::TrendMetric, metricId);
    Fill(true);
}

QWidget* CTabStdMet::GetLastTabStop() {
    return m_stack->currentWidget() == m_grid ? m_grid : nullptr;
}

bool CTabStdMet::RefillsOn(RefreshHint hint) const {
    switch (hint) {
    case RefreshHint::CollectionsRefreshed:
    case RefreshHint::DocumentReset:
    case RefreshHint::RunLoaded:
    case RefreshHint::OptionsChanged:
    case RefreshHint::FindingsChanged:
    case RefreshHint::HistoryDeleted:
    case RefreshHint::AlertsChanged:
        return true;
    default:
        return false;
    }
}

void CTabStdMet::Fill(bool isSameObject) {
    CTavixDoc& document = Site().GetTavixDoc();
    const std::unique_ptr<Messages::Busy> busy = document.GetMessages().busy();
    // Reading the rows again keeps the current figure.
    const std::int64_t currentRow = m_grid->GetCurrentRow();
    const int currentField = isSameObject && currentRow >= 0 ? m_rows.GetFieldId(currentRow) : -1;
    const int currentMetric = currentField != -1 ? m_rows.GetColumn(m_grid->currentIndex().column()).parameter : -1;
    const ReportSelection& selection = Subject().selection;
    const bool isCollection = selection.kind == ReportSelection::Kind::Collection;
    PrViewer* viewer = document.GetViewer();
    StdMetRows rows;
    rows.SetLocale(userLocale());
    if (!isCollection)
        rows.SetAlerts({document.GetAlerts(), selection.table});
    const bool filled =
        viewer && rows.Fill(*viewer, selection, document.GetMetrics(),
                            isCollection ? kNoCollections : document.GetCollectionsOfTable(selection.table.id),
                            readInteger(document.GetSettings(), Setting::TrendMetric));
    const bool failed = viewer && !filled;
    if (failed)
        WarnSoon(kReadFailed + rows.GetErrorText());
    if (failed && isSameObject && m_rows.GetRowCount() > 0)
        return;
    m_grid->setFont(toQFont(readStatFont(document.GetSettings()), font()));
    m_findings->SetListFont(m_grid->font());
    m_findings->Refill();
    m_rows = std::move(rows);
    if (isSameObject)
        m_grid->RowsRefilled();
    else
        m_grid->SourceChanged();

    std::string note;
    if (failed)
        note = kReadFailed + m_rows.GetErrorText();
    else if (m_rows.GetRowCount() == 0)
        note = isCollection ? "No field of this report is in this collection." : "This table has no fields.";
    m_note->setText(toQString(note));
    m_stack->setCurrentWidget(note.empty() ? static_cast<QWidget*>(m_grid) : m_note);
    SelectMetric(currentField, currentMetric);
}

void CTabStdMet::SelectMetric(int fieldId, int metricId) {
    const std::int64_t row = m_rows.FindField(fieldId);
    if (row < 0)
        return;
    m_grid->SelectRow(row);
    for (int column = 0; column < m_rows.GetColumnCount(); ++column) {
        if (metricId != -1 && m_rows.GetColumn(column).parameter == metricId)
            m_grid->SelectCell(row, column);
    }
}

std::vector<int> CTabStdMet::SelectedFields() const {
    std::vector<int> fields;
    for (const std::int64_t row : m_grid->GetSelectedRows())
        fields.push_back(m_rows.GetFieldId(row));
    return fields;
}

void CTabStdMet::FillCollectionMenu() {
    const std::vector<int> fields = SelectedFields();
    if (fields.empty())
        return fillChoiceMenu(*m_collectionMenu, {}, QStringLiteral("No field is selected"), {});
    CTavixDoc& document = Site().GetTavixDoc();
    fillChoiceMenu(*m_collectionMenu, collectionChoices(document), QStringLiteral("There are no collections"),
                   [&document, fields](int collection) { addFieldsToCollection(document, collection, fields); });
}

} // namespace tavix
