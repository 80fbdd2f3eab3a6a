#pragma once

#include <QPushButton>

namespace tavix {

/// A text that does something when it is clicked: looks like a link, and takes the focus like a button.
class LinkButton final : public QPushButton {
    Q_OBJECT
  public:
    explicit LinkButton(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace tavix
