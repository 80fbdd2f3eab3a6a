#pragma once

#include "host/TavixHost.h"

#include <string>

namespace tavix::shell {
class ShellWindow;
} // namespace tavix::shell

namespace tavix::pictures {

/// What to draw, and where to.
struct PictureOptions {
    std::string folder;
    std::string repository; ///< "": the welcome page only
    std::string job;        ///< "": the first report
    int width = 1280;       ///< of the window, in device-independent pixels
    int height = 800;
};

/// Walks through the main windows, writes a picture of each to the folder and prints its path. False after a failure,
/// whose reason is on stderr.
[[nodiscard]] bool takePictures(shell::ShellWindow& window, Veldra::Solenne::Tavix::TavixHost& host,
                                const PictureOptions& options);

} // namespace tavix::pictures
