#pragma once

#include "doc/CommandIds.h"

#include <span>
#include <string_view>

namespace tavix {

/// What a menu shows of a command.
struct CommandState {
    bool handled = false; ///< somebody knows the command
    bool enabled = false;
    bool checked = false;

    bool operator==(const CommandState&) const = default;
};

/// Somebody to whom commands are offered; as it stands, one who knows none.
class CommandTarget {
  public:
    virtual ~CommandTarget() = default;
    /// False when it does not know the command, so that the next may be asked.
    virtual bool ExecuteCommand(int) { return false; }
    [[nodiscard]] virtual CommandState UpdateCommand(int) const { return {}; }
};

/// A command and its words.
struct TavixCommand {
    CommandId id;
    std::string_view text; ///< status line text, "\n", short text
};

/// One row of a target's table of commands.
template <typename Target>
struct CommandRow {
    TavixCommand command;
    void (Target::*handler)();
    bool (Target::*isEnabled)() const = nullptr; ///< null: always
    bool (Target::*isChecked)() const = nullptr; ///< null: never
};

template <typename Target>
const CommandRow<Target>* findCommand(std::span<const CommandRow<Target>> rows, int commandId) {
    for (const CommandRow<Target>& row : rows) {
        if (static_cast<int>(row.command.id) == commandId)
            return &row;
    }
    return nullptr;
}

template <typename Target>
CommandState stateOf(std::span<const CommandRow<Target>> rows, const Target& target, int commandId) {
    const CommandRow<Target>* row = findCommand(rows, commandId);
    if (!row)
        return {};
    return {.handled = true,
            .enabled = !row->isEnabled || (target.*row->isEnabled)(),
            .checked = row->isChecked && (target.*row->isChecked)()};
}

/// A command that is disabled now counts as handled and does nothing.
template <typename Target>
bool execute(std::span<const CommandRow<Target>> rows, Target& target, int commandId) {
    const CommandRow<Target>* row = findCommand(rows, commandId);
    if (row && stateOf(rows, target, commandId).enabled)
        (target.*row->handler)();
    return row != nullptr;
}

} // namespace tavix
