#pragma once

class QFont;
class QPrinter;
class QString;

namespace tavix {

class CDrillThruDataSrc;

/// Prints the rows in the order of the grid as a table: every page has the headings above its rows, `subject` over them
/// and its number below. Columns that do not fit beside each other follow on further pages. Prints the range of pages
/// that the printer was told. False when the printer cannot start.
bool printDrillRows(const CDrillThruDataSrc& source, const QString& subject, const QFont& font, QPrinter& printer);

} // namespace tavix
