#pragma once

#include <QDialog>

class QListWidget;

namespace tavix {

/// Lets the user choose a field of a distribution. OK copies its name to the clipboard.
class CFields final : public QDialog {
    Q_OBJECT
  public:
    explicit CFields(QWidget* parent = nullptr);

    void accept() override;

  private:
    QListWidget* m_fields;
};

} // namespace tavix
