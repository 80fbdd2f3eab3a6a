#pragma once

#include "base/Encodings.h"
#include "base/Result.h"
#include "repository/AlertFacts.h"
#include "repository/Facts.h"
#include "source/DatabaseTable.h"
#include "source/Sample.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::job {

/// How many violating rows of a rule a run keeps unless the job says otherwise.
inline constexpr std::size_t kRowLogLimit = 1000;

/// An expression of a job. docs/expressions.md is the language.
struct ExpressionText {
    std::string text;
    std::string place; ///< "FILE:LINE:COLUMN: " where it stands; empty when it comes from no file

    bool operator==(const ExpressionText&) const = default;
};

/// What a custom metric makes of its expression: count the rows for which it is true, aggregate its values over the
/// rows, or evaluate it once over the table's metrics.
enum class Figure { Count, Sum, Average, Minimum, Maximum, Metric };

/// The word for it in job files and in the repository.
[[nodiscard]] std::string_view figureWord(Figure figure);

struct CustomMetricDescription {
    std::string name; ///< unique in the table
    std::string outputName;
    Figure figure = Figure::Count;
    ExpressionText expression;

    bool operator==(const CustomMetricDescription&) const = default;
};

/// A condition that every row of a table has to meet.
struct RuleDescription {
    std::string name; ///< unique in the table
    ExpressionText condition;
    std::size_t rowLogLimit = kRowLogLimit;

    bool operator==(const RuleDescription&) const = default;
};

/// A database that tables of a job are read from.
struct SourceDescription {
    std::string name;       ///< unique in the job
    std::string connection; ///< the name of an ODBC data source, or a connection string without a password

    bool operator==(const SourceDescription&) const = default;
};

/// A table of a job: a text file, several with the same columns, a table or query of a database, or the rows of
/// another table of the job that pass a condition.
struct TableDescription {
    std::string name;              ///< unique in the job; a file's name without its ending unless stated
    std::string path;              ///< absolute; of several files how they were named; empty for a filtered table
    std::optional<char> delimiter; ///< found in the file when not stated
    bool hasHeader = true;
    std::string basedOn{}; ///< of a filtered table: the table of this job whose rows it filters
    ExpressionText where{};
    std::vector<std::string> key{}; ///< the fields by which people know a row
    std::vector<CustomMetricDescription> metrics{};
    std::vector<RuleDescription> rules{};
    std::vector<std::string> files{};    ///< absolute, when the table is made of several
    bool findHeader = false;             ///< the first row tells whether it is a header
    const CEncoding* encoding = nullptr; ///< found in the file when null
    char quote = '"';                    ///< 0: none
    source::Sample sample{};             ///< a filtered table has that of the table that it is based on
    std::string source{};                ///< of a table of a database: the name of the job's source
    source::TableRequest database{};
    bool isCountedByRows = false; ///< its rows are read even if the engine can count
    std::vector<repository::AlertFacts> alerts{};
    /// Where each field of the key and each alert is in the job file, as in ExpressionText; none without one.
    std::vector<std::string> keyPlaces{};
    std::vector<std::string> alertPlaces{};

    [[nodiscard]] bool isFiltered() const { return !basedOn.empty(); }
    [[nodiscard]] bool isDatabase() const { return !source.empty(); }

    bool operator==(const TableDescription&) const = default;
};

/// What a job profiles. Read from a job file or made from the names of text files.
struct JobDescription {
    std::string name;
    std::string description;
    std::string repository; ///< where the results go; "" when the command says so
    std::string dataSource; ///< name of the text files' data source; the folder of the first file unless stated
    std::vector<TableDescription> tables;
    std::vector<repository::CollectionFacts> collections;
    std::vector<SourceDescription> sources{};
    std::vector<std::vector<std::string>> collectionPlaces{}; ///< of each collection's fields, as keyPlaces of a table
};

/// The place at `index`; empty beyond the last, as of a job that comes from no file.
[[nodiscard]] std::string_view placeAt(std::span<const std::string> places, std::size_t index);

/// Reads a YAML job file, checked against the schema that is shipped as share/job.schema.json. Paths in it are relative
/// to the file. Errors read "FILE:LINE:COLUMN: what is wrong". Files beyond 1 MiB are refused.
[[nodiscard]] Result<JobDescription> readJobFile(const std::string& path);

/// A job over text files as they are: names, or patterns with `*`, `?` and `[...]`, each file a table that is read as
/// `reading` says. An empty `name` takes the first table's name. All files make one table when `oneTable` names it.
[[nodiscard]] Result<JobDescription> describeFiles(std::span<const std::string> files, const std::string& name,
                                                   const TableDescription& reading = {},
                                                   const std::string& oneTable = {});

} // namespace tavix::job
