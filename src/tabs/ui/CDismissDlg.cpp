#include "tabs/ui/CDismissDlg.h"

#include "base/NoteText.h"
#include "base/ui/QtText.h"
#include "base/ui/QuietPalette.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include <utility>

namespace tavix {

CDismissDlg::CDismissDlg(const QString& title, const QString& place, std::function<bool(const std::string&)> store,
                         QWidget* parent)
    : QDialog(parent), m_store(std::move(store)), m_reason(new QPlainTextEdit(this)) {
    setObjectName(QStringLiteral("dismissDialog"));
    setWindowTitle(tr("Dismiss Finding"));
    auto* heading = new QLabel(title, this);
    QFont strong = font();
    strong.setWeight(QFont::DemiBold);
    heading->setFont(strong);
    auto* where = new QLabel(place, this);
    where->setPalette(quietPalette(palette()));
    for (QLabel* label : {heading, where}) {
        // Names come from the data.
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    auto* label = new QLabel(tr("&Reason, kept for all runs:"), this);
    label->setBuddy(m_reason);
    m_reason->setObjectName(QStringLiteral("reason"));
    m_reason->setAccessibleName(tr("Reason for dismissing the finding"));
    m_reason->setTabChangesFocus(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_dismiss = buttons->button(QDialogButtonBox::Ok);
    m_dismiss->setText(tr("&Dismiss"));
    m_dismiss->setToolTip(tr("Ctrl+Enter"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addWidget(where);
    layout->addSpacing(4);
    layout->addWidget(label);
    layout->addWidget(m_reason, 1);
    layout->addSpacing(4);
    layout->addWidget(buttons);
    const auto showButton = [this] { m_dismiss->setEnabled(!tidyNote(Reason()).empty()); };
    connect(m_reason, &QPlainTextEdit::textChanged, this, showButton);
    connect(buttons, &QDialogButtonBox::accepted, this, &CDismissDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(QKeySequence(Qt::CTRL | key), this), &QShortcut::activated, this, &CDismissDlg::accept);
    showButton();
    m_reason->setFocus();
    resize(460, 260);
}

std::string CDismissDlg::Reason() const {
    return toUtf8(m_reason->toPlainText());
}

void CDismissDlg::accept() {
    if (m_dismiss->isEnabled() && m_store(Reason()))
        QDialog::accept();
    else
        m_reason->setFocus();
}

} // namespace tavix
