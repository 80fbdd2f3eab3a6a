#pragma once

#include "base/Result.h"

#include <functional>
#include <string>

class QPrinter;

namespace tavix {

/// Prints by `paint`, which returns false when the printer cannot start. An output file is replaced as a whole or, on
/// failure, left unchanged. Fails with `cannotStart`, or with the reason why the file cannot be written.
Status printWhole(QPrinter& printer, const std::function<bool(QPrinter&)>& paint, const std::string& cannotStart);

} // namespace tavix
