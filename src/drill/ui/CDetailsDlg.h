#pragma once

#include <QDialog>

#include <string>

namespace tavix {

/// Shows a text that can be copied.
class CDetailsDlg final : public QDialog {
    Q_OBJECT
  public:
    explicit CDetailsDlg(const std::string& text, QWidget* parent = nullptr);

    /// Shows the dialog, modal, exactly over `view`.
    static void Show(const std::string& text, QWidget& view);
};

} // namespace tavix
