#pragma once

#include "doc/CommandIds.h"

#include <span>
#include <string_view>

namespace tavix {

class CTavixView;

/// What a command is: its number, its words and what it needs.
struct TavixCommand {
    CommandId id;
    std::string_view text; ///< status line text, "\n", short text
    void (CTavixView::*handler)();
    bool (CTavixView::*isEnabled)() const; ///< null: always
};

struct CommandState {
    bool handled = false;
    bool enabled = false;
    bool checked = false;

    bool operator==(const CommandState&) const = default;
};

/// The way of a command into the viewer. Owned by the view.
class CTavixMain {
  public:
    explicit CTavixMain(CTavixView& view) : m_view(view) {}

    [[nodiscard]] static std::span<const TavixCommand> Commands();
    /// Handled or not; a command that is disabled now does nothing and counts as handled.
    bool Execute(int commandId);
    [[nodiscard]] CommandState Update(int commandId) const;

  private:
    CTavixView& m_view;
};

} // namespace tavix
