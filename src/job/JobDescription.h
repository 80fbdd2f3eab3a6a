#pragma once

#include "base/Encodings.h"
#include "base/Result.h"
#include "forms/ColumnReading.h"
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

/// The violating rows of a rule that a run keeps unless the job states another number.
inline constexpr std::size_t kRowLogLimit = 1000;

/// The percentage of a field's values that must fit a type for the field to have figures over these values, unless the
/// job states another.
inline constexpr double kFitsAtLeast = 95;

/// The statement of a job about the dates of a field.
struct FieldDates {
    std::string field;
    forms::StatedDates dates = forms::StatedDates::Nothing;
    std::string place{}; ///< in the job file, as in ExpressionText

    bool operator==(const FieldDates&) const = default;
};

/// An expression of a job; see docs/expressions.md.
struct ExpressionText {
    std::string text;
    std::string place; ///< "FILE:LINE:COLUMN: ", its position; empty without a file

    bool operator==(const ExpressionText&) const = default;
};

/// How a custom metric uses its expression: count the rows for which it is true, aggregate its values over the rows, or
/// evaluate it once over the table's metrics.
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

/// A condition that every row of a table must meet.
struct RuleDescription {
    std::string name; ///< unique in the table
    ExpressionText condition;
    std::size_t rowLogLimit = kRowLogLimit;

    bool operator==(const RuleDescription&) const = default;
};

/// A database that a job reads tables from.
struct SourceDescription {
    std::string name;       ///< unique in the job
    std::string connection; ///< the name of an ODBC data source, or a connection string without a password

    bool operator==(const SourceDescription&) const = default;
};

/// A table of a job: a text file, several files with the same columns, a table or query of a database, or the rows of
/// another table of the job that meet a condition.
struct TableDescription {
    std::string name;              ///< unique in the job; by default a file's name without its extension
    std::string path;              ///< absolute; of several files as they were named; empty for a filtered table
    std::optional<char> delimiter; ///< detected when not stated
    bool hasHeader = true;
    std::string basedOn{}; ///< of a filtered table: the table of this job whose rows it filters
    ExpressionText where{};
    std::vector<std::string> key{}; ///< the fields that identify a row for people
    std::vector<CustomMetricDescription> metrics{};
    std::vector<RuleDescription> rules{};
    std::vector<std::string> files{};    ///< absolute, for a table of several files
    bool findHeader = false;             ///< detect whether the first row is a header
    const CEncoding* encoding = nullptr; ///< detected when null
    char quote = '"';                    ///< 0: none
    source::Sample sample{};             ///< a filtered table has the sample of its base table
    std::string source{};                ///< of a database table: the name of the job's source
    source::TableRequest database{};
    bool isCountedByRows = false; ///< read the rows even if the engine can count
    std::vector<repository::AlertFacts> alerts{};
    double fitsAtLeast = kFitsAtLeast;                      ///< percent
    forms::StatedDates dates = forms::StatedDates::Nothing; ///< of all fields
    std::vector<FieldDates> fieldDates{};                   ///< of single fields, instead
    /// The positions of the key's fields and of the alerts in the job file, as in ExpressionText; empty without a file.
    std::vector<std::string> keyPlaces{};
    std::vector<std::string> alertPlaces{};

    [[nodiscard]] bool isFiltered() const { return !basedOn.empty(); }
    [[nodiscard]] bool isDatabase() const { return !source.empty(); }
    /// The job's statement about the dates of a field.
    [[nodiscard]] forms::StatedDates datesOf(std::string_view field) const {
        for (const FieldDates& one : fieldDates)
            if (one.field == field)
                return one.dates;
        return dates;
    }

    bool operator==(const TableDescription&) const = default;
};

/// What a job profiles: read from a job file, or made from the names of text files.
struct JobDescription {
    std::string name;
    std::string description;
    std::string repository; ///< where the results go; "" when the command states it
    std::string dataSource; ///< name of the text files' data source; by default the folder of the first file
    std::vector<TableDescription> tables;
    std::vector<repository::CollectionFacts> collections;
    std::vector<SourceDescription> sources{};
    /// The program to start after a run that raises an alert, and its arguments; empty for none. A program with a slash
    /// is an absolute path, any other is searched in PATH.
    std::vector<std::string> onAlert{};
    std::vector<std::vector<std::string>> collectionPlaces{}; ///< of each collection's fields, as keyPlaces of a table
};

/// The position at `index`; empty beyond the last, as in a job without a file.
[[nodiscard]] std::string_view placeAt(std::span<const std::string> places, std::size_t index);

/// Reads a YAML job file and checks it against share/job.schema.json. Paths in it are relative to the file. Errors read
/// "FILE:LINE:COLUMN: message". Files above 1 MiB are refused.
[[nodiscard]] Result<JobDescription> readJobFile(const std::string& path);

/// Makes a job over text files: names, or patterns with `*`, `?` and `[...]`. Each file becomes a table that is read as
/// `reading` says, or all become the table `oneTable` if that is not empty. An empty `name` means the first table's
/// name.
[[nodiscard]] Result<JobDescription> describeFiles(std::span<const std::string> files, const std::string& name,
                                                   const TableDescription& reading = {},
                                                   const std::string& oneTable = {});

} // namespace tavix::job
