#pragma once

#include "base/KvbDatavar.h"
#include "cli/Output.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tavix::cli {

enum class Format { Text, Json, Csv };

struct Column {
    enum class Kind {
        Text,
        /// A number. In JSON, text that is a number is written as that number, digit for digit.
        Number,
        /// A value of a field: a number in the rows whose `typeColumn` is integer or real, else text.
        TypedValue,
        /// Long text in the last column, or in any of a record. The text format folds it into lines instead of cutting
        /// it.
        Prose,
    };

    std::string key;   ///< the name in JSON and CSV
    std::string title; ///< the heading in text
    Kind kind = Kind::Text;
    int places = -1; ///< decimals of a real in the text format, -1 for a readable number. JSON and CSV always have all.
    /// Text that is a number was computed, so the text format rounds it like a real; a value of a field it shows in
    /// full.
    bool isComputed = false;
    bool isMarked = false; ///< may be over the values that fit, see Section::fitColumn
};

/// A row's cells; null is a null cell.
using Row = std::vector<KvbDatavar>;

/// One list of a result.
struct Section {
    std::string key;   ///< the name of the member in JSON when there are several lists
    std::string title; ///< above the table in text when there are several lists
    std::vector<Column> columns;
    /// The list has one row: an object in JSON, a line for each column in the text format.
    bool isRecord = false;
    std::string nullText = "-"; ///< for a null cell in text
    int typeColumn = -1;        ///< the column with the name of the field's type, for Column::Kind::TypedValue
    /// The first of the columns that tell over which values the marked columns are: the last of the section. JSON and
    /// CSV have them; text has kOverFits after the marked cells of the rows in which the first is not null.
    int fitColumn = -1;

    [[nodiscard]] std::size_t textColumns() const {
        return fitColumn < 0 ? columns.size() : static_cast<std::size_t>(fitColumn);
    }
};

enum class Sections { One, Several };

/// Writes lists in one format, row by row: memory does not grow with the number of rows.
/// Call order: begin, row..., end for each list, then finish.
class TableWriter {
  public:
    virtual ~TableWriter() = default;

    virtual void begin(const Section& section) = 0;
    /// `cells` has one cell for each column of the section.
    virtual void row(std::span<const KvbDatavar> cells) = 0;
    virtual void end() = 0;
    virtual void finish() = 0;
};

struct WriterOptions {
    Format format = Format::Text;
    Sections sections = Sections::One; ///< CSV can hold only one
    bool spreadsheet = false; ///< CSV: put an apostrophe before text that a spreadsheet would take for a formula
};

/// `output` must outlive the writer.
[[nodiscard]] std::unique_ptr<TableWriter> makeTableWriter(const WriterOptions& options, Output& output);

} // namespace tavix::cli
