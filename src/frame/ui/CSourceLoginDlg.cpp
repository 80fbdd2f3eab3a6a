#include "frame/ui/CSourceLoginDlg.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavix {

namespace {

constexpr int kLongestAnswer = 1000;
/// Error texts of servers may be of any length.
constexpr qsizetype kLongestRefusal = 600;
constexpr int kWidth = 440;

QLabel* textLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setText(text);
    return label;
}

QString shortened(const std::string& text, qsizetype most) {
    const QString words = toQString(text).simplified();
    return words.size() > most ? words.left(most) + QChar(0x2026) : words;
}

} // namespace

CSourceLoginDlg::CSourceLoginDlg(const SourceLogins::Question& question, QWidget* parent)
    : QDialog(parent), m_user(new QLineEdit(this)), m_password(new QLineEdit(this)) {
    setObjectName(QStringLiteral("sourceLogin"));
    setWindowTitle(tr("Data Source"));
    QLabel* heading = textLabel(tr("User and password for \u201C%1\u201D").arg(shortened(question.source, 100)), this);
    heading->setObjectName(QStringLiteral("source"));
    QFont strong = heading->font();
    strong.setWeight(QFont::DemiBold);
    heading->setFont(strong);
    QLabel* refusal = textLabel(shortened(question.refusal, kLongestRefusal), this);
    refusal->setObjectName(QStringLiteral("refusal"));
    refusal->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_user->setObjectName(QStringLiteral("user"));
    m_user->setText(toQString(question.user));
    m_password->setObjectName(QStringLiteral("password"));
    m_password->setEchoMode(QLineEdit::Password);
    for (QLineEdit* edit : {m_user, m_password})
        edit->setMaxLength(kLongestAnswer);
    QLabel* note = textLabel(tr("Kept until the report is closed, and stored nowhere."), this);
    QPalette quiet = note->palette();
    quiet.setColor(QPalette::WindowText, quietText(palette()));
    note->setPalette(quiet);

    auto* form = new QFormLayout;
    form->addRow(tr("&User:"), m_user);
    form->addRow(tr("&Password:"), m_password);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->addWidget(heading);
    layout->addWidget(refusal);
    layout->addLayout(form);
    layout->addWidget(note);
    layout->addStretch(1);
    layout->addWidget(buttons);
    setMinimumWidth(kWidth);
    // As high as the server's text needs; sizeHint() assumes a narrower window.
    resize(kWidth, layout->totalHeightForWidth(kWidth));
    if (question.user.empty())
        m_user->setFocus();
    else
        m_password->setFocus();
}

source::Credentials CSourceLoginDlg::GetCredentials() const {
    return {toUtf8(m_user->text()), toUtf8(m_password->text())};
}

std::optional<source::Credentials> CSourceLoginDlg::Choose(const SourceLogins::Question& question, QWidget* window) {
    QWidget* const over = QApplication::activeModalWidget();
    ModalDialog<CSourceLoginDlg> dialog(question, over ? over : window);
    // The login is requested while the wait cursor is set.
    QGuiApplication::setOverrideCursor(Qt::ArrowCursor);
    const bool isGiven = dialog.isAccepted();
    QGuiApplication::restoreOverrideCursor();
    return isGiven ? std::optional(dialog->GetCredentials()) : std::nullopt;
}

} // namespace tavix
