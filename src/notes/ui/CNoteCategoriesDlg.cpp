#include "notes/ui/CNoteCategoriesDlg.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/RoomyDelegate.h"
#include "doc/CTavixDoc.h"
#include "notes/ui/CNoteCategoryNameDlg.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>

namespace tavix {

CNoteCategoriesDlg::CNoteCategoriesDlg(NoteCategories& categories, QWidget* parent)
    : QDialog(parent),
      m_categories(categories),
      m_list(new QListWidget(this)),
      m_rename(new QPushButton(tr("&Rename..."), this)),
      m_delete(new QPushButton(tr("&Delete..."), this)) {
    setWindowTitle(tr("Note Categories"));
    m_list->setObjectName(QStringLiteral("categories"));
    m_list->setAccessibleName(tr("Note categories"));
    m_list->setItemDelegate(new RoomyDelegate(m_list));
    m_list->setAlternatingRowColors(true);
    m_list->setUniformItemSizes(true);
    auto* label = new QLabel(tr("&Categories that notes can have:"), this);
    label->setBuddy(m_list);
    auto* add = new QPushButton(tr("&Add..."), this);
    add->setObjectName(QStringLiteral("add"));
    m_rename->setObjectName(QStringLiteral("rename"));
    m_delete->setObjectName(QStringLiteral("delete"));
    add->setToolTip(tr("Insert"));
    m_rename->setToolTip(tr("F2"));
    m_delete->setToolTip(tr("Del"));
    // Enter renames the category, so no button may take it.
    for (QPushButton* button : {add, m_rename, m_delete})
        button->setAutoDefault(false);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setAutoDefault(false);

    auto* side = new QVBoxLayout;
    side->setSpacing(6);
    side->addWidget(add);
    side->addWidget(m_rename);
    side->addWidget(m_delete);
    side->addStretch();
    auto* middle = new QHBoxLayout;
    middle->setSpacing(12);
    middle->addWidget(m_list, 1);
    middle->addLayout(side);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addLayout(middle, 1);
    layout->addSpacing(4);
    layout->addWidget(buttons);

    connect(add, &QPushButton::clicked, this, &CNoteCategoriesDlg::Add);
    connect(m_rename, &QPushButton::clicked, this, &CNoteCategoriesDlg::Rename);
    connect(m_delete, &QPushButton::clicked, this, &CNoteCategoriesDlg::Delete);
    connect(m_list, &QListWidget::itemDoubleClicked, this, &CNoteCategoriesDlg::Rename);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    const auto onKey = [this](Qt::Key key, void (CNoteCategoriesDlg::*handler)()) {
        auto* shortcut = new QShortcut(QKeySequence(key), m_list);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, handler);
    };
    onKey(Qt::Key_Insert, &CNoteCategoriesDlg::Add);
    onKey(Qt::Key_F2, &CNoteCategoriesDlg::Rename);
    onKey(Qt::Key_Return, &CNoteCategoriesDlg::Rename);
    onKey(Qt::Key_Enter, &CNoteCategoriesDlg::Rename);
    onKey(Qt::Key_Delete, &CNoteCategoriesDlg::Delete);
    Show(0);
    m_list->setFocus();
    resize(400, 300);
}

void CNoteCategoriesDlg::Show(int position) {
    m_list->clear();
    for (const NoteCategory& category : m_categories.List())
        m_list->addItem(toQString(category.name));
    m_list->setCurrentRow(std::min(position, m_list->count() - 1));
    m_rename->setEnabled(m_list->count() > 0);
    m_delete->setEnabled(m_list->count() > 0);
}

void CNoteCategoriesDlg::Add() {
    CNoteCategoryNameDlg dialog(
        tr("Add Category"), {}, [this](const std::string& name) { return m_categories.Add(name); }, this);
    if (dialog.exec() == QDialog::Accepted)
        Show(m_categories.Find(dialog.Name()));
    m_list->setFocus();
}

void CNoteCategoriesDlg::Rename() {
    const int position = m_list->currentRow();
    if (position < 0)
        return;
    CNoteCategoryNameDlg dialog(
        tr("Rename Category"), m_list->currentItem()->text(),
        [this, position](const std::string& name) { return m_categories.Rename(position, name); }, this);
    if (dialog.exec() == QDialog::Accepted)
        Show(m_categories.Find(dialog.Name()));
    m_list->setFocus();
}

void CNoteCategoriesDlg::Delete() {
    const int position = m_list->currentRow();
    if (m_categories.Delete(position))
        Show(position);
    m_list->setFocus();
}

bool CNoteCategoriesDlg::Run(CTavixDoc& document, QWidget* parent) {
    const std::shared_ptr<PrViewer> session = document.GetSession();
    if (!session)
        return false;
    NoteCategories categories(*session, document.GetMessages());
    if (!categories.Read())
        return false;
    ModalDialog<CNoteCategoriesDlg>(categories, parent).exec();
    return categories.HasChanged();
}

} // namespace tavix
