#pragma once

#include "access/PrViewer.h"

#include <QDialog>

#include <functional>
#include <optional>
#include <string>

namespace tavix {

/// Says that a file of the source is missing, and lets the user locate it.
class CLocateFileDlg final : public QDialog {
    Q_OBJECT
  public:
    /// `askPath` lets the user choose the file, "" for none; without it a file dialog does.
    explicit CLocateFileDlg(const MissingFile& file, QWidget* parent = nullptr, std::function<QString()> askPath = {});

    /// Where the file is; "" until the dialog is accepted.
    [[nodiscard]] const std::string& GetPlace() const { return m_place; }

    /// Where the file is; nothing when the user closes the dialog.
    [[nodiscard]] static std::optional<std::string> Choose(const MissingFile& file, QWidget* window);

  private:
    void Accept(const QString& path);
    [[nodiscard]] QString ChoosePath();

    std::function<QString()> m_askPath;
    MissingFile m_file;
    std::string m_place;
};

} // namespace tavix
