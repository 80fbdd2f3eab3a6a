#pragma once

#include <QTabBar>

namespace tavix {

/// The navigator's row of page titles. When room is short, the padding of the titles shrinks first, then the longest
/// title is cut.
class NavigatorTabs final : public QTabBar {
    Q_OBJECT
  public:
    explicit NavigatorTabs(QWidget* parent = nullptr);

  protected:
    [[nodiscard]] QSize tabSizeHint(int index) const override;
    [[nodiscard]] QSize minimumTabSizeHint(int index) const override;
    void paintEvent(QPaintEvent* event) override;

  private:
    [[nodiscard]] int TextWidth(int index) const;
    [[nodiscard]] int Padding() const;
};

} // namespace tavix
