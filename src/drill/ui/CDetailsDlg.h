#pragma once

#include <QDialog>

#include <string>

namespace tavix {

/// Shows a text to be read and copied.
class CDetailsDlg final : public QDialog {
    Q_OBJECT
  public:
    explicit CDetailsDlg(const std::string& text, QWidget* parent = nullptr);

    /// Modal, over the place of `view` on the screen.
    static void Show(const std::string& text, QWidget& view);
};

} // namespace tavix
