#pragma once

#include <QDialog>

#include <string>
#include <vector>

class QLabel;
class QPlainTextEdit;

namespace tavix {

/// Edits the values of a comparison that has several, one on each line, so that a column of a worksheet can be pasted.
class CValueListDlg final : public QDialog {
    Q_OBJECT
  public:
    explicit CValueListDlg(const std::vector<std::string>& values, QWidget* parent = nullptr);

    /// Without empty lines.
    [[nodiscard]] std::vector<std::string> GetValues() const;

  private:
    void ShowCount();

    QPlainTextEdit* m_text;
    QLabel* m_count;
};

} // namespace tavix
