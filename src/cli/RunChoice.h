#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace tavix::cli {

/// The options --job and --run, by which a command says of which run it speaks.
void addRunChoice(CLI::App& command, std::optional<std::string>& job, std::optional<int>& run);

} // namespace tavix::cli
