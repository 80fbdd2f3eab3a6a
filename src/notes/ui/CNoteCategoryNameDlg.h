#pragma once

#include <QDialog>

#include <functional>
#include <string>

class QLineEdit;

namespace tavix {

/// Asks for the name of a category and stays open until the name is stored or the user cancels.
class CNoteCategoryNameDlg final : public QDialog {
    Q_OBJECT
  public:
    /// When `store` fails, it has shown a message.
    CNoteCategoryNameDlg(const QString& title, const QString& name, std::function<bool(const std::string&)> store,
                         QWidget* parent = nullptr);

    [[nodiscard]] std::string Name() const;

    void accept() override;

  private:
    std::function<bool(const std::string&)> m_store;
    QLineEdit* m_name;
};

} // namespace tavix
