#pragma once

#include "base/AlertMark.h"

#include <QTabBar>

#include <vector>

class QMenu;
class QToolButton;

namespace tavix {

/// The tab strip at the top of a view: arrow keys, Home, End and a mouse press select a tab. Captions are never cut: a
/// strip that is too narrow shows the tabs for which it has room, among them the selected one, and a button with a menu
/// of the others, which the Down key opens as well. The height does not depend on the font; a larger font is scaled
/// down.
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
    /// A sign with a number beside the caption, such as the number of raised alerts. `meaning` says it in words, for
    /// the tooltip and for screen readers. Zero removes the sign.
    void SetCount(int index, int count, AlertMark mark = AlertMark::None, const QString& meaning = {});

  Q_SIGNALS:
    /// A double click with the left button on a tab. Posted, so the strip has finished its own handling.
    void TabDoubleClicked(int index);

  protected:
    [[nodiscard]] QSize tabSizeHint(int index) const override;
    [[nodiscard]] QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, height()}; }
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void FitFont();
    /// Decides which tabs are visible.
    void FitTabs();
    [[nodiscard]] std::vector<bool> TabsWithRoom() const;
    void ShowMenu();
    void Hover(int index);
    struct Count {
        QString text; ///< "" without a sign
        AlertMark mark = AlertMark::None;

        bool operator==(const Count&) const = default;
    };
    [[nodiscard]] const Count& CountOf(int index) const { return m_counts[static_cast<std::size_t>(index)]; }
    [[nodiscard]] QFont CountFont() const;
    /// Of the sign and the gap before it.
    [[nodiscard]] int CountWidth(int index) const;
    /// Of the caption and its sign.
    [[nodiscard]] int ContentsWidth(int index) const { return CaptionWidth(index) + CountWidth(index); }
    [[nodiscard]] int CaptionWidth(int index) const;
    /// Of all tabs side by side.
    [[nodiscard]] int LeastWidth() const;
    /// The room for tabs, without the button if there is one.
    [[nodiscard]] int Room() const;
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

    std::vector<Count> m_counts; ///< by tab
    QFont m_captionFont; ///< the widget's font, scaled down to the strip's height and, within bounds, to its width
    QToolButton* m_more;
    QMenu* m_menu;
    int m_hovered = -1;
    bool m_isFitting = false;
};

} // namespace tavix
