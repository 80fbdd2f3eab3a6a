#pragma once

#include "chart/Picture.h"

#include <QWidget>

#include <memory>

namespace tavix {

/// Shows a picture and its figures: under the pointer, and by the arrow keys at the current hit area. A click or Enter
/// on an area with an action asks for it.
class DrawingWidget final : public QWidget {
    Q_OBJECT
  public:
    explicit DrawingWidget(QWidget* parent = nullptr);
    ~DrawingWidget() override;

    /// Null shows nothing.
    void SetPicture(std::unique_ptr<chart::Picture> picture);
    [[nodiscard]] const chart::Drawing& GetDrawing();
    /// The index of the hit area that the keys have reached; -1 before the first.
    [[nodiscard]] int GetCurrent() const { return m_current; }
    [[nodiscard]] QSize minimumSizeHint() const override;

  Q_SIGNALS:
    void ActionRequested(const tavix::chart::Action& action);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    void MoveTo(int hit);
    void ShowHovered(int hit);
    void ShowFigure(int hit);
    void Act(int hit);
    void Redraw();
    [[nodiscard]] QRect RectOf(int hit);

    std::unique_ptr<chart::Picture> m_picture;
    chart::Drawing m_drawing;
    bool m_isDrawn = false;
    int m_current = -1;
    int m_hovered = -1;
};

} // namespace tavix
