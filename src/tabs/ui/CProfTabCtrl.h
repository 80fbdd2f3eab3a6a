#pragma once

#include <QTabBar>

#include <vector>

namespace tavix {

/// The tab strip at the top of a view: arrow keys, Home, End and a mouse press select a tab. If the captions do not
/// fit, the longest are elided and shown as tooltips; scroll arrows appear only if that is not enough. The height does
/// not depend on the font; a larger font is scaled down.
class CProfTabCtrl final : public QTabBar {
    Q_OBJECT
  public:
    static constexpr int kHeight = 22; ///< pixels at 96 dpi

    explicit CProfTabCtrl(QWidget* parent = nullptr);

    /// `image` is an index for the view, -1 for none.
    void InsertTab(int index, const QString& caption, int image = -1);
    void SelectTab(int index) { setCurrentIndex(index); }
    [[nodiscard]] int GetCurrentTab() const { return currentIndex(); }
    void SetCaption(int index, const QString& caption);

  Q_SIGNALS:
    /// A double click with the left button on a tab. Posted, so the strip has finished its own handling.
    void TabDoubleClicked(int index);

  protected:
    [[nodiscard]] QSize tabSizeHint(int index) const override;
    [[nodiscard]] QSize minimumTabSizeHint(int index) const override;
    void tabLayoutChange() override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void FitFont();
    [[nodiscard]] int CaptionWidth(int index) const;
    /// On each side of a caption; shrinks when the strip is narrow.
    [[nodiscard]] int PaddingNow() const;
    struct Colors {
        QColor background;
        QColor face;
        QColor outline;
        QColor upperLine;
        QColor lowerLine;
        QColor text;
    };
    [[nodiscard]] Colors ColorsNow() const;
    void PaintTab(QPainter& painter, int index, const Colors& colors) const;

    QFont m_captionFont; ///< the widget's font, scaled down to the strip's height
};

} // namespace tavix
