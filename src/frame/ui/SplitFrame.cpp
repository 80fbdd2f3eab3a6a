#include "frame/ui/SplitFrame.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace tavix {

namespace {

// The bar while it is being dragged, drawn above all panes.
class GhostBar final : public QWidget {
  public:
    explicit GhostBar(QWidget* parent) : QWidget(parent) {
        setObjectName(QStringLiteral("ghostBar"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        constexpr int kHalfThrough = 128;
        QColor shade = palette().color(QPalette::WindowText);
        shade.setAlpha(kHalfThrough);
        QPainter(this).fillRect(rect(), shade);
    }
};

} // namespace

SplitFrame::SplitFrame(QWidget* parent) : QWidget(parent), m_ghost(new GhostBar(this)) {
    setMouseTracking(true);
}

void SplitFrame::SetPanes(QWidget* navigator, QWidget* report) {
    m_navigator = navigator;
    m_report = report;
    // Without a cursor of their own, panes would inherit the frame's resize cursor.
    for (QWidget* pane : {navigator, report}) {
        if (pane)
            pane->setCursor(Qt::ArrowCursor);
    }
    LayOut();
}

void SplitFrame::SetInfoPane(QWidget* info) {
    EndDrag();
    m_info = info;
    if (info) {
        info->setCursor(Qt::ArrowCursor);
        const PaneLayout wanted = layOutPanes(width(), m_ratios, true);
        const int bar = wanted.leftSplitter + kSplitterWidth / 2;
        if (wanted.report.width == 0 && wanted.rightSplitter > kSplitterWidth)
            SetRatios(ratiosAfterDrag(Splitter::Left, clampedDrag(Splitter::Left, bar, wanted), m_ratios, width()));
    }
    LayOut();
}

void SplitFrame::SetRatios(const PaneRatios& ratios) {
    m_ratios = ratios;
    m_isNavigatorMoved = true;
    LayOut();
}

void SplitFrame::RestoreRatios(const PaneRatios& ratios, bool isNavigatorMoved) {
    m_ratios = ratios;
    m_isNavigatorMoved = isNavigatorMoved;
    LayOut();
}

void SplitFrame::LayOut() {
    if (!m_isNavigatorMoved)
        m_ratios.left = unmovedNavigatorRatio(width());
    m_layout = layOutPanes(width(), m_ratios, m_info != nullptr);
    const auto place = [this](QWidget* pane, const PaneSpan& span) {
        if (pane)
            pane->setGeometry(span.x, 0, span.width, height());
    };
    place(m_navigator, m_layout.navigator);
    place(m_info, m_layout.info);
    place(m_report, m_layout.report);
    update();
}

void SplitFrame::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const auto paintBar = [&](int x) {
        painter.fillRect(x, 0, kSplitterWidth, height(), palette().color(QPalette::Window));
        painter.fillRect(x, 0, 1, height(), palette().color(QPalette::Light));
        painter.fillRect(x + kSplitterWidth - 1, 0, 1, height(), palette().color(QPalette::Mid));
    };
    paintBar(m_layout.leftSplitter);
    if (m_layout.hasInfo)
        paintBar(m_layout.rightSplitter);
}

void SplitFrame::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    EndDrag();
    LayOut();
}

void SplitFrame::mousePressEvent(QMouseEvent* event) {
    const int x = event->position().toPoint().x();
    const Splitter splitter = event->button() == Qt::LeftButton ? splitterAt(x, m_layout) : Splitter::None;
    if (splitter == Splitter::None) {
        QWidget::mousePressEvent(event);
        return;
    }
    m_dragged = splitter;
    m_dragX = x;
    qApp->installEventFilter(this);
    ShowGhost();
}

void SplitFrame::mouseMoveEvent(QMouseEvent* event) {
    const int x = event->position().toPoint().x();
    if (m_dragged == Splitter::None) {
        setCursor(splitterAt(x, m_layout) == Splitter::None ? Qt::ArrowCursor : Qt::SizeHorCursor);
        return;
    }
    m_dragX = clampedDrag(m_dragged, x, m_layout);
    ShowGhost();
}

void SplitFrame::mouseReleaseEvent(QMouseEvent* event) {
    if (m_dragged == Splitter::None || event->button() != Qt::LeftButton) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    const Splitter dragged = m_dragged;
    EndDrag();
    Drop(dragged, m_dragX);
}

void SplitFrame::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    EndDrag();
}

bool SplitFrame::eventFilter(QObject* watched, QEvent* event) {
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (!isKey || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape)
        return QWidget::eventFilter(watched, event);
    event->accept();
    if (event->type() == QEvent::KeyPress)
        EndDrag();
    return true;
}

void SplitFrame::MoveSplitter(Splitter splitter, int by) {
    if (splitter == Splitter::None || (splitter == Splitter::Right && !m_layout.hasInfo))
        return;
    // The layout places the left bar two pixels, the right one four, left of the position of its ratio.
    const int bar = splitter == Splitter::Left ? m_layout.leftSplitter + 2 : m_layout.rightSplitter + 4;
    Drop(splitter, clampedDrag(splitter, bar + by, m_layout));
}

void SplitFrame::Drop(Splitter splitter, int dragX) {
    m_ratios = ratiosAfterDrag(splitter, dragX, m_ratios, width());
    m_isNavigatorMoved = m_isNavigatorMoved || splitter == Splitter::Left;
    LayOut();
    RatiosChanged();
}

void SplitFrame::ShowGhost() {
    m_ghost->setGeometry(splitterOfDrag(m_dragX), 0, kSplitterWidth, height());
    m_ghost->raise();
    m_ghost->show();
}

void SplitFrame::EndDrag() {
    m_dragged = Splitter::None;
    qApp->removeEventFilter(this);
    m_ghost->hide();
}

} // namespace tavix
