#pragma once

#include "doc/CommandTarget.h"

#include <span>

namespace tavix {

class CTavixView;

/// The way of a command into the viewer, and the commands that concern the whole report. Owned by the view.
class CTavixMain {
  public:
    explicit CTavixMain(CTavixView& view) : m_view(view) {}

    /// Every command that somebody in the viewer handles, for menus.
    [[nodiscard]] static std::span<const TavixCommand> Commands();
    /// Handled or not; a command that is disabled now does nothing and counts as handled.
    bool Execute(int commandId);
    [[nodiscard]] CommandState Update(int commandId) const;

    void OnOptions();
    void OnDeleteHistory();
    void OnNoteCategories();
    [[nodiscard]] bool CanDeleteHistory() const;
    [[nodiscard]] bool HasTitle() const;
    /// There is something that export and print could act on.
    [[nodiscard]] bool HasCurrentItem() const;

  private:
    CTavixView& m_view;
};

} // namespace tavix
