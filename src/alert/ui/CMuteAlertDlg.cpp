#include "alert/ui/CMuteAlertDlg.h"

#include "base/NoteText.h"
#include "base/ui/QtText.h"
#include "base/ui/QuietPalette.h"
#include "report/CountText.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSpinBox>
#include <QVBoxLayout>

#include <utility>

namespace tavix {

namespace {

constexpr int kUsualDays = 7;

QDate dayOf(LibraryDate date) {
    const DateParts parts = decompose(date);
    return {parts.year, parts.month, parts.day};
}

} // namespace

CMuteAlertDlg::CMuteAlertDlg(const std::vector<AlertState>& alerts, LibraryDate runStart,
                             std::function<bool(const MuteDraft&)> store, QWidget* parent)
    : QDialog(parent),
      m_runStart(runStart),
      m_store(std::move(store)),
      m_reason(new QPlainTextEdit(this)),
      m_forRuns(new QCheckBox(tr("For a &number of runs:"), this)),
      m_runs(new QSpinBox(this)),
      m_untilDate(new QCheckBox(tr("&Until the date:"), this)),
      m_date(new QDateEdit(this)),
      m_extent(new QLabel(this)) {
    setObjectName(QStringLiteral("muteDialog"));
    setWindowTitle(alerts.size() == 1 ? tr("Mute Alert") : tr("Mute Alerts"));
    m_reason->setObjectName(QStringLiteral("reason"));
    m_reason->setAccessibleName(tr("Reason for muting the alert"));
    m_reason->setTabChangesFocus(true);
    m_forRuns->setObjectName(QStringLiteral("forRuns"));
    m_runs->setObjectName(QStringLiteral("runs"));
    m_runs->setAccessibleName(tr("Number of runs, the run that is shown included"));
    m_runs->setRange(1, MuteDraft::kMostRuns);
    m_untilDate->setObjectName(QStringLiteral("untilDate"));
    m_date->setObjectName(QStringLiteral("date"));
    m_date->setAccessibleName(tr("Runs that start on this date or later are not muted"));
    m_date->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    m_date->setCalendarPopup(true);
    m_date->setDate(dayOf(runStart).addDays(kUsualDays));
    m_extent->setObjectName(QStringLiteral("extent"));
    m_forRuns->setChecked(true);
    if (const std::optional<AlertMute>& kept = alerts.front().mute; kept && alerts.size() == 1) {
        m_reason->setPlainText(toQString(kept->reason));
        m_reason->selectAll();
        m_forRuns->setChecked(kept->runs > 0);
        m_runs->setValue(kept->runs);
        m_untilDate->setChecked(kept->until.has_value());
        if (kept->until)
            m_date->setDate(dayOf(*kept->until));
    }
    LayOut(alerts.size() == 1 ? toQString(alerts.front().description)
                              : toQString(countOf(static_cast<std::int64_t>(alerts.size()), "alert")));
    connect(m_reason, &QPlainTextEdit::textChanged, this, &CMuteAlertDlg::ShowExtent);
    connect(m_forRuns, &QCheckBox::toggled, this, &CMuteAlertDlg::ShowExtent);
    connect(m_runs, &QSpinBox::valueChanged, this, &CMuteAlertDlg::ShowExtent);
    connect(m_untilDate, &QCheckBox::toggled, this, &CMuteAlertDlg::ShowExtent);
    connect(m_date, &QDateEdit::dateChanged, this, &CMuteAlertDlg::ShowExtent);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(QKeySequence(Qt::CTRL | key), this), &QShortcut::activated, this, &CMuteAlertDlg::accept);
    ShowExtent();
    m_reason->setFocus();
    resize(500, 340);
}

void CMuteAlertDlg::LayOut(const QString& heading) {
    auto* title = new QLabel(heading, this);
    QFont strong = font();
    strong.setWeight(QFont::DemiBold);
    title->setFont(strong);
    for (QLabel* label : {title, m_extent}) {
        // Names come from the data.
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    auto* reasonLabel = new QLabel(tr("&Reason:"), this);
    reasonLabel->setBuddy(m_reason);
    m_extent->setPalette(quietPalette(palette()));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_mute = buttons->button(QDialogButtonBox::Ok);
    m_mute->setObjectName(QStringLiteral("mute"));
    m_mute->setText(tr("&Mute"));
    connect(buttons, &QDialogButtonBox::accepted, this, &CMuteAlertDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* ends = new QGridLayout;
    ends->addWidget(m_forRuns, 0, 0);
    ends->addWidget(m_runs, 0, 1);
    ends->addWidget(m_untilDate, 1, 0);
    ends->addWidget(m_date, 1, 1);
    ends->setColumnStretch(2, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addSpacing(4);
    layout->addWidget(reasonLabel);
    layout->addWidget(m_reason, 1);
    layout->addLayout(ends);
    layout->addWidget(m_extent);
    layout->addSpacing(4);
    layout->addWidget(buttons);
}

MuteDraft CMuteAlertDlg::Draft() const {
    MuteDraft draft;
    draft.reason = toUtf8(m_reason->toPlainText());
    draft.runs = m_forRuns->isChecked() ? std::optional(m_runs->value()) : std::nullopt;
    if (m_untilDate->isChecked())
        draft.until = UtcTime(std::chrono::milliseconds(m_date->date().startOfDay().toMSecsSinceEpoch()));
    return draft;
}

void CMuteAlertDlg::ShowExtent() {
    const MuteDraft draft = Draft();
    const Status checked = checkMute(draft, m_runStart);
    m_runs->setEnabled(draft.runs.has_value());
    m_date->setEnabled(draft.until.has_value());
    m_mute->setEnabled(checked.ok());
    m_mute->setToolTip(checked ? tr("Ctrl+Enter") : toQString(checked.error().text));
    // The missing reason is seen; a wrong date or a long reason needs words.
    const bool isWritten = !tidyNote(draft.reason).empty();
    m_extent->setText(toQString(!checked && isWritten ? checked.error().text : muteExtent(draft)));
}

void CMuteAlertDlg::accept() {
    if (m_mute->isEnabled() && m_store(Draft()))
        QDialog::accept();
    else
        m_reason->setFocus();
}

} // namespace tavix
