#pragma once

#include "base/ui/QtText.h"

#include <QMenu>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tavix {

/// Makes the menu one of these names, to be called when it is about to show. `chosen` receives the number beside the
/// name; without any name the menu says `none`.
inline void fillChoiceMenu(QMenu& menu, const std::vector<std::pair<int, std::string>>& choices, const QString& none,
                           const std::function<void(int)>& chosen) {
    menu.clear();
    for (const auto& [id, name] : choices) {
        // Names come from the data: an ampersand is one, and a tab is no shortcut.
        const QString text = toQString(name).simplified().replace(u'&', QStringLiteral("&&"));
        QObject::connect(menu.addAction(text), &QAction::triggered, &menu, [chosen, number = id] { chosen(number); });
    }
    if (choices.empty())
        menu.addAction(none)->setEnabled(false);
}

} // namespace tavix
