#pragma once

#include <QTabBar>

#include <vector>

namespace tavix {

/// The strip of tabs at the top of a view: arrow keys, Home and End move along it, a press of the mouse selects. Where
/// there is not room for all captions the longest are cut, and told by their tips; only then there are arrows. Its
/// height is the same whatever the font; captions in a larger font are made to fit.
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
    /// Posted: the strip has done with the double click when it arrives.
    void TabDoubleClicked(int index); ///< with the left button, on a tab

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
    /// On each side of a caption: less where there is no room for more.
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

    QFont m_captionFont; ///< the widget's, or a smaller one where that is too high
};

} // namespace tavix
