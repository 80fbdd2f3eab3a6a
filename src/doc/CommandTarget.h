#pragma once

#include "doc/CommandIds.h"

#include <span>

namespace tavix {

/// What a menu shows of a command.
struct CommandState {
    bool handled = false; ///< a target has a handler for it
    bool enabled = false;
    bool checked = false;

    bool operator==(const CommandState&) const = default;
};

/// Receives commands; the default handles none.
class CommandTarget {
  public:
    virtual ~CommandTarget() = default;
    /// False when it has no handler for the command: the next target is tried.
    virtual bool ExecuteCommand(int) { return false; }
    [[nodiscard]] virtual CommandState UpdateCommand(int) const { return {}; }
};

/// One row of a target's table of handlers.
template <typename Target>
struct CommandRow {
    CommandId id;
    void (Target::*handler)();
    bool (Target::*isEnabled)() const = nullptr; ///< null: always
    bool (Target::*isChecked)() const = nullptr; ///< null: never
};

template <typename Target>
const CommandRow<Target>* findCommand(std::span<const CommandRow<Target>> rows, int commandId) {
    for (const CommandRow<Target>& row : rows) {
        if (static_cast<int>(row.id) == commandId)
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

/// Whether the target handles the command. One that is disabled counts as handled and does nothing.
template <typename Target>
bool execute(std::span<const CommandRow<Target>> rows, Target& target, int commandId) {
    const CommandRow<Target>* row = findCommand(rows, commandId);
    if (row && stateOf(rows, target, commandId).enabled)
        (target.*row->handler)();
    return row != nullptr;
}

} // namespace tavix
