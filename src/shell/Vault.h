#pragma once

#include <string>
#include <vector>

namespace tavix::shell {

/// The repositories (*.tavix) of a folder: at most twenty, the last modified first; none if the folder cannot be read.
/// The files are not opened.
[[nodiscard]] std::vector<std::string> repositoriesIn(const std::string& folder);

} // namespace tavix::shell
