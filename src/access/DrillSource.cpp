#include "access/DrillSource.h"

#include "base/Encodings.h"
#include "base/NumberText.h"
#include "expression/ExpressionError.h"
#include "source/ConnectionText.h"
#include "source/FileSetReader.h"
#include "source/FileStamp.h"
#include "source/OdbcReader.h"
#include "source/ShownName.h"
#include "source/TextFileReader.h"
#include "source/TextFileSearch.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <span>
#include <string_view>
#include <utility>

namespace tavix {

namespace {

using source::FileSetReader;
using source::TextFileOptions;
using source::TextFileReader;
using source::TextFileSearch;

constexpr std::size_t kListedColumns = 10;
/// Bytes of a file that are parsed for little more than its column names; a delimiter needs no more.
constexpr std::size_t kPieceOfSearched = std::size_t{1} << 18;

std::string listOf(std::span<const std::string> names) {
    std::string list;
    for (const std::string& name : names.first(std::min(names.size(), kListedColumns)))
        list += fmt::format("{}\"{}\"", list.empty() ? "" : ", ", source::shownName(name));
    return names.size() > kListedColumns ? list + fmt::format(" and {} more", names.size() - kListedColumns) : list;
}

bool areSame(const DrillTable& table, std::span<const std::string> names) {
    return std::equal(names.begin(), names.end(), table.columns.begin(), table.columns.end(),
                      [](const std::string& name, const DrillTable::Column& column) { return name == column.name; });
}

/// The name of the source in messages: its one file, or the pattern of several.
const std::string& shownPath(const DrillTable::TextFile& file) {
    return file.files.size() == 1 ? file.files.front().currentPath : file.path;
}

/// "Read from ..." for moved files.
std::string moveRemark(const DrillTable::TextFile& file) {
    const auto moved =
        std::find_if(file.files.begin(), file.files.end(), [](const auto& one) { return one.currentPath != one.path; });
    return moved == file.files.end() ? std::string() : fmt::format("Read from \"{}\".", moved->currentPath);
}

void addSentence(std::string& text, const std::string& sentence) {
    if (!sentence.empty())
        text += (text.empty() ? "" : " ") + sentence;
}

/// `reader` has opened the file or files, of `size` bytes.
template <typename Reader>
std::string fileWarning(const DrillTable& table, const Reader& reader, std::int64_t size) {
    const DrillTable::TextFile& file = *table.file;
    const UtcTime modified = reader.modified();
    const std::span<const std::string> names = reader.columnNames();
    std::string text = moveRemark(file);
    if (size != file.size)
        addSentence(text, fmt::format("\"{}\" changed since the run: it had {} bytes and has {} now.", shownPath(file),
                                      formatGrouped(file.size), formatGrouped(size)));
    else if (modified != file.modified)
        addSentence(text, fmt::format("\"{}\" was written anew since the run; its size is the same.", shownPath(file)));
    if (table.isSampled)
        addSentence(text, "The run counted a sample of the rows; these are all.");
    if (!areSame(table, names))
        addSentence(text, fmt::format("The columns are others than in the run: {}.", listOf(names)));
    return text;
}

/// The index of the field among the source's present columns.
Result<std::size_t> findColumn(const DrillTable& table, std::span<const std::string> names) {
    const auto found = std::find(names.begin(), names.end(), table.field);
    if (found == names.end())
        return Error{fmt::format("\"{}\" has no column \"{}\" any more; it has {}.",
                                 table.file ? shownPath(*table.file) : table.name, table.field, listOf(names))};
    return static_cast<std::size_t>(found - names.begin());
}

void describeColumns(const DrillTable& table, DrillSource& source) {
    for (const std::string& name : source.reader->columnNames()) {
        const auto known = std::find_if(table.columns.begin(), table.columns.end(),
                                        [&](const DrillTable::Column& column) { return column.name == name; });
        source.types.push_back(known == table.columns.end() ? kvbType::Text : known->type);
    }
}

Status addCondition(const DrillTable& table, DrillSource& source) {
    if (table.filter.empty())
        return {};
    std::vector<expression::Field> fields;
    for (const std::string& name : source.reader->columnNames())
        fields.push_back({name, expression::Type::Text});
    const expression::Compiled compiled =
        expression::compile(table.filter, fields, expression::Wanted::Condition, table.now, table.columnsInFilter);
    if (!compiled.ok())
        return Error{
            fmt::format("The condition of the table \"{}\": {}", table.name, expression::describe(compiled.error))};
    std::vector<std::size_t> columns(fields.size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    source.tests.push_back(makeConditionTest(*compiled.program, columns));
    return {};
}

std::unique_ptr<RowTest> cellTest(std::size_t column, const WantedRows& wanted) {
    switch (wanted.kind) {
    case WantedRows::Kind::Null:
        return makeNullTest(column);
    case WantedRows::Kind::Pattern:
        return makePatternTest(column, wanted.text);
    case WantedRows::Kind::Condition:
        return makeConditionTest(*wanted.condition, std::vector{column});
    case WantedRows::Kind::Value:
        break;
    }
    return makeValueTest(column, wanted.text);
}

/// Whether a file in this encoding is garbage in nearly every other.
bool isWide(const CEncoding* encoding) {
    return encoding == &encodingUtf16(false) || encoding == &encodingUtf16(true) || encoding == &encodingUtf32(false) ||
           encoding == &encodingUtf32(true);
}

/// The encoding recorded by the run, unless the file was replaced since and is clearly in another, with code units of
/// another size.
const CEncoding* encodingOf(const DrillTable::TextFile::File& file) {
    const CEncoding* const noted = findEncoding(file.encoding);
    const auto stamp = source::stampAt(file.currentPath);
    if (!noted || !stamp || file.size < 0 || (stamp->size == file.size && stamp->modifiedTime() == file.modified))
        return noted;
    const auto input = source::TextInput::open(file.currentPath, nullptr, source::TextInput::kSample, true);
    if (!input)
        return noted;
    const CEncoding* const found = (*input)->encoding().encoding;
    return isWide(found) || isWide(noted) ? found : noted;
}

TextFileOptions optionsOf(const DrillTable::TextFile& file) {
    TextFileOptions options;
    options.delimiter = file.delimiter;
    options.hasHeader = file.hasHeader;
    options.encoding = findEncoding(file.encoding);
    options.quote = file.quote;
    return options;
}

/// Checks an opened file, or files, and records differences. Returns the index of the field among the columns.
template <typename Reader>
Result<std::size_t> examine(const DrillTable& table, const Reader& reader, std::int64_t size, DrillSource& source) {
    source.warning = fileWarning(table, reader, size);
    return findColumn(table, reader.columnNames());
}

/// False for a compressed file, which openFiles() reads.
Result<bool> openSearch(const DrillTable& table, const WantedRows& wanted, DrillSource& source) {
    auto search = TextFileSearch::open(table.file->files.front().currentPath, optionsOf(*table.file));
    if (!search)
        return search.error();
    if (!*search)
        return false;
    const auto column = examine(table, **search, (*search)->fileSize(), source);
    if (!column)
        return column.error();
    (*search)->find(*column, wanted.text);
    const auto& found = table.file->ranges;
    if (found && found->stamp == (*search)->stamp() && (*search)->total() > 0)
        (*search)->restrictTo(found->ranges);
    source.reader = std::move(search).value();
    return true;
}

std::vector<std::string> currentPathsOf(const DrillTable::TextFile& file) {
    std::vector<std::string> paths;
    for (const DrillTable::TextFile::File& one : file.files)
        paths.push_back(one.currentPath);
    return paths;
}

/// For several files, older runs record the encoding of the last one. If detection finds the same in it, each file's
/// encoding was detected, and is detected again.
bool isEncodingFound(const DrillTable::TextFile& file, const TextFileOptions& noted) {
    TextFileOptions options = noted;
    options.encoding = nullptr;
    const auto last = TextFileReader::open(file.files.back().currentPath, options);
    return last && (*last)->encoding().encoding == noted.encoding;
}

Result<std::unique_ptr<FileSetReader>> openEqual(const DrillTable::TextFile& file, const TextFileOptions& options,
                                                 std::vector<source::StatedForm> forms = {}) {
    auto files = FileSetReader::open(currentPathsOf(file), options, std::move(forms));
    if (!files)
        return files;
    if (Status status = (*files)->checkColumns(); !status)
        return status.error();
    return files;
}

Result<std::unique_ptr<FileSetReader>> openInTheirForms(const DrillTable::TextFile& file,
                                                        const TextFileOptions& options) {
    std::vector<source::StatedForm> forms;
    for (const DrillTable::TextFile::File& one : file.files)
        forms.push_back({one.delimiter, encodingOf(one)});
    auto files = openEqual(file, options, forms);
    if (files || file.files.size() == 1)
        return files;
    // A replaced file may have another delimiter.
    TextFileOptions found = options;
    found.delimiter.reset();
    for (source::StatedForm& form : forms)
        form.delimiter.reset();
    auto again = openEqual(file, found, std::move(forms));
    return again ? std::move(again) : std::move(files);
}

/// For files recorded by older runs: the delimiter too is that of the last file, and finds no columns in files that
/// have another.
Result<std::unique_ptr<FileSetReader>> openAsTheLast(const DrillTable::TextFile& file, TextFileOptions options) {
    if (isEncodingFound(file, options))
        options.encoding = nullptr;
    auto files = openEqual(file, options);
    if (files)
        return files;
    options.delimiter.reset();
    auto again = openEqual(file, options);
    return again ? std::move(again) : std::move(files);
}

Status openFiles(const DrillTable& table, const WantedRows& wanted, bool isSearch, DrillSource& source) {
    const DrillTable::TextFile& file = *table.file;
    TextFileOptions options = optionsOf(file);
    if (isSearch)
        options.pieceSize = kPieceOfSearched;
    auto files = file.files.front().delimiter ? openInTheirForms(file, options) : openAsTheLast(file, options);
    if (!files)
        return files.error();
    const auto column = examine(table, **files, (*files)->total(), source);
    if (!column)
        return column.error();
    if (isSearch)
        if (Status status = (*files)->narrowTo(*column, wanted.text); !status)
            return status;
    source.tests.push_back(cellTest(*column, wanted));
    source.reader = std::move(files).value();
    return {};
}

Result<DrillSource> openTextFile(const DrillTable& table, const WantedRows& wanted) {
    const DrillTable::TextFile& file = *table.file;
    DrillSource source;
    source.name = std::filesystem::path(file.path).filename().string();
    for (const std::string& path : currentPathsOf(file)) {
        std::error_code ignored;
        if (std::filesystem::exists(path, ignored) && std::filesystem::is_other(path, ignored))
            return Error{fmt::format("\"{}\" is not a file that can be read again.", path)};
    }
    const bool isSearch = wanted.kind == WantedRows::Kind::Value && TextFileSearch::canFind(wanted.text, file.quote);
    const bool isOneSearched = isSearch && file.files.size() == 1 && encodingOf(file.files.front()) == &encodingUtf8();
    const Result<bool> isFound = isOneSearched ? openSearch(table, wanted, source) : false;
    if (!isFound)
        return isFound.error();
    if (!*isFound)
        if (Status opened = openFiles(table, wanted, isSearch, source); !opened)
            return opened.error();
    return source;
}

/// The engine finds the rows with a value or null; patterns and conditions are tested here.
Result<DrillSource> openDatabase(const DrillTable& table, const WantedRows& wanted, const source::AskCredentials& ask,
                                 const source::KeepGoing& keepGoing) {
    const DrillTable::Database& database = *table.database;
    DrillSource source;
    source.name = database.source;
    auto text = source::ConnectionText::parse(database.connection);
    if (!text)
        return text.error();
    if (!database.user.empty())
        text->setIfAbsent("UID", database.user);
    auto connection = source::OdbcConnection::open(database.source, *text, ask);
    if (!connection)
        return connection.error();
    source.connection = std::move(*connection);
    const auto found = source::DatabaseTable::resolve(*source.connection, database.address);
    if (!found)
        return found.error();
    const auto column = findColumn(table, found->columnNames());
    if (!column)
        return column.error();
    if (!areSame(table, found->columnNames()))
        source.warning = fmt::format("The columns are others than in the run: {}.", listOf(found->columnNames()));
    std::optional<std::string> value;
    if (wanted.kind == WantedRows::Kind::Value)
        value = wanted.text;
    const bool isFoundByEngine = wanted.kind == WantedRows::Kind::Value || wanted.kind == WantedRows::Kind::Null;
    const source::SqlText statement = isFoundByEngine ? found->matches(*column, value) : found->rows();
    auto reader =
        source::OdbcReader::open(*source.connection, statement, found->columns(), found->columnNames(), keepGoing);
    if (!reader)
        return reader.error();
    source.reader = std::move(*reader);
    source.tests.push_back(cellTest(*column, wanted));
    return source;
}

} // namespace

Result<DrillSource> openDrillSource(const DrillTable& table, const WantedRows& wanted,
                                    const source::AskCredentials& ask, const source::KeepGoing& keepGoing) {
    if (!table.file && !table.database)
        return Error{fmt::format("The rows of \"{}\" cannot be read again: the run does not say from where they came.",
                                 table.name)};
    auto source = table.file ? openTextFile(table, wanted) : openDatabase(table, wanted, ask, keepGoing);
    if (!source)
        return source;
    describeColumns(table, *source);
    if (Status status = addCondition(table, *source); !status)
        return status.error();
    return source;
}

} // namespace tavix
