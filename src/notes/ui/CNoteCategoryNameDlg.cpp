#include "notes/ui/CNoteCategoryNameDlg.h"

#include "base/ui/QtText.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include <utility>

namespace tavix {

CNoteCategoryNameDlg::CNoteCategoryNameDlg(const QString& title, const QString& name,
                                           std::function<bool(const std::string&)> store, QWidget* parent)
    : QDialog(parent), m_store(std::move(store)), m_name(new QLineEdit(name, this)) {
    setWindowTitle(title);
    m_name->setObjectName(QStringLiteral("name"));
    m_name->setAccessibleName(tr("Name of the category"));
    m_name->setMinimumWidth(300);
    m_name->selectAll();
    auto* label = new QLabel(tr("&Name:"), this);
    label->setBuddy(m_name);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_name);
    layout->addSpacing(8);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &CNoteCategoryNameDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    m_name->setFocus();
}

std::string CNoteCategoryNameDlg::Name() const {
    return toUtf8(m_name->text());
}

void CNoteCategoryNameDlg::accept() {
    if (m_store(Name()))
        QDialog::accept();
    else
        m_name->setFocus();
}

} // namespace tavix
