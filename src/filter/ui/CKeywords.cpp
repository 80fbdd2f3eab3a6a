#include "filter/ui/CKeywords.h"

#include "base/ui/QtText.h"
#include "base/ui/RoomyDelegate.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextDocument>
#include <QVBoxLayout>

#include <utility>

namespace tavix {

CKeywords::CKeywords(std::vector<FilterFunction> functions, QWidget* parent)
    : QDialog(parent),
      m_functions(std::move(functions)),
      m_search(new QLineEdit(this)),
      m_names(new QListWidget(this)),
      m_text(new QPlainTextEdit(this)) {
    setWindowTitle(tr("Functions"));
    m_search->setObjectName(QStringLiteral("search"));
    m_search->setAccessibleName(tr("Find a function by its name or description"));
    m_search->setPlaceholderText(tr("Name or description"));
    m_search->setClearButtonEnabled(true);
    m_search->installEventFilter(this);
    auto* searchLabel = new QLabel(tr("&Find:"), this);
    searchLabel->setBuddy(m_search);
    m_names->setObjectName(QStringLiteral("functions"));
    m_names->setAccessibleName(tr("Functions"));
    m_names->setItemDelegate(new RoomyDelegate(m_names));
    m_text->setObjectName(QStringLiteral("description"));
    m_text->setAccessibleName(tr("Description of the function"));
    m_text->setReadOnly(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setTabChangesFocus(true);
    m_text->document()->setDocumentMargin(8);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_ok = buttons->button(QDialogButtonBox::Ok);

    auto* searchRow = new QHBoxLayout;
    searchRow->addWidget(searchLabel);
    searchRow->addWidget(m_search, 1);
    auto* middle = new QHBoxLayout;
    middle->addWidget(m_names, 2);
    middle->addWidget(m_text, 3);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(searchRow);
    layout->addLayout(middle, 1);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &CKeywords::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_search, &QLineEdit::textChanged, this, &CKeywords::FillList);
    connect(m_names, &QListWidget::currentRowChanged, this, &CKeywords::ShowFunction);
    connect(m_names, &QListWidget::itemDoubleClicked, this, &CKeywords::accept);
    FillList();
    m_search->setFocus();
    resize(600, 420);
}

void CKeywords::FillList() {
    m_names->clear();
    for (const std::size_t i : FindFunctions(m_functions, toUtf8(m_search->text())))
        (new QListWidgetItem(toQString(m_functions[i].name), m_names))->setData(Qt::UserRole, static_cast<int>(i));
    m_names->setCurrentRow(0);
    ShowFunction();
}

const FilterFunction* CKeywords::Chosen() const {
    const QListWidgetItem* item = m_names->currentItem();
    return item ? &m_functions[static_cast<std::size_t>(item->data(Qt::UserRole).toInt())] : nullptr;
}

void CKeywords::ShowFunction() {
    const FilterFunction* function = Chosen();
    m_text->setPlainText(function ? toQString(FunctionSignatureText(*function)) : tr("No function matches."));
    m_ok->setEnabled(function != nullptr);
}

// The arrow keys move through the list while the keyboard is in the search box.
bool CKeywords::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_search && event->type() == QEvent::KeyPress) {
        switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            QCoreApplication::sendEvent(m_names, event);
            return true;
        default:
            break;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void CKeywords::accept() {
    const FilterFunction* function = Chosen();
    if (!function)
        return;
    QGuiApplication::clipboard()->setText(toQString(FunctionCallText(*function)));
    QDialog::accept();
}

} // namespace tavix
