#include "drill/ui/ReadingProgress.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "report/CountText.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace tavix {

namespace {

constexpr qint64 kUpdateMilliseconds = 50;
constexpr int kSteps = 1000;

struct KindTexts {
    ReadingKind kind;
    const char* title;
    const char* text;
    const char* bar;
    const char* noun; ///< of what is counted; null for found rows
};
constexpr std::array kKinds{
    KindTexts{ReadingKind::Source, "Drill Through", "Reading the source...", "Share of the source that was read",
              nullptr},
    KindTexts{ReadingKind::List, "Distribution", "Reading...", "Share of the list that was looked at", "row"},
    KindTexts{ReadingKind::Runs, "Changes", "Comparing two runs...", "Share of the values that was compared", "value"}};

const KindTexts& textsOf(ReadingKind kind) {
    return *std::find_if(kKinds.begin(), kKinds.end(), [kind](const KindTexts& each) { return each.kind == kind; });
}

} // namespace

ReadingProgressDlg::ReadingProgressDlg(ReadingKind kind, QWidget* parent)
    : QDialog(parent), m_kind(kind), m_text(new QLabel(this)), m_rows(new QLabel(this)), m_bar(new QProgressBar(this)) {
    const KindTexts& texts = textsOf(kind);
    setObjectName(QStringLiteral("readingProgress"));
    setWindowTitle(tr(texts.title));
    setWindowModality(Qt::ApplicationModal);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_text->setText(tr(texts.text));
    m_rows->setObjectName(QStringLiteral("rows"));
    m_bar->setAccessibleName(tr(texts.bar));
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
    // Shown while the wait cursor is set, but its button can be clicked.
    QGuiApplication::setOverrideCursor(Qt::ArrowCursor);
}

ReadingProgressDlg::~ReadingProgressDlg() {
    QGuiApplication::restoreOverrideCursor();
}

void ReadingProgressDlg::ShowProgress(const QString& text, std::int64_t done, std::int64_t total) {
    if (!text.isEmpty())
        m_text->setText(text);
    m_bar->setRange(0, total > 0 ? kSteps : 0);
    if (total > 0)
        m_bar->setValue(
            static_cast<int>(kSteps * std::clamp(static_cast<double>(done) / static_cast<double>(total), 0.0, 1.0)));
    if (const char* noun = textsOf(m_kind).noun; noun && total > 0)
        m_rows->setText(tr("%1 of %2").arg(toQString(groupedCount(done)), toQString(countOf(total, noun))));
}

void ReadingProgressDlg::ShowFound(std::int64_t rows) {
    m_rows->setText(tr("%1 found").arg(toQString(countOf(rows, "row"))));
}

ReadingProgress::ReadingProgress(ReadingKind kind, QWidget* parent, int patienceMilliseconds)
    : m_kind(kind), m_parent(parent), m_patience(patienceMilliseconds) {
    m_sinceStart.start();
}

ReadingProgress::~ReadingProgress() = default;

bool ReadingProgress::progress(std::string_view text, std::int64_t done, std::int64_t total) {
    if (m_dialog || m_sinceStart.elapsed() >= m_patience)
        m_text = toQString(text);
    m_done = done;
    m_total = total;
    return Update();
}

bool ReadingProgress::Found(std::int64_t rows) {
    m_rows = rows;
    return Update();
}

bool ReadingProgress::Update() {
    if (m_cancelled || m_sinceStart.elapsed() < m_patience ||
        (m_sinceUpdate.isValid() && m_sinceUpdate.elapsed() < kUpdateMilliseconds))
        return !m_cancelled;
    if (!m_dialog) {
        m_dialog = std::make_unique<ReadingProgressDlg>(m_kind, m_parent);
        QObject::connect(m_dialog.get(), &QDialog::rejected, m_dialog.get(), [this] { m_cancelled = true; });
        m_dialog->show();
    }
    m_dialog->ShowProgress(m_text, m_done, m_total);
    if (m_kind == ReadingKind::Source)
        m_dialog->ShowFound(m_rows);
    const NestedLoop loop(NestedLoop::Kind::Dialog);
    QCoreApplication::processEvents();
    m_sinceUpdate.start();
    return !m_cancelled;
}

} // namespace tavix
