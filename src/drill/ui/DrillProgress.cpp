#include "drill/ui/DrillProgress.h"

#include "base/ui/QtText.h"
#include "doc/CountText.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace tavix {

namespace {

// What is over sooner needs no dialog.
constexpr qint64 kPatienceMilliseconds = 300;
constexpr qint64 kUpdateMilliseconds = 50;
constexpr int kSteps = 1000;

} // namespace

DrillProgressDlg::DrillProgressDlg(QWidget* parent)
    : QDialog(parent), m_text(new QLabel(this)), m_rows(new QLabel(this)), m_bar(new QProgressBar(this)) {
    setObjectName(QStringLiteral("drillProgress"));
    setWindowTitle(tr("Drill Through"));
    setWindowModality(Qt::ApplicationModal);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_text->setText(tr("Reading the source..."));
    m_bar->setAccessibleName(tr("Share of the source that was read"));
    m_bar->setTextVisible(false);
    m_bar->setRange(0, 0);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_text);
    layout->addWidget(m_bar);
    layout->addWidget(m_rows);
    layout->addWidget(buttons);
    setMinimumWidth(380);
}

void DrillProgressDlg::ShowProgress(const QString& text, std::int64_t done, std::int64_t total) {
    if (!text.isEmpty())
        m_text->setText(text);
    m_bar->setRange(0, total > 0 ? kSteps : 0);
    if (total > 0)
        m_bar->setValue(static_cast<int>(kSteps * (static_cast<double>(done) / static_cast<double>(total))));
}

void DrillProgressDlg::ShowRows(std::int64_t rows) {
    m_rows->setText(tr("%1 found").arg(toQString(countOf(rows, "row"))));
}

DrillProgress::DrillProgress(Messages& messages, QWidget* parent) : m_parent(parent), m_busy(messages.busy()) {
    m_sinceStart.start();
}

DrillProgress::~DrillProgress() = default;

bool DrillProgress::progress(std::string_view text, std::int64_t done, std::int64_t total) {
    if (m_dialog || m_sinceStart.elapsed() >= kPatienceMilliseconds)
        m_text = toQString(text);
    m_done = done;
    m_total = total;
    return Update();
}

bool DrillProgress::Found(std::int64_t rows) {
    m_rows = rows;
    return Update();
}

bool DrillProgress::Update() {
    if (m_cancelled || m_sinceStart.elapsed() < kPatienceMilliseconds ||
        (m_sinceUpdate.isValid() && m_sinceUpdate.elapsed() < kUpdateMilliseconds))
        return !m_cancelled;
    if (!m_dialog) {
        m_busy.reset();
        m_dialog = std::make_unique<DrillProgressDlg>(m_parent);
        QObject::connect(m_dialog.get(), &QDialog::rejected, m_dialog.get(), [this] { m_cancelled = true; });
        m_dialog->show();
    }
    m_dialog->ShowProgress(m_text, m_done, m_total);
    m_dialog->ShowRows(m_rows);
    QCoreApplication::processEvents();
    m_sinceUpdate.start();
    return !m_cancelled;
}

} // namespace tavix
