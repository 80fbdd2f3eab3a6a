#pragma once

#include <QTabBar>

namespace tavix {

/// The navigator's row of page titles. Where there is little room the titles give up the space around them; where even
/// that is not enough, the longest one is cut.
class NavigatorTabs final : public QTabBar {
    Q_OBJECT
  public:
    explicit NavigatorTabs(QWidget* parent = nullptr);

    /// Whether any title is cut at the present width.
    [[nodiscard]] bool IsCut() const;

  protected:
    [[nodiscard]] QSize tabSizeHint(int index) const override;
    [[nodiscard]] QSize minimumTabSizeHint(int index) const override;
    void paintEvent(QPaintEvent* event) override;

  private:
    [[nodiscard]] int TextWidth(int index) const;
    [[nodiscard]] int Padding() const;
};

} // namespace tavix
