#pragma once

#include "base/AlertDefinition.h"
#include "report/AlertStates.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix {

/// The alerts of a list that the user points at, or a figure with the alerts that watch it.
struct AlertTarget {
    /// The figure that a new alert would watch; its rule and description are not read. Nothing where no figure is.
    std::optional<AlertDefinition> figure;
    std::vector<AlertState> alerts;
};

enum class AlertCommand { Add, Edit, Mute, Unmute, Notes, CopyToFields, Remove };

/// A command as a menu shows it.
struct AlertCommandInfo {
    bool isEnabled = false;
    std::string text;
    std::string toolTip; ///< what the command does, or why it is disabled

    bool operator==(const AlertCommandInfo&) const = default;
};

/// `job` is the report that is open.
[[nodiscard]] AlertCommandInfo alertCommand(AlertCommand command, const AlertTarget& target, int job);

} // namespace tavix
