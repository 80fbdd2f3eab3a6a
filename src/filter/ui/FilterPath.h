#pragma once

#include <QString>

class QWidget;

namespace tavix {

/// Asks for the filter file to be loaded or saved; "" when the user has none. What is to be saved in place of an
/// existing file was agreed to.
[[nodiscard]] QString AskFilterToLoad(QWidget* parent);
[[nodiscard]] QString AskFilterToSave(QWidget* parent);

} // namespace tavix
