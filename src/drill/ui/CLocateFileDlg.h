#pragma once

#include "access/PrViewer.h"

#include <QDialog>

#include <functional>
#include <optional>
#include <string>

namespace tavix {

/// Says that a file of the source is not where the run read it, and lets the user say where it is.
class CLocateFileDlg final : public QDialog {
    Q_OBJECT
  public:
    explicit CLocateFileDlg(const MissingFile& file, QWidget* parent = nullptr);

    /// Where the file is; "" until the dialog is accepted.
    [[nodiscard]] const std::string& GetPlace() const { return m_place; }
    /// Asks for the file; "" for none. By default a dialog, which tests replace.
    std::function<QString()> AskPath;

    /// Nothing when the user closes the dialog.
    [[nodiscard]] static std::optional<std::string> Choose(const MissingFile& file, QWidget* window);

  private:
    void Accept(const QString& path);
    [[nodiscard]] QString ChoosePath();

    MissingFile m_file;
    std::string m_place;
};

} // namespace tavix
