#include "shell/JobListPage.h"

#include "base/ui/QtText.h"
#include "base/ui/Theme.h"

#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace tavix::shell {

namespace {

enum Column { NameColumn, RunsColumn, LastRunColumn, DescriptionColumn };
constexpr int kRowHeight = 36;
constexpr int kJobRole = Qt::UserRole;

} // namespace

JobListPage::JobListPage(QWidget* parent)
    : QWidget(parent), m_title(new QLabel(this)), m_detail(new QLabel(this)), m_list(new QTreeWidget(this)) {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    QFont titleFont = font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.6);
    titleFont.setWeight(QFont::DemiBold);
    m_title->setFont(titleFont);
    m_title->setTextFormat(Qt::PlainText);
    m_detail->setTextFormat(Qt::PlainText);
    m_detail->setWordWrap(true);
    QPalette quiet = palette();
    // On a base-coloured background, a label draws in QPalette::Text.
    quiet.setColor(QPalette::Text, quietText(quiet));
    m_detail->setPalette(quiet);

    m_list->setAccessibleName(QStringLiteral("Reports"));
    m_list->setHeaderLabels(
        {QStringLiteral("Report"), QStringLiteral("Runs"), QStringLiteral("Last run"), QStringLiteral("Description")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAllColumnsShowFocus(true);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->header()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_list->header()->setStretchLastSection(true);
    m_list->header()->setHighlightSections(false);
    m_list->headerItem()->setTextAlignment(RunsColumn, Qt::AlignRight | Qt::AlignVCenter);
    m_list->setColumnWidth(NameColumn, 260);
    m_list->setColumnWidth(RunsColumn, 70);
    m_list->setColumnWidth(LastRunColumn, 240);
    const auto choose = [this](const QTreeWidgetItem* item) {
        Q_EMIT jobChosen(item->data(NameColumn, kJobRole).toInt());
    };
    connect(m_list, &QTreeWidget::itemActivated, this, choose);
    connect(m_list, &QTreeWidget::itemClicked, this, choose);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 28, 32, 24);
    layout->setSpacing(6);
    layout->addWidget(m_title);
    layout->addWidget(m_detail);
    layout->addSpacing(14);
    layout->addWidget(m_list, 1);
    layout->addStretch(0);
}

void JobListPage::setReports(const std::string& repository,
                             const std::vector<Veldra::Solenne::Tavix::TavixReportInfo>& reports) {
    m_title->setText(QFileInfo(toQString(repository)).fileName());
    m_detail->setText(reports.empty() ? QStringLiteral("This repository holds no reports yet. Make one with: tavix "
                                                       "profile table.csv --repository %1")
                                            .arg(toQString(repository))
                                      : QStringLiteral("Choose a report to open it."));
    m_list->clear();
    for (const auto& report : reports) {
        auto* item = new QTreeWidgetItem(m_list);
        item->setText(NameColumn, toQString(report.Name));
        item->setText(RunsColumn, QString::number(report.RunCount));
        item->setTextAlignment(RunsColumn, Qt::AlignRight | Qt::AlignVCenter);
        item->setText(LastRunColumn, toQString(report.LastRun));
        item->setText(DescriptionColumn, toQString(report.Description));
        item->setData(NameColumn, kJobRole, report.JobID);
        item->setSizeHint(NameColumn, {0, kRowHeight});
    }
    m_list->setVisible(!reports.empty());
    if (!reports.empty())
        m_list->setCurrentItem(m_list->topLevelItem(0));
}

void JobListPage::selectJob(int jobId) {
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        if (m_list->topLevelItem(row)->data(NameColumn, kJobRole).toInt() == jobId)
            m_list->setCurrentItem(m_list->topLevelItem(row));
    }
}

void JobListPage::focusList() {
    m_list->setFocus(Qt::OtherFocusReason);
}

} // namespace tavix::shell
