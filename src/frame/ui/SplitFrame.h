#pragma once

#include "frame/PaneGeometry.h"

#include <QWidget>

namespace tavix {

/// Two or three panes side by side, separated by bars that can be dragged.
class SplitFrame : public QWidget {
    Q_OBJECT
  public:
    explicit SplitFrame(QWidget* parent = nullptr);

    [[nodiscard]] const PaneRatios& GetRatios() const { return m_ratios; }
    /// The left ratio counts as chosen by the user.
    void SetRatios(const PaneRatios& ratios);
    /// Whether the user has chosen the navigator's ratio. Until then it depends on the width of the window, see
    /// unmovedNavigatorRatio().
    [[nodiscard]] bool IsNavigatorMoved() const { return m_isNavigatorMoved; }
    /// For the keyboard: moves the bar as if it were dragged by `by` pixels.
    void MoveSplitter(Splitter splitter, int by);

  protected:
    void RestoreRatios(const PaneRatios& ratios, bool isNavigatorMoved);
    /// Both must be children of the frame, and alive until they are replaced here.
    void SetPanes(QWidget* navigator, QWidget* report);
    /// Null removes the pane and its bar. If a new pane leaves no room for the report, the left bar moves.
    void SetInfoPane(QWidget* info);
    /// Called after the user moved a bar.
    virtual void RatiosChanged() {}

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    /// While a bar is being dragged, Escape cancels the drag, whichever widget has the focus.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void LayOut();
    void ShowGhost();
    void EndDrag();
    void Drop(Splitter splitter, int dragX);

    PaneRatios m_ratios;
    PaneLayout m_layout;
    QWidget* m_navigator = nullptr;
    QWidget* m_report = nullptr;
    QWidget* m_info = nullptr;
    QWidget* m_ghost;
    Splitter m_dragged = Splitter::None;
    int m_dragX = 0;
    bool m_isNavigatorMoved = false;
};

} // namespace tavix
