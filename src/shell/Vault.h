#pragma once

#include <string>
#include <vector>

namespace tavix::shell {

/// The repositories (*.tavix) of a folder, those that were written last first, at most twenty; none of a folder that
/// cannot be listed. The files are not opened.
[[nodiscard]] std::vector<std::string> repositoriesIn(const std::string& folder);

} // namespace tavix::shell
