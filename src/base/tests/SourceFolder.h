#pragma once

#include <string>

namespace tavix::testing {

/// A file or folder of the checkout from which the tests were built, by its path in the checkout.
std::string sourceFile(const std::string& path);

} // namespace tavix::testing
