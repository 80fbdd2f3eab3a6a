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

/// Which rows of a field's table are wanted.
struct WantedRows {
    enum class Kind {
        Value,   ///< the field has this text
        Null,    ///< the field is null
        Pattern, ///< the field is a text of this pattern
    };
    Kind kind = Kind::Value;
    std::string text; ///< of no meaning for Null
};

/// What a run says of where the rows of a table come from.
struct DrillTable {
    struct Column {
        std::string name;
        kvbType type = kvbType::Text; ///< what the run found its values to be
    };
    struct TextFile {
        struct File {
            std::string path;              ///< as the run read it
            std::string currentPath;       ///< where it is now
            std::optional<char> delimiter; ///< none: the run does not say it of this file
            std::string encoding;          ///< empty likewise
            std::int64_t size = -1;        ///< -1 likewise
            UtcTime modified{};            ///< of no meaning then
        };
        std::string path;     ///< of several files how they were named
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
        std::string connection; ///< how it was reached, without user and password
        std::string user;       ///< whom the job named; empty: nobody
        source::TableRequest address;
    };

    int id = -1;
    std::string name;  ///< as shown
    std::string field; ///< the one that is drilled into
    std::vector<Column> columns;
    std::string filter; ///< the condition of a filtered table; empty for others
    std::optional<TextFile> file;
    std::optional<Database> database;
    bool isSampled = false; ///< the run counted some of the rows only
};

/// The rows of a source, and which of them to pass on.
struct DrillSource {
    std::unique_ptr<source::OdbcConnection> connection; ///< of a database; outlives the reader
    std::unique_ptr<source::RowReader> reader;
    std::vector<std::unique_ptr<RowTest>> tests; ///< in this order; none for what the reader itself decides
    std::vector<kvbType> types;                  ///< of the reader's columns
    std::string name;                            ///< for people who wait
    std::string warning;                         ///< how the source differs from the one of the run; empty: it does not
};

/// Opens the source that the run read. Errors say what stands in the way: it is gone, or has no such column any more.
/// `ask` and `keepGoing` are for databases; both may be empty.
[[nodiscard]] Result<DrillSource> openDrillSource(const DrillTable& table, const WantedRows& wanted,
                                                  const source::AskCredentials& ask,
                                                  const source::KeepGoing& keepGoing);

} // namespace tavix
