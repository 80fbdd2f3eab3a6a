#include "tabs/ui/NoteReadingPane.h"

#include "base/ui/QuietPalette.h"

#include <QEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QVBoxLayout>

namespace tavix {

NoteReadingPane::NoteReadingPane(QWidget* parent)
    : QWidget(parent), m_heading(new QLabel(this)), m_text(new QPlainTextEdit(this)) {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    m_heading->setTextFormat(Qt::PlainText);
    m_heading->setWordWrap(true);
    m_text->setObjectName(QStringLiteral("noteText"));
    m_text->setAccessibleName(tr("Text of the selected note"));
    m_text->setReadOnly(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setTabChangesFocus(true);
    m_text->setFrameShape(QFrame::NoFrame);
    m_text->document()->setDocumentMargin(0);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 10, 12, 8);
    layout->setSpacing(6);
    layout->addWidget(m_heading);
    layout->addWidget(m_text, 1);
    ApplyColors();
}

void NoteReadingPane::ShowNote(const QString& heading, const QString& text) {
    m_heading->setText(heading);
    m_text->setPlainText(text);
}

void NoteReadingPane::SetTextFont(const QFont& font) {
    m_text->setFont(font);
}

QWidget* NoteReadingPane::GetTabStop() const {
    return m_text;
}

void NoteReadingPane::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyColors();
}

void NoteReadingPane::ApplyColors() {
    m_heading->setPalette(quietPalette(palette()));
}

} // namespace tavix
