#pragma once

#include <QDialog>

#include <string>
#include <vector>

class QLabel;
class QPlainTextEdit;

namespace tavix {

/// The values of a comparison with several, one on each line, so that a column of a worksheet can be pasted as it is.
class CValueListDlg final : public QDialog {
    Q_OBJECT
  public:
    explicit CValueListDlg(const std::vector<std::string>& values, QWidget* parent = nullptr);

    /// Lines without a character are none.
    [[nodiscard]] std::vector<std::string> GetValues() const;

  private:
    void ShowCount();

    QPlainTextEdit* m_text;
    QLabel* m_count;
};

} // namespace tavix
