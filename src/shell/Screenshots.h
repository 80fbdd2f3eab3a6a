#pragma once

#include "host/TavixHost.h"

namespace tavix::shell {

class ShellWindow;
struct ShellOptions;

/// Walks through the main windows, writes a picture of each to the folder and prints its path. False when a picture
/// cannot be written; what went wrong is on stderr.
[[nodiscard]] bool takeScreenshots(ShellWindow& window, Veldra::Solenne::Tavix::TavixHost& host,
                                   const ShellOptions& options);

} // namespace tavix::shell
