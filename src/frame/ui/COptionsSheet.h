#pragma once

#include "base/Messages.h"
#include "frame/OptionsModel.h"

#include <QDialog>

class QTabWidget;

namespace tavix {

class CGeneralPage;
class CKnowledgePage;
class CMetricsPage;
class CTavixDoc;

/// The modal "Options" sheet of three pages.
class COptionsSheet final : public QDialog {
    Q_OBJECT

  public:
    /// `messages` must outlive the sheet.
    COptionsSheet(OptionsModel model, Messages& messages, QWidget* parent = nullptr);

    /// The user's input; only valid after OK.
    [[nodiscard]] const OptionsModel& Model() const { return m_model; }

    /// Shows the sheet, and on OK saves the input. With `offersColors` it has a choice of light and dark.
    static void Run(CTavixDoc& doc, QWidget* parent, bool offersColors);

    void accept() override;

  private:
    OptionsModel m_model;
    Messages& m_messages;
    QTabWidget* m_pages;
    CGeneralPage* m_general;
    CMetricsPage* m_metrics;
    CKnowledgePage* m_knowledge;
};

} // namespace tavix
