#include "alert/ui/CTabRptAlrts.h"

#include "alert/AlertOutput.h"
#include "alert/AlertPrintout.h"
#include "alert/ui/AlertPlace.h"
#include "alert/ui/AlertPrint.h"
#include "alert/ui/CAlertsFilterDlg.h"
#include "base/ui/ElidedLabel.h"
#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "doc/CTavixDoc.h"
#include "doc/CViewSite.h"
#include "drill/DrillOutput.h"
#include "grid/StoredColumns.h"
#include "grid/ui/CUGCtrl.h"
#include "settings/Settings.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPrinter>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <utility>

namespace tavix {

namespace {

constexpr int kMargin = 12;
constexpr QSize kUsualSize(1160, 560);
constexpr int kWidestSearch = 320;
constexpr int kLongestSearch = 1000;

} // namespace

AlertsDialogs::AlertsDialogs()
    : chooseFile([](QWidget& window, const QString& folder, const QString& name) {
          return chooseRowsFile(window, CTabRptAlrts::tr("Save Alerts"), folder, name);
      }) {}

CTabRptAlrts::CTabRptAlrts(CViewSite& site, const CAlertsFilter& filter, QWidget* parent, AlertsDialogs dialogs)
    : QDialog(parent),
      m_site(site),
      m_dialogs(std::move(dialogs)),
      m_filterLine(new ElidedLabel(this)),
      m_find(new QLineEdit(this)),
      m_stack(new QStackedWidget(this)),
      m_grid(new CUGCtrl(this)),
      m_note(new QLabel(this)),
      m_count(new QLabel(this)),
      m_actions(new AlertActions(site, *m_grid, [this] { return Target(); })) {
    setObjectName(QStringLiteral("alertsDialog"));
    setWindowTitle(tr("Alerts"));
    setSizeGripEnabled(true);
    SettingsStore& settings = site.GetTavixDoc().GetSettings();
    m_grid->setAccessibleName(tr("Alerts of the repository"));
    m_grid->setFont(toQFont(readStatFont(settings), font()));
    m_grid->SetColumnMemory(std::make_unique<StoredColumns>(settings, "reportalerts"));
    m_note->setObjectName(QStringLiteral("note"));
    m_note->setTextFormat(Qt::PlainText);
    m_note->setAlignment(Qt::AlignCenter);
    m_note->setWordWrap(true);
    m_stack->addWidget(m_grid);
    m_stack->addWidget(m_note);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    MakeTop(*layout);
    layout->addWidget(m_stack, 1);
    MakeButtons(*layout);
    MakeKeys();
    m_actions->AddToList(false);
    connect(m_actions, &AlertActions::AlertsChanged, this, &CTabRptAlrts::Fill);
    connect(m_grid, &CUGCtrl::RowActivated, this, &CTabRptAlrts::GoTo);
    connect(m_grid, &CUGCtrl::CurrentRowChanged, this, &CTabRptAlrts::EnableButtons);

    m_rows.SetFilter(filter);
    m_isRead = Read();
    m_grid->SetSource(&m_rows);
    m_grid->SelectRow(0);
    ShowRows();
    const QSize room = screen() ? screen()->availableSize() * 9 / 10 : kUsualSize;
    resize(kUsualSize.boundedTo(room));
    m_grid->setFocus();
}

// The grid must not ask for rows that are being destroyed.
CTabRptAlrts::~CTabRptAlrts() {
    m_grid->SetSource(nullptr);
}

void CTabRptAlrts::MakeTop(QVBoxLayout& layout) {
    m_filterLine->setObjectName(QStringLiteral("currentFilter"));
    m_filterLine->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_find->setObjectName(QStringLiteral("find"));
    m_find->setAccessibleName(tr("Find in all columns"));
    m_find->setPlaceholderText(tr("Find in all columns (Ctrl+F)"));
    m_find->setClearButtonEnabled(true);
    m_find->setMaxLength(kLongestSearch);
    m_find->setMaximumWidth(kWidestSearch);
    m_find->setTextMargins(4, 0, 4, 0);
    auto* line = new QHBoxLayout();
    line->setContentsMargins(kMargin, kMargin, kMargin, kMargin - 2);
    line->setSpacing(kMargin);
    line->addWidget(m_filterLine, 3);
    line->addWidget(m_find, 2);
    layout.addLayout(line);
    connect(m_find, &QLineEdit::textChanged, this, &CTabRptAlrts::Search);
}

void CTabRptAlrts::MakeButtons(QVBoxLayout& layout) {
    m_count->setObjectName(QStringLiteral("count"));
    m_count->setTextFormat(Qt::PlainText);
    m_count->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_count->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* buttons = new QDialogButtonBox(this);
    const auto add = [&](const QString& text, const char* name, const QString& keys, void (CTabRptAlrts::*act)()) {
        QPushButton* button = buttons->addButton(text, QDialogButtonBox::ActionRole);
        button->setObjectName(QLatin1String(name));
        button->setToolTip(keys);
        connect(button, &QPushButton::clicked, this, act);
        return button;
    };
    m_save = add(tr("&Save..."), "save", tr("Ctrl+S"), &CTabRptAlrts::Save);
    m_goTo = add(tr("&Go To"), "goTo", tr("Shows the figure that the alert watches (Enter)"), &CTabRptAlrts::GoTo);
    m_print = add(tr("&Print..."), "print", tr("Ctrl+P"), &CTabRptAlrts::Print);
    m_filter = add(tr("&Filter..."), "filter", tr("Ctrl+Shift+F"), &CTabRptAlrts::Filter);
    QPushButton* close = buttons->addButton(tr("&Close"), QDialogButtonBox::RejectRole);
    close->setObjectName(QStringLiteral("close"));
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    // Enter is for the list and the search, not for a default button.
    for (QAbstractButton* button : buttons->buttons())
        static_cast<QPushButton*>(button)->setAutoDefault(false);
    // Above the buttons, which leave it no room in a narrow window.
    m_count->setContentsMargins(kMargin, kMargin - 2, kMargin, 0);
    layout.addWidget(m_count);
    auto* line = new QHBoxLayout();
    line->setContentsMargins(kMargin, kMargin - 2, kMargin, kMargin);
    line->addWidget(buttons);
    layout.addLayout(line);
}

void CTabRptAlrts::MakeKeys() {
    const auto onKey = [this](const QKeySequence& keys, auto&& act) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, act);
    };
    onKey(QKeySequence::Find, [this] {
        m_find->setFocus(Qt::ShortcutFocusReason);
        m_find->selectAll();
    });
    onKey(Qt::CTRL | Qt::SHIFT | Qt::Key_F, [this] { m_filter->click(); });
    onKey(Qt::CTRL | Qt::Key_S, [this] { m_save->click(); });
    onKey(Qt::CTRL | Qt::Key_P, [this] { m_print->click(); });
}

AlertTarget CTabRptAlrts::Target() const {
    AlertTarget target;
    for (const std::int64_t row : m_grid->GetSelectedRows())
        target.alerts.push_back(m_rows.GetAlert(row));
    return target;
}

bool CTabRptAlrts::Read() {
    CTavixDoc& document = m_site.GetTavixDoc();
    const std::shared_ptr<PrViewer> session = document.GetSession();
    const auto busy = document.GetMessages().busy();
    if (session)
        return m_rows.Fill(*session);
    m_rows.Clear();
    return true;
}

void CTabRptAlrts::Fill() {
    const std::int64_t row = m_grid->GetCurrentRow();
    const int current = row >= 0 && row < m_rows.GetRowCount() ? m_rows.GetAlert(row).id : -1;
    const bool isRead = Read();
    m_grid->RowsRefilled();
    const std::int64_t again = m_rows.FindAlert(current);
    m_grid->SelectRow(again >= 0 ? again : std::max<std::int64_t>(0, std::min(row, m_rows.GetRowCount() - 1)));
    ShowRows();
    if (!isRead)
        WarnOfFailure();
}

void CTabRptAlrts::WarnOfFailure() {
    m_site.GetTavixDoc().GetMessages().warn(m_rows.GetErrorText());
}

void CTabRptAlrts::ShowRows() {
    m_filterLine->setText(toQString(m_rows.GetFilterText()).simplified());
    m_count->setText(toQString(m_rows.GetCountText()));
    const std::string note = m_rows.GetEmptyText();
    m_note->setText(toQString(note));
    m_stack->setCurrentWidget(note.empty() ? static_cast<QWidget*>(m_grid) : m_note);
    m_find->setAccessibleDescription(m_count->text());
    EnableButtons();
}

void CTabRptAlrts::EnableButtons() {
    const bool hasRows = m_rows.GetRowCount() > 0;
    m_save->setEnabled(hasRows);
    m_print->setEnabled(hasRows);
    m_goTo->setEnabled(hasRows && m_grid->GetCurrentRow() >= 0);
    m_filter->setEnabled(!m_rows.GetAll().empty());
    m_find->setEnabled(!m_rows.GetAll().empty());
}

void CTabRptAlrts::Search() {
    m_rows.SetSearch(toUtf8(m_find->text()));
    m_grid->RowsRefilled();
    m_grid->SelectRow(0);
    ShowRows();
}

void CTabRptAlrts::Filter() {
    ModalDialog<CAlertsFilterDlg> dialog(m_rows.GetAll(), m_rows.GetFilter(), this);
    if (!dialog.isAccepted())
        return;
    m_rows.SetFilter(dialog->Filter());
    m_grid->RowsRefilled();
    m_grid->SelectRow(0);
    ShowRows();
    m_grid->setFocus();
}

void CTabRptAlrts::Save() {
    CTavixDoc& document = m_site.GetTavixDoc();
    const QString path =
        m_dialogs.chooseFile(*this, toQString(drillFolder(document.GetSettings())), toQString(kAlertsFileName));
    if (!path.isEmpty())
        saveAlerts(m_rows, QFile::encodeName(path).toStdString(), document.GetMessages());
}

void CTabRptAlrts::Print() {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(tr("Alerts Report"));
    if (!m_dialogs.choosePrinter(*this, printer))
        return;
    Messages& messages = m_site.GetTavixDoc().GetMessages();
    Status printed;
    {
        const auto busy = messages.busy();
        printed = printAlerts(m_rows, m_rows.GetFilterText(), printer);
    }
    if (!printed)
        messages.warn(printed.error().text, kPrintErrorCaption);
}

void CTabRptAlrts::GoTo() {
    const std::int64_t row = m_grid->GetCurrentRow();
    if (row < 0 || row >= m_rows.GetRowCount())
        return;
    const AlertState alert = m_rows.GetAlert(row);
    const QPointer<CTabRptAlrts> alive(this);
    std::optional<NavigateRequest> place = placeOfAlert(alert, m_rows.GetReport(alert), m_site.GetTavixDoc());
    if (!alive || !place)
        return;
    m_place = std::move(place);
    accept();
}

void CTabRptAlrts::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (m_find->hasFocus() && (isEnter || event->key() == Qt::Key_Down))
        return m_grid->setFocus();
    // The first Escape clears the search, the next closes the window.
    if (event->key() == Qt::Key_Escape && !m_find->text().isEmpty()) {
        m_find->clear();
        return m_grid->setFocus();
    }
    QDialog::keyPressEvent(event);
}

// The message appears over the dialog with the rows that were read.
void CTabRptAlrts::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!std::exchange(m_isRead, true))
        QMetaObject::invokeMethod(this, &CTabRptAlrts::WarnOfFailure, Qt::QueuedConnection);
}

std::optional<NavigateRequest> CTabRptAlrts::Run(CViewSite& site, CAlertsFilter& filter, QWidget* parent) {
    if (!site.GetTavixDoc().GetSession())
        return std::nullopt;
    ModalDialog<CTabRptAlrts> dialog(site, filter, parent);
    const bool goes = dialog.isAccepted();
    if (!dialog)
        return std::nullopt;
    filter = dialog->GetFilter();
    return goes ? dialog->GetPlace() : std::nullopt;
}

} // namespace tavix
