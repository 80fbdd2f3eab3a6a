#pragma once

#include "doc/SourceLogins.h"

#include <QDialog>

class QLineEdit;

namespace tavix {

/// Asks for user and password after a database server refused the login.
class CSourceLoginDlg final : public QDialog {
    Q_OBJECT
  public:
    explicit CSourceLoginDlg(const SourceLogins::Question& question, QWidget* parent = nullptr);

    [[nodiscard]] source::Credentials GetCredentials() const;

    /// Shows the dialog over the active modal dialog, if any, else over `window`. Returns nothing after Cancel.
    [[nodiscard]] static std::optional<source::Credentials> Choose(const SourceLogins::Question& question,
                                                                   QWidget* window);

  private:
    QLineEdit* m_user;
    QLineEdit* m_password;
};

} // namespace tavix
