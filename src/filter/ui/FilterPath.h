#pragma once

#include <QString>

class QWidget;

namespace tavix {

/// Asks for the filter file to load or save; "" when the user cancels. Overwriting an existing file was confirmed.
[[nodiscard]] QString AskFilterToLoad(QWidget* parent);
[[nodiscard]] QString AskFilterToSave(QWidget* parent);

} // namespace tavix
