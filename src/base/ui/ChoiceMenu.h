#pragma once

#include "base/ui/QtText.h"

#include <QMenu>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tavix {

/// Fills the menu with the names; to be called when it is about to show. `chosen` receives the id of the chosen name.
/// Without names the menu shows `none`, disabled.
inline void fillChoiceMenu(QMenu& menu, const std::vector<std::pair<int, std::string>>& choices, const QString& none,
                           const std::function<void(int)>& chosen) {
    menu.clear();
    for (const auto& [id, name] : choices) {
        // Names come from the data: ampersands are escaped, and tabs, which would separate a shortcut, become blanks.
        const QString text = toQString(name).simplified().replace(u'&', QStringLiteral("&&"));
        QObject::connect(menu.addAction(text), &QAction::triggered, &menu, [chosen, number = id] { chosen(number); });
    }
    if (choices.empty())
        menu.addAction(none)->setEnabled(false);
}

} // namespace tavix
