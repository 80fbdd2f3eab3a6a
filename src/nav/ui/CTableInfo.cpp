#include "nav/ui/CTableInfo.h"

#include "base/ui/ElidedLabel.h"
#include "base/ui/QtText.h"
#include "doc/CTavixDoc.h"

#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavix {

CTableInfo::CTableInfo(CViewSite& site, QWidget* parent)
    : QWidget(parent), m_site(site), m_text(new QPlainTextEdit(this)), m_close(new QToolButton(this)) {
    setObjectName(QStringLiteral("tableInformation"));
    auto* title = new ElidedLabel(QStringLiteral("Table Information"), this);
    QFont titleFont = font();
    titleFont.setWeight(QFont::DemiBold);
    title->setFont(titleFont);
    m_close->setObjectName(QStringLiteral("closeTableInformation"));
    m_close->setText(QStringLiteral("×"));
    m_close->setAutoRaise(true);
    m_close->setFocusPolicy(Qt::TabFocus);
    m_close->setToolTip(QStringLiteral("Close"));
    m_close->setAccessibleName(QStringLiteral("Close table information"));
    connect(m_close, &QToolButton::clicked, this, &CTableInfo::CloseRequested);

    m_text->setReadOnly(true);
    m_text->setFrameShape(QFrame::NoFrame);
    m_text->setTabChangesFocus(true);
    // Text can be selected with the keyboard as well.
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_text->setPlaceholderText(QStringLiteral("Select a table or a field to read about it."));
    m_text->setAccessibleName(title->text());
    m_text->document()->setDocumentMargin(10);

    auto* header = new QHBoxLayout;
    header->setContentsMargins(10, 4, 4, 4);
    header->addWidget(title, 1);
    header->addWidget(m_close);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(header);
    layout->addWidget(m_text, 1);
    setTabOrder(m_text, m_close);
    ShowSelection();
}

void CTableInfo::ComeAfter(QWidget* before) {
    setTabOrder(before, m_text);
    setTabOrder(m_text, m_close);
}

void CTableInfo::Refresh(CRefreshItem*, RefreshHint hint, int) {
    if (hint != RefreshHint::DocumentReset && hint != RefreshHint::RunLoaded && hint != RefreshHint::HistoryDeleted)
        return;
    m_information.Forget();
    ShowSelection();
}

void CTableInfo::ShowSelection() {
    PrViewer* viewer = m_site.GetTavixDoc().GetViewer();
    std::string text;
    if (viewer) {
        const Result<std::string> found = m_information.TextOf(*viewer, m_site.GetSelection());
        text = found ? *found : "The information cannot be read:\n\n" + found.error().text;
    }
    // Setting the same text again would clear the user's selection.
    QString shown = toQString(text);
    shown.remove(u'\r');
    if (m_text->toPlainText() != shown)
        m_text->setPlainText(shown);
}

} // namespace tavix
