#pragma once

#include <QIcon>

namespace tavix::shell {

enum class ShellIcon { Open, Reports, Reload, Options, DeleteHistory };

/// Line drawings in the colour of the palette's text, crisp at every scale.
[[nodiscard]] QIcon shellIcon(ShellIcon icon);

} // namespace tavix::shell
