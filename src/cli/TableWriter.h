#pragma once

#include "base/KvbDatavar.h"
#include "cli/Output.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tavix::cli {

enum class Format { Text, Json, Csv };

struct Column {
    enum class Kind {
        Text,
        /// A figure. Text in it that is a number stands in JSON as that very number, digit for digit.
        Number,
        /// A value of a field: a figure in the rows whose `typeColumn` says integer or real, else text.
        TypedValue,
        /// Text that people write, in the last column: text shows all of it, folded into lines.
        Prose,
    };

    std::string key;   ///< the name in JSON and CSV
    std::string title; ///< the heading in text
    Kind kind = Kind::Text;
    int places = -1; ///< decimals of a real in text; -1 as people write it. JSON and CSV always have all.
    /// Text that is a number was computed and is no value of a field: text rounds it like a real.
    bool isComputed = false;
};

/// A row's cells; null is a null cell.
using Row = std::vector<KvbDatavar>;

/// One list of a result.
struct Section {
    std::string key;   ///< the member's name in JSON when there are several lists
    std::string title; ///< above the table in text when there are several lists
    std::vector<Column> columns;
    /// The list has one row that speaks of one thing: a JSON object, and in text a line for each column.
    bool isRecord = false;
    std::string nullText = "-"; ///< for a null cell in text
    int typeColumn = -1;        ///< the column with the name of the field's type, for Column::Kind::TypedValue
};

enum class Sections { One, Several };

/// Writes lists in one format, row by row as they come: memory does not grow with the number of rows.
/// Call order: begin, row..., end for each list, then finish.
class TableWriter {
  public:
    virtual ~TableWriter() = default;

    virtual void begin(const Section& section) = 0;
    /// As many cells as the section has columns.
    virtual void row(std::span<const KvbDatavar> cells) = 0;
    virtual void end() = 0;
    virtual void finish() = 0;
};

struct WriterOptions {
    Format format = Format::Text;
    Sections sections = Sections::One; ///< CSV takes one only
    bool spreadsheet = false;          ///< CSV: text that a spreadsheet would take for a formula is marked as text
};

/// `output` must outlive the writer.
[[nodiscard]] std::unique_ptr<TableWriter> makeTableWriter(const WriterOptions& options, Output& output);

} // namespace tavix::cli
