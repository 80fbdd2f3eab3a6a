#include "tabs/ui/NoNotesPage.h"

#include "base/ui/QuietPalette.h"

#include <QAction>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavix {

NoNotesPage::NoNotesPage(QAction& add, QWidget* parent)
    : QWidget(parent),
      m_sentence(new QLabel(this)),
      // Without a mnemonic: the button above the list has it.
      m_add(new QPushButton(tr("Add Note..."), this)) {
    constexpr int kMargin = 12;
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    m_sentence->setObjectName(QStringLiteral("emptySentence"));
    m_sentence->setTextFormat(Qt::PlainText);
    m_sentence->setAlignment(Qt::AlignCenter);
    m_sentence->setWordWrap(true);
    m_add->setObjectName(QStringLiteral("addFirst"));
    m_add->setAccessibleName(add.toolTip());
    m_add->setVisible(add.isEnabled());
    connect(m_add, &QPushButton::clicked, &add, &QAction::trigger);
    connect(&add, &QAction::enabledChanged, m_add, &QPushButton::setVisible);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2 * kMargin, 2 * kMargin, 2 * kMargin, 2 * kMargin);
    layout->setSpacing(kMargin);
    layout->addStretch(2);
    layout->addWidget(m_sentence);
    layout->addWidget(m_add, 0, Qt::AlignHCenter);
    layout->addStretch(3);
    ApplyColors();
}

void NoNotesPage::ShowSentence(const QString& sentence) {
    m_sentence->setText(sentence);
}

QWidget* NoNotesPage::GetTabStop() const {
    return m_add->isHidden() ? nullptr : m_add;
}

void NoNotesPage::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyColors();
}

void NoNotesPage::ApplyColors() {
    m_sentence->setPalette(quietPalette(palette()));
}

} // namespace tavix
