#include "filter/ui/CValueListDlg.h"

#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "report/CountText.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTextBlock>
#include <QVBoxLayout>

namespace tavix {

CValueListDlg::CValueListDlg(const std::vector<std::string>& values, QWidget* parent)
    : QDialog(parent), m_text(new QPlainTextEdit(this)), m_count(new QLabel(this)) {
    setWindowTitle(tr("Value List"));
    QStringList lines;
    for (const std::string& value : values)
        lines << toQString(value);
    m_text->setObjectName(QStringLiteral("values"));
    m_text->setAccessibleName(tr("Values, one on each line"));
    m_text->setTabChangesFocus(true);
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_text->setPlainText(lines.join(u'\n'));
    m_text->moveCursor(QTextCursor::End);
    auto* label = new QLabel(tr("&Values, one on each line:"), this);
    label->setBuddy(m_text);
    QPalette quiet = palette();
    quiet.setColor(QPalette::WindowText, quietText(palette()));
    m_count->setPalette(quiet);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setToolTip(tr("Ctrl+Enter"));

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_count, 1);
    bottom->addWidget(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_text, 1);
    layout->addLayout(bottom);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_text, &QPlainTextEdit::textChanged, this, &CValueListDlg::ShowCount);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(QKeySequence(Qt::CTRL | key), this), &QShortcut::activated, this, &QDialog::accept);
    ShowCount();
    m_text->setFocus();
    resize(400, 320);
}

std::vector<std::string> CValueListDlg::GetValues() const {
    // The text of a block is what was entered; the text of the whole would have ordinary blanks for unbroken ones.
    std::vector<std::string> values;
    for (QTextBlock line = m_text->document()->begin(); line.isValid(); line = line.next()) {
        if (line.length() > 1)
            values.push_back(toUtf8(line.text()));
    }
    return values;
}

void CValueListDlg::ShowCount() {
    m_count->setText(toQString(countOf(static_cast<std::int64_t>(GetValues().size()), "value")));
}

} // namespace tavix
