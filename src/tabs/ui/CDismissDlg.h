#pragma once

#include <QDialog>

#include <functional>
#include <string>

class QPlainTextEdit;
class QPushButton;

namespace tavix {

/// Asks why a finding is dismissed; the reason is required. Stays open while `store` refuses it.
class CDismissDlg final : public QDialog {
    Q_OBJECT
  public:
    /// `title` names the finding, `place` its field or table. `store` tells the user itself why it returns false.
    CDismissDlg(const QString& title, const QString& place, std::function<bool(const std::string&)> store,
                QWidget* parent);

    void accept() override;

  private:
    [[nodiscard]] std::string Reason() const;

    std::function<bool(const std::string&)> m_store;
    QPlainTextEdit* m_reason;
    QPushButton* m_dismiss;
};

} // namespace tavix
