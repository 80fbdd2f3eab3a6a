#pragma once

#include "base/Clock.h"
#include "base/Histogram.h"
#include "base/KvbDatavar.h"
#include "base/Metrics.h"
#include "base/TableKind.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The content of a run: the plain values that the runner passes to a RunWriter.
namespace tavix::repository {

class PackedField;
struct FileOffsetIndex;
struct OffsetIndexPage;

/// How a data source is reached, by its number in the repository.
enum class SourceKind {
    Odbc = 0, ///< through a data source name
    File = 4, ///< files read by our own readers
};

using tavix::TableKind;

/// One file of a table, and what reading it found.
struct FileFacts {
    std::string path;     ///< absolute
    char delimiter = ','; ///< 0: the lines were not split
    std::string encoding = "UTF-8";
    bool byteOrderMark = false;
    std::int64_t size = 0; ///< bytes
    UtcTime modified{};

    bool operator==(const FileFacts&) const = default;
};

/// How a text file was read; for a table of several files, how the last one was.
struct TextFileFacts {
    std::string path; ///< absolute
    char delimiter = ',';
    bool hasHeader = true;
    std::string encoding = "UTF-8";
    bool byteOrderMark = false;
    std::int64_t size = 0; ///< bytes, of all files
    UtcTime modified{};
    char quote = '"';               ///< 0: none
    std::vector<FileFacts> files{}; ///< if the table is made of several, in their order

    bool operator==(const TextFileFacts&) const = default;
};

struct TableFacts {
    std::string dataSource;
    SourceKind sourceKind = SourceKind::File;
    std::string catalog;
    std::string schema;
    std::string name;       ///< of the table; for a filter its base table, empty when that is a query
    std::string objectName; ///< of a query or filter; empty for a plain table
    TableKind kind = TableKind::Plain;
    std::string query;
    std::string filter;
    std::string alternateFilter;
    bool isTextFile = false;
    TextFileFacts textFile; ///< if isTextFile
    /// How a database was reached, such as "DSN=shop", without user and password; none for other tables.
    std::optional<std::string> connection;
    /// The database user in the job; empty if the job names none.
    std::string connectionUser;
    /// The ranges of its file to which the offset indexes of its fields refer; null without an index. Borrowed.
    const FileOffsetIndex* offsetIndex = nullptr;
    std::int64_t totalRecords = 0;
    std::int64_t processedRecords = 0;
    std::int64_t damagedRecords = 0; ///< damaged rows; the execution log lists them
};

/// One row of a distribution. The text is borrowed.
struct ValueCount {
    std::string_view value; ///< empty if null
    std::uint64_t count = 0;
    bool isNull = false;
};

struct Percentile {
    std::string interval; ///< "5%"
    KvbString value;
};

enum class OutlierSide : char { Low = 'L', High = 'H' };

/// How far out an outlier lies: beyond 1.5 or 3.0 times the interquartile range.
enum class Fence { Inside = 0, Outer15 = 1, Outer30 = 2 };

struct Outlier {
    OutlierSide side = OutlierSide::Low;
    int position = 0; ///< from 0, the farthest out first
    KvbString value;
    std::uint64_t count = 0;
    Fence fence = Fence::Inside;
};

/// The values that one way of writing reads. A value counts under the narrowest one alone.
struct FormFacts {
    std::string form{}; ///< a word of forms/; "text" for values that nothing else reads
    std::uint64_t values = 0;
    std::uint64_t rows = 0;
    KvbString example{}; ///< its most frequent value, among equals the first by code point
};

/// How many values of a field fit which type. Null, empty and blank values are left out.
struct TypeBreakdown {
    std::uint64_t values = 0; ///< distinct
    std::uint64_t rows = 0;
    std::vector<FormFacts> forms{}; ///< by rows, the most first, then by form
    std::string reading{};          ///< forms::Reading::text() of the type that most of them fit; empty if none does
    std::uint64_t fitValues = 0;    ///< those that fit the reading
    std::uint64_t fitRows = 0;
    std::string
        ambiguity{}; ///< the readings between which the values do not decide, such as "day-first or month-first"
    bool hasFigures = false; ///< whether the metrics of a text field are those of the values that fit
};

/// Something that a profile gives away about a field or a table.
struct FindingFacts {
    std::string code{}; ///< of the catalogue of findings
    int likelihood = 1; ///< 1 possible, 2 likely, 3 definite
    std::uint64_t values = 0;
    std::uint64_t rows = 0;
    std::string detail{};    ///< figures and examples, as users read them
    std::string condition{}; ///< an expression over `Value` that is true for exactly these values; empty without such
};

struct FieldFacts {
    std::string name;
    int ordinal = 0;   ///< from 1, in the order of the table
    char typeCode = 0; ///< S text, I integer, R real, D date/time, B boolean; 0 without values
    std::array<KvbDatavar, kMetricCount> metrics;
    /// The rule for the median and the percentiles, as docs/definitions.md names it; empty without them.
    std::string quantileRule;
    std::vector<Percentile> percentiles;
    std::vector<Outlier> outliers;
    std::optional<Histogram> histogram; ///< of numbers, dates, or the lengths of texts
    std::optional<TypeBreakdown> breakdown;
    std::vector<FindingFacts> findings; ///< at most one for each code
    /// In the order of display: count descending, then null first, then value by code point.
    std::span<const ValueCount> values;
    std::span<const ValueCount> patterns;
    /// If not null, holds the two distributions instead. Borrowed.
    PackedField* packed = nullptr;
    /// Which ranges of the table's file hold its values; empty without an index. Borrowed.
    std::span<const OffsetIndexPage> offsetIndex;
};

/// An input of a custom metric: a field's values, or one of its metrics.
struct MetricInput {
    std::string field;
    std::optional<MetricId> metric;

    bool operator==(const MetricInput&) const = default;
};

struct CustomMetricFacts {
    std::string name;
    std::string outputName;
    bool isOverMetrics = false; ///< computed from other metrics of the table, else from its rows
    std::string figure;         ///< count, sum, average, min, max; metric if computed from metrics
    std::string expression;
    std::vector<MetricInput> inputs;
    KvbDatavar value;
    std::int64_t usedRows = 0;  ///< rows that took part; meaningless if isOverMetrics
    std::int64_t errorRows = 0; ///< rows that could not be evaluated
};

/// A row that violates a rule.
struct RuleRow {
    std::int64_t record = 0; ///< its number in the source, from 1
    std::vector<KvbString> values;
};

struct BusinessRuleFacts {
    std::string name;
    std::string condition;
    std::vector<std::string> inputs; ///< fields of the table
    std::int64_t checkedRows = 0;
    std::int64_t failedRows = 0;         ///< rows for which the condition is not true or could not be evaluated
    std::int64_t errorRows = 0;          ///< rows for which it could not be evaluated
    std::vector<std::string> logColumns; ///< of the row log: the key, then inputs outside the key
    std::size_t keyColumns = 0;
    std::vector<RuleRow> log; ///< the first violations
};

enum class LogLevel { Info = 0, Warning = 1, Error = 2 };

struct FieldAddress {
    std::string table; ///< display name: the object name, else the table name
    std::string field;

    bool operator==(const FieldAddress&) const = default;
};

struct CollectionFacts {
    std::string name;
    std::string description;
    std::vector<FieldAddress> fields;
};

} // namespace tavix::repository
