#pragma once

#include "frame/PaneGeometry.h"

#include <QWidget>

namespace tavix {

/// Two or three panes side by side with bars between them that can be dragged.
class SplitFrame : public QWidget {
    Q_OBJECT
  public:
    explicit SplitFrame(QWidget* parent = nullptr);

    [[nodiscard]] const PaneLayout& GetPaneLayout() const { return m_layout; }
    [[nodiscard]] const PaneRatios& GetRatios() const { return m_ratios; }
    void SetRatios(const PaneRatios& ratios);
    /// The way of the keyboard: moves the bar as if it were dragged by so many pixels.
    void MoveSplitter(Splitter splitter, int by);

  protected:
    /// Both are children of the frame and outlive their place in it.
    void SetPanes(QWidget* navigator, QWidget* report);
    /// Null takes the pane away, along with its bar. Another pane that would leave the report no room moves the left
    /// bar.
    void SetInfoPane(QWidget* info);
    /// Called after the user moved a bar.
    virtual void RatiosChanged() {}

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    /// While a bar is dragged Escape, whoever has the keyboard, leaves it where it was.
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
};

} // namespace tavix
