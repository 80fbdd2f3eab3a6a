#pragma once

namespace tavix {

/// The commands that a shell may route into the viewer, by number.
enum class CommandId {
    New = 57600,
    RefreshCollections = 32904,
    Options = 40001,
    DeleteHistory = 40002,
};

} // namespace tavix
