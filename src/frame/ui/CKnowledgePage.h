#pragma once

#include "frame/OptionsModel.h"

#include <QWidget>

class QCheckBox;
class QLineEdit;

namespace tavix {

/// The third page of the Options sheet: settings of the knowledge base, which nothing reads yet, as the page says.
class CKnowledgePage final : public QWidget {
    Q_OBJECT

  public:
    /// Shows `values`, which must outlive the page.
    explicit CKnowledgePage(OptionValues& values, QWidget* parent = nullptr);

    /// Copies the input to the values.
    void Store();

  private:
    OptionValues& m_values;
    QLineEdit* m_locale;
    QCheckBox* m_override;
};

} // namespace tavix
