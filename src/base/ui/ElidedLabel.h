#pragma once

#include <QLabel>

namespace tavix {

/// A line of plain text that ends with an ellipsis where it has no room; the tooltip then shows all of it. The line may
/// be as narrow as its layout makes it.
class ElidedLabel final : public QLabel {
    Q_OBJECT
  public:
    explicit ElidedLabel(QWidget* parent = nullptr);
    ElidedLabel(const QString& text, QWidget* parent);

    [[nodiscard]] QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

  private:
    [[nodiscard]] bool IsCut() const;
};

} // namespace tavix
