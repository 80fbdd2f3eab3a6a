#pragma once

#include <string_view>

namespace tavix::source {

/// Reads any bytes as a text file; the first three choose how. What is UTF-8 is read by a slow and obvious reader too,
/// and both must agree in every cell; aborts when they do not.
void fuzzText(std::string_view bytes);

} // namespace tavix::source
