#pragma once

#include "base/Result.h"

class QFont;
class QPrinter;
class QString;

namespace tavix {

class CDrillThruDataSrc;

/// Prints the rows in the grid's order as a table. Every page has `subject` and the headings above its rows and the
/// page number below. Columns that do not fit on one page continue on further pages. Prints the printer's page range.
/// An output file is replaced as a whole or, on failure, left unchanged. Fails when the printer cannot start or the
/// file cannot be written.
Status printDrillRows(const CDrillThruDataSrc& source, const QString& subject, const QFont& font, QPrinter& printer);

} // namespace tavix
