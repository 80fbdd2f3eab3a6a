#include "tabs/ui/CTabAlerts.h"

#include "alert/ui/AlertPlace.h"
#include "doc/CTavixDoc.h"
#include "grid/ui/CUGCtrl.h"
#include "tabs/ui/LinkButton.h"

#include <QAction>
#include <QHBoxLayout>
#include <QPointer>

namespace tavix {

namespace {

constexpr int kMargin = 12;
constexpr int kGap = 4;

} // namespace

CTabAlerts::CTabAlerts(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CListTab("Alerts", site, subject, isTornOff, parent),
      m_rows(ShowRows(std::make_unique<TableAlertRows>())),
      m_actions(new AlertActions(site, Grid(), [this] { return Target(); })),
      m_goTo(new QAction(tr("&Go To Figure"), this)) {
    Grid().addAction(m_goTo);
    connect(m_goTo, &QAction::triggered, this, &CTabAlerts::GoTo);
    connect(&Grid(), &CUGCtrl::RowActivated, this, &CTabAlerts::GoTo);
    connect(&Grid(), &CUGCtrl::CurrentRowChanged, this, [this](qint64 row) { m_goTo->setEnabled(row >= 0); });
    m_actions->AddToList(true);

    m_footer = new QWidget(this);
    auto* button = new LinkButton(m_footer);
    button->setObjectName(QStringLiteral("addAlert"));
    button->setText(tr("add alert..."));
    button->setToolTip(tr("An alert on the figure of the selected alert, or on the number of records (Insert)"));
    connect(button, &QPushButton::clicked, this, [this] { m_actions->Run(AlertCommand::Add); });
    auto* line = new QHBoxLayout(m_footer);
    line->setContentsMargins(kMargin, kGap, kMargin, kGap);
    line->addWidget(button);
    line->addStretch(1);
    AddFooter(*m_footer);
    m_add = button;
}

QWidget* CTabAlerts::GetLastTabStop() {
    return m_footer->isHidden() ? CListTab::GetLastTabStop() : m_add;
}

bool CTabAlerts::RefillsOn(RefreshHint hint) const {
    return CListTab::RefillsOn(hint) || hint == RefreshHint::AlertsChanged || hint == RefreshHint::HistoryDeleted;
}

std::string CTabAlerts::GetObstacle() const {
    return obstacleOfCollection(Subject(), "alerts");
}

void CTabAlerts::PrepareFill() {
    const std::int64_t row = Grid().GetCurrentRow();
    m_current = row >= 0 && row < m_rows.GetRowCount() ? m_rows.GetAlert(row).id : -1;
    m_footer->setVisible(Site().GetTavixDoc().GetViewer() && Subject().table.id != -1);
}

bool CTabAlerts::FillRows(PrViewer& viewer) {
    CTavixDoc& document = Site().GetTavixDoc();
    const std::vector<AlertState>& ofReport = document.GetAlerts();
    if (const std::string& failure = document.GetAlertsError(); !failure.empty())
        return m_rows.FailToRead(failure);
    return m_rows.Fill(viewer, Subject().table, document.GetJobId(), ofReport);
}

void CTabAlerts::RowsChanged() {
    if (const std::int64_t row = m_rows.FindAlert(m_current); row >= 0)
        Grid().SelectRow(row);
    m_goTo->setEnabled(Grid().GetCurrentRow() >= 0);
}

AlertTarget CTabAlerts::Target() const {
    AlertTarget target;
    for (const std::int64_t row : Grid().GetSelectedRows())
        target.alerts.push_back(m_rows.GetAlert(row));
    if (Subject().table.id == -1)
        return target;
    target.figure.emplace();
    target.figure->table = Subject().table.id;
    if (!target.alerts.empty() && target.alerts.front().tableId == Subject().table.id)
        target.figure = target.alerts.front().definition();
    return target;
}

void CTabAlerts::GoTo() {
    const std::int64_t row = Grid().GetCurrentRow();
    if (row < 0 || row >= m_rows.GetRowCount())
        return;
    const AlertState alert = m_rows.GetAlert(row);
    const QPointer<CTabAlerts> alive(this);
    const auto place = placeOfAlert(alert, m_rows.GetReport(alert), Site().GetTavixDoc());
    if (alive && place)
        showPlace(Site(), *place);
}

} // namespace tavix
