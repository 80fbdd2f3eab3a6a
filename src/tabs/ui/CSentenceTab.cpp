#include "tabs/ui/CSentenceTab.h"

#include "base/ui/QtText.h"

#include <QLabel>
#include <QVBoxLayout>

namespace tavix {

CSentenceTab::CSentenceTab(std::string_view sentence, CViewSite& site, const ReportSubject& subject, bool isTornOff,
                           QWidget* parent)
    : CProfTab(site, subject, isTornOff, parent) {
    auto* label = new QLabel(toQString(sentence), this);
    label->setObjectName(QStringLiteral("note"));
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setMargin(12);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
}

} // namespace tavix
