#include "frame/ui/COptionsSheet.h"

#include "base/ui/NestedLoop.h"
#include "doc/CTavixDoc.h"
#include "frame/ui/CGeneralPage.h"
#include "frame/ui/CKnowledgePage.h"
#include "frame/ui/CMetricsPage.h"

#include <QDialogButtonBox>
#include <QTabWidget>
#include <QVBoxLayout>

namespace tavix {

COptionsSheet::COptionsSheet(OptionsModel model, Messages& messages, QWidget* parent)
    : QDialog(parent),
      m_model(std::move(model)),
      m_messages(messages),
      m_pages(new QTabWidget(this)),
      m_general(new CGeneralPage(m_model.values)),
      m_metrics(new CMetricsPage(m_model)),
      m_knowledge(new CKnowledgePage(m_model.values)) {
    setWindowTitle(tr("Options"));
    m_pages->setObjectName(QStringLiteral("pages"));
    m_pages->setAccessibleName(tr("Pages of the options"));
    m_pages->addTab(m_general, tr("&General"));
    m_pages->addTab(m_metrics, tr("&Metrics"));
    m_pages->addTab(m_knowledge, tr("&Knowledge Base"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_pages, 1);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &COptionsSheet::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    resize(sizeHint().expandedTo(QSize(720, 450)));
}

void COptionsSheet::accept() {
    m_general->Store();
    m_knowledge->Store();
    if (const auto problem = m_model.Check()) {
        m_messages.warn(problem->text);
        m_pages->setCurrentWidget(m_general);
        m_general->FocusOn(problem->field);
        return;
    }
    QDialog::accept();
}

void COptionsSheet::Run(CTavixDoc& doc, QWidget* parent, bool offersColors) {
    SettingsStore& settings = doc.GetSettings();
    auto metrics = doc.HasReport() ? doc.GetMetrics() : standardMetricDisplay(settings);
    OptionsModel model(settings, std::move(metrics));
    if (!offersColors)
        model.values.colorScheme.reset();
    ModalDialog<COptionsSheet> sheet(std::move(model), doc.GetMessages(), parent);
    if (!sheet.isAccepted())
        return;
    const Status saved = sheet->Model().Save(settings);
    doc.ApplyOptions(sheet->Model().Metrics(), saved);
}

} // namespace tavix
