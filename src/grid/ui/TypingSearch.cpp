#include "grid/ui/TypingSearch.h"

#include "base/ui/QtText.h"
#include "grid/ui/GridModel.h"

#include <QApplication>
#include <QLabel>
#include <QLocale>
#include <QTableView>

namespace tavix {

namespace {

// The longest time that a slice may block the window.
constexpr qint64 kSliceMilliseconds = 30;
// Rows searched between two looks at the clock.
constexpr int kRowsPerLook = 1024;

} // namespace

TypingSearch::TypingSearch(QTableView& view, const GridModel& model) : QObject(&view), m_view(view), m_model(model) {
    m_next.setSingleShot(true);
    m_next.setInterval(0);
    connect(&m_next, &QTimer::timeout, this, &TypingSearch::SearchSlice);
    // The rows have changed, so the search would go on in the wrong ones.
    connect(&m_model, &QAbstractItemModel::modelAboutToBeReset, this, &TypingSearch::Stop);
    connect(&m_model, &QAbstractItemModel::dataChanged, this, &TypingSearch::Stop);
}

void TypingSearch::Type(const QString& typed) {
    if (typed.isEmpty())
        return;
    const bool goesOn =
        IsRunning() || (m_sinceTyped.isValid() && m_sinceTyped.elapsed() < QApplication::keyboardInputInterval());
    Stop();
    m_sinceTyped.start();
    m_typed = goesOn ? m_typed + typed : typed;
    const bool repeated = m_typed.count(m_typed.at(0), Qt::CaseInsensitive) == m_typed.size();
    m_wanted = repeated ? m_typed.left(1) : m_typed;
    const QModelIndex current = m_view.currentIndex();
    m_start = current.isValid() ? current.row() + (repeated ? 1 : 0) : 0;
    m_searched = 0;
    SearchSlice();
}

void TypingSearch::SearchSlice() {
    const int rows = m_model.rowCount();
    QElapsedTimer sinceStart;
    sinceStart.start();
    while (m_searched < rows) {
        const int row = static_cast<int>((static_cast<qint64>(m_start) + m_searched) % rows);
        ++m_searched;
        if (m_model.index(row, 0).data().toString().startsWith(m_wanted, Qt::CaseInsensitive)) {
            Stop();
            Q_EMIT Found(row);
            return;
        }
        if (m_searched % kRowsPerLook == 0 && sinceStart.elapsed() >= kSliceMilliseconds) {
            const QLocale locale(QLocale::English); // like all numbers of the viewer
            ShowLine(tr("Looking for \u201C%1\u201D: %2 of %3 rows. Esc stops.")
                         .arg(m_wanted.left(40), locale.toString(m_searched), locale.toString(rows)));
            m_next.start();
            return;
        }
    }
    // A short list needs no message: nothing happens.
    if (m_line && m_line->isVisible())
        ShowLine(tr("No row begins with \u201C%1\u201D.").arg(m_wanted.left(40)));
}

void TypingSearch::Stop() {
    m_next.stop();
    if (m_line)
        m_line->hide();
}

void TypingSearch::ShowLine(const QString& text) {
    if (!m_line) {
        m_line = new QLabel(&m_view);
        m_line->setObjectName(QStringLiteral("typingSearch"));
        // It quotes the user's input.
        m_line->setTextFormat(Qt::PlainText);
        m_line->setAutoFillBackground(true);
        m_line->setBackgroundRole(QPalette::ToolTipBase);
        m_line->setForegroundRole(QPalette::ToolTipText);
        m_line->setFrameShape(QFrame::StyledPanel);
        m_line->setMargin(4);
    }
    m_line->setText(text);
    PlaceLine();
    m_line->show();
    m_line->raise();
}

void TypingSearch::PlaceLine() {
    if (!m_line)
        return;
    m_line->adjustSize();
    const QRect room = m_view.viewport()->geometry();
    m_line->move(room.left() + 6, room.bottom() - m_line->height() - 6);
}

} // namespace tavix
