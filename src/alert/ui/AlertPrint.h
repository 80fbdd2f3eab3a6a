#pragma once

#include "base/Result.h"

#include <string>

class QPrinter;

namespace tavix {

class AlertRows;

/// Prints the listed alerts in the list's order, the printer's page range. `filter` stands below the title of each
/// page. An output file is replaced as a whole or, on failure, left unchanged. Fails when the printer cannot start or
/// the file cannot be written.
Status printAlerts(const AlertRows& rows, const std::string& filter, QPrinter& printer);

} // namespace tavix
