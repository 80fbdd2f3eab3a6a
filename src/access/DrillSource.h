#pragma once

#include "access/PrViewerDrillCursor.h"
#include "access/RowTest.h"
#include "base/Clock.h"
#include "base/Result.h"
#include "repository/FileOffsetIndex.h"
#include "source/Credentials.h"
#include "source/DatabaseTable.h"
#include "source/OdbcConnection.h"
#include "source/RowReader.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavix {

/// Which rows of a field's table to read.
struct WantedRows {
    enum class Kind {
        Value,     ///< the field has this text
        Null,      ///< the field is null
        Pattern,   ///< the field is a text of this pattern
        Condition, ///< a condition over `Value`, the field, is true
    };
    Kind kind = Kind::Value;
    std::string text; ///< of a value or pattern
    std::optional<expression::Program> condition{};
};

/// Where the rows of a table come from, as a run recorded it.
struct DrillTable {
    struct Column {
        std::string name;
        kvbType type = kvbType::Text; ///< by the values that the run found
    };
    struct TextFile {
        struct File {
            std::string path;              ///< as the run read it
            std::string currentPath;       ///< where it is now
            std::optional<char> delimiter; ///< none: not recorded for this file
            std::string encoding;          ///< empty: not recorded
            std::int64_t size = -1;        ///< -1: not recorded
            UtcTime modified{};            ///< meaningless without a size
        };
        std::string path;     ///< of several files, their pattern
        char delimiter = ','; ///< 0: the lines are not split
        bool hasHeader = true;
        std::string encoding;
        std::int64_t size = 0; ///< of all files
        UtcTime modified{};
        char quote = '"';          ///< 0: none
        std::vector<File> files{}; ///< one or more
        /// The ranges that held the wanted value when the run read the file; none without an offset index.
        std::optional<repository::FoundRanges> ranges{};
    };

    struct Database {
        std::string source;     ///< its name
        std::string connection; ///< how to reach it, without user and password
        std::string user;       ///< the user in the job; empty: none
        source::TableRequest address;
    };

    int id = -1;
    std::string name;  ///< as displayed
    std::string field; ///< the field of the drill-down
    std::vector<Column> columns;
    std::string filter;   ///< the condition of a filtered table, else empty
    std::int64_t now = 0; ///< what now() means in it: the start of the run
    /// The meaning of columns in it: Texts in runs of older versions.
    expression::Columns columnsInFilter = expression::Columns::Texts;
    std::optional<TextFile> file;
    std::optional<Database> database;
    bool isSampled = false; ///< the run counted only some of the rows
};

/// The rows of a source, and the tests that select some.
struct DrillSource {
    std::unique_ptr<source::OdbcConnection> connection; ///< of a database; outlives the reader
    std::unique_ptr<source::RowReader> reader;
    std::vector<std::unique_ptr<RowTest>> tests; ///< in this order; none for what the reader itself tests
    std::vector<kvbType> types;                  ///< of the reader's columns
    std::string name;                            ///< for progress messages
    std::string warning;                         ///< how the source differs from the run's; empty: it does not
};

/// Opens the source that the run read. Errors give the obstacle: the source or the column no longer exists. `ask` and
/// `keepGoing` are for databases; both may be empty.
[[nodiscard]] Result<DrillSource> openDrillSource(const DrillTable& table, const WantedRows& wanted,
                                                  const source::AskCredentials& ask,
                                                  const source::KeepGoing& keepGoing);

} // namespace tavix
