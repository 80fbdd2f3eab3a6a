#include "drill/ui/CDetailsDlg.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavix {

CDetailsDlg::CDetailsDlg(const std::string& text, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("details"));
    setWindowTitle(QStringLiteral("Details"));
    auto* shown = new QPlainTextEdit(this);
    shown->setReadOnly(true);
    shown->setAccessibleName(QStringLiteral("Details"));
    shown->setTabChangesFocus(true);
    // The text may hold SQL and filters.
    shown->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    shown->setPlainText(toQString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    auto* copy = buttons->addButton(QStringLiteral("&Copy"), QDialogButtonBox::ActionRole);
    connect(copy, &QPushButton::clicked, this, [shown] { QApplication::clipboard()->setText(shown->toPlainText()); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(shown, 1);
    layout->addWidget(buttons);
}

void CDetailsDlg::Show(const std::string& text, QWidget& view) {
    ModalDialog<CDetailsDlg> dialog(text, &view);
    dialog->setGeometry(QRect(view.mapToGlobal(QPoint(0, 0)), view.size()));
    dialog.exec();
}

} // namespace tavix
