#pragma once

#include <string>

namespace tavix::testing {

/// A file or folder of the checkout that the tests were built from, by its path below the checkout.
std::string sourceFile(const std::string& path);

} // namespace tavix::testing
