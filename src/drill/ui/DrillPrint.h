#pragma once

#include "base/Result.h"

class QFont;
class QPrinter;
class QString;

namespace tavix {

class CDrillThruDataSrc;

/// Prints the rows in the order of the grid as a table: every page has the headings above its rows, `subject` over them
/// and its number below. Columns that do not fit beside each other follow on further pages. Prints the range of pages
/// that the printer was told. A file that is printed into is replaced whole or, after a failure, left as it was. An
/// error when the printer cannot start or the file cannot be written.
Status printDrillRows(const CDrillThruDataSrc& source, const QString& subject, const QFont& font, QPrinter& printer);

} // namespace tavix
