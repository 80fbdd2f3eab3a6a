#pragma once

#include <QIcon>
#include <QStyle>

#include <optional>

namespace tavix::shell {

enum class ShellIcon {
    Open,
    Reports,
    Reload,
    Options,
    DeleteHistory,
    Runs,
    Filter,
    StopFiltering,
    Note,
    Detach,
    // Of dialogs.
    Information,
    Question,
    Warning,
    Critical,
    Clear,
    Back,
    Forward,
    Up,
    NewFolder,
    List,
    Details,
    Folder,
    File,
    Home,
    Computer,
    Drive,
};

/// Line drawings in the colour of the palette's text, crisp at every scale; those of messages have the colour of their
/// kind.
[[nodiscard]] QIcon shellIcon(ShellIcon icon);
/// The drawing used in place of an icon of the toolkit's dialogs; nothing for one that has none.
[[nodiscard]] std::optional<ShellIcon> iconOfDialog(QStyle::StandardPixmap pixmap);

} // namespace tavix::shell
