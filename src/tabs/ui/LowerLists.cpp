#include "tabs/ui/LowerLists.h"

#include "base/ui/QtText.h"
#include "grid/ui/CUGCtrl.h"

#include <QLabel>
#include <QSplitter>
#include <QVBoxLayout>

namespace tavix {

LowerLists::LowerLists(const std::vector<const char*>& names, QWidget* parent) : QWidget(parent) {
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setChildrenCollapsible(false);
    splitter->setHandleWidth(1);
    for (const char* name : names) {
        auto* side = new QWidget(splitter);
        const List list{new QLabel(toQString(name), side), new CUGCtrl(side)};
        list.heading->setTextFormat(Qt::PlainText);
        list.heading->setContentsMargins(12, 7, 12, 5);
        list.grid->setAccessibleName(toQString(name));
        auto* layout = new QVBoxLayout(side);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        layout->addWidget(list.heading);
        layout->addWidget(list.grid, 1);
        splitter->addWidget(side);
        m_lists.push_back(list);
    }
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splitter);
}

void LowerLists::SetHeading(std::size_t list, const std::string& heading) {
    m_lists[list].heading->setText(toQString(heading));
}

void LowerLists::SetListFont(const QFont& font) {
    for (const List& list : m_lists)
        list.grid->setFont(font);
}

} // namespace tavix
