#include "filter/ui/CFields.h"

#include "base/ui/QtText.h"
#include "base/ui/RoomyDelegate.h"
#include "filter/FilterFields.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

namespace tavix {

CFields::CFields(QWidget* parent) : QDialog(parent), m_fields(new QListWidget(this)) {
    setWindowTitle(tr("Fields"));
    m_fields->setObjectName(QStringLiteral("fields"));
    m_fields->setAccessibleName(tr("Fields of the distribution"));
    m_fields->setItemDelegate(new RoomyDelegate(m_fields));
    for (const FilterField& field : kFilterFields)
        m_fields->addItem(toQString(field.name));
    m_fields->setCurrentRow(0);
    auto* label = new QLabel(tr("&Field:"), this);
    label->setBuddy(m_fields);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_fields, 1);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &CFields::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_fields, &QListWidget::itemDoubleClicked, this, &CFields::accept);
    m_fields->setFocus();
    resize(260, 180);
}

void CFields::accept() {
    QGuiApplication::clipboard()->setText(m_fields->currentItem()->text());
    QDialog::accept();
}

} // namespace tavix
