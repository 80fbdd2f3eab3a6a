#pragma once

#include <QDialog>

class QListWidget;

namespace tavix {

/// Chooses a field of a distribution. OK puts its name on the clipboard.
class CFields final : public QDialog {
    Q_OBJECT
  public:
    explicit CFields(QWidget* parent = nullptr);

    void accept() override;

  private:
    QListWidget* m_fields;
};

} // namespace tavix
