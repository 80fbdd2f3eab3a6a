#include "job/TableEntryReader.h"

#include "base/NumberText.h"
#include "expression/Parser.h"
#include "job/AlertEntries.h"
#include "job/DatabaseEntry.h"
#include "job/FilePatterns.h"
#include "job/JobChecks.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace tavix::job {

namespace {

using nlohmann::json;

constexpr std::array kFigures{Figure::Count,   Figure::Sum,     Figure::Average,
                              Figure::Minimum, Figure::Maximum, Figure::Metric};

source::Sample sampleOf(const json& entry) {
    using Kind = source::Sample::Kind;
    source::Sample sample;
    if (entry.contains("first")) {
        sample.kind = Kind::First;
        sample.number = entry.at("first").get<std::int64_t>();
    } else if (entry.contains("every")) {
        sample.kind = Kind::Every;
        sample.number = entry.at("every").get<std::int64_t>();
    } else {
        sample.kind = Kind::Random;
        sample.percent = entry.at("percent").get<double>();
        sample.seed = entry.value("seed", std::uint64_t{1});
    }
    return sample;
}

/// One of the words that the schema allows.
forms::StatedDates datesOfWord(std::string_view word) {
    using forms::StatedDates;
    return word == "day-first"     ? StatedDates::DayFirst
           : word == "month-first" ? StatedDates::MonthFirst
                                   : StatedDates::EpochSeconds;
}

template <typename Entry>
bool hasName(const std::vector<Entry>& entries, const std::string& name) {
    return std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) { return entry.name == name; });
}

} // namespace

std::vector<TableDescription> TableEntryReader::read(const json& entry, const std::string& pointer) const {
    std::vector<TableDescription> tables;
    if (entry.contains("based on"))
        readFilter(tables.emplace_back(), entry, pointer);
    else if (isDatabaseEntry(entry))
        readDatabaseEntry(tables.emplace_back(), m_document, entry, pointer);
    else
        tables = readFiles(entry, pointer);
    for (TableDescription& table : tables) {
        readForms(table, entry, pointer);
        readChecks(table, entry, pointer);
    }
    return tables;
}

void TableEntryReader::readForms(TableDescription& table, const json& entry, const std::string& pointer) const {
    if (const auto share = entry.find("fits at least"); share != entry.end()) {
        const auto text = share->is_string() ? share->get<std::string>() : share->dump();
        table.fitsAtLeast = parseNumber(text.substr(0, text.find_first_of(" %"))).value_or(kFitsAtLeast);
    }
    const auto dates = entry.find("dates");
    if (dates == entry.end())
        return;
    if (dates->is_string()) {
        table.dates = datesOfWord(dates->get<std::string>());
        return;
    }
    for (const auto& [field, word] : dates->items()) {
        const std::string place = pointerTo(pointerTo(pointer, "dates"), field);
        table.fieldDates.push_back({field, datesOfWord(word.get<std::string>()), placeText(m_document, m_file, place)});
    }
}

void TableEntryReader::readChecks(TableDescription& table, const json& entry, const std::string& pointer) const {
    if (const auto key = entry.find("key"); key != entry.end()) {
        for (std::size_t i = 0; i < key->size(); ++i) {
            auto field = (*key)[i].get<std::string>();
            const std::string place = pointerTo(pointerTo(pointer, "key"), std::to_string(i));
            if (std::find(table.key.begin(), table.key.end(), field) != table.key.end())
                fail(place, fmt::format("the field \"{}\" is listed twice", field));
            table.key.push_back(std::move(field));
            table.keyPlaces.push_back(placeText(m_document, m_file, place));
        }
    }
    if (const auto metrics = entry.find("custom metrics"); metrics != entry.end())
        readMetrics(table, *metrics, pointerTo(pointer, "custom metrics"));
    if (const auto rules = entry.find("rules"); rules != entry.end())
        readRules(table, *rules, pointerTo(pointer, "rules"));
    if (const auto alerts = entry.find("alerts"); alerts != entry.end())
        AlertEntries(m_document, m_file, table).read(*alerts, pointerTo(pointer, "alerts"));
}

void TableEntryReader::fail(const std::string& pointer, std::string text) const {
    throw DocumentProblem{m_document.valuePositions.at(pointer), std::move(text)};
}

std::vector<std::string> TableEntryReader::matching(const std::string& path, const std::string& pointer) const {
    auto files = matchingFiles((m_folder / path).lexically_normal().string());
    if (!files)
        fail(pointer, files.error().text);
    return std::move(files).value();
}

std::vector<TableDescription> TableEntryReader::readFiles(const json& entry, const std::string& pointer) const {
    if (entry.contains("where"))
        fail(pointerTo(pointer, "where"),
             "\"where\" belongs to a filtered table: add \"based on\" with a table's name");
    for (const char* key : {"source", "schema", "catalog", "counted by"})
        if (entry.contains(key))
            fail(pointerTo(pointer, key),
                 fmt::format("\"{}\" belongs to a table of a database; this is a text file", key));
    for (const auto& [one, other] :
         {std::pair("file", "files"), std::pair("file", "folder"), std::pair("files", "folder")})
        if (entry.contains(one) && entry.contains(other))
            fail(pointerTo(pointer, other), fmt::format("a table has either \"{}\" or \"{}\"", one, other));
    TableDescription table;
    readReading(table, entry, pointer);
    if (entry.contains("name"))
        table.name = entry.at("name").get<std::string>();
    std::vector<TableDescription> tables;
    if (!entry.contains("file")) {
        readSeveral(table, entry, pointer);
        tables.push_back(std::move(table));
        return tables;
    }
    const auto path = entry.at("file").get<std::string>();
    const std::vector<std::string> files = matching(path, pointerTo(pointer, "file"));
    if (!table.name.empty() && isPattern((m_folder / path).string()))
        fail(pointerTo(pointer, "name"), "a pattern makes a table of each file, so one name does not fit; for one "
                                         "table of all files write files: [PATTERN]");
    for (const std::string& file : files) {
        TableDescription& one = tables.emplace_back(table);
        one.path = file;
        if (one.name.empty())
            one.name = tableNameOf(file);
        if (one.name.empty())
            fail(pointerTo(pointer, "file"), "this is not the name of a file");
    }
    return tables;
}

void TableEntryReader::readSeveral(TableDescription& table, const json& entry, const std::string& pointer) const {
    if (entry.contains("folder")) {
        auto folder = (m_folder / entry.at("folder").get<std::string>()).lexically_normal();
        if (!folder.has_filename())
            folder = folder.parent_path();
        auto files = filesOfFolder(folder.string());
        if (!files)
            fail(pointerTo(pointer, "folder"), files.error().text);
        table.files = std::move(files).value();
        table.path = folder.string();
        if (table.name.empty())
            table.name = folder.filename().string();
        return;
    }
    if (table.name.empty())
        fail(pointer, "the key \"name\" is missing; a table of several files needs it");
    std::vector<std::string> named;
    const json& list = entry.at("files");
    for (std::size_t i = 0; i < list.size(); ++i) {
        const auto path = list[i].get<std::string>();
        named.push_back((m_folder / path).lexically_normal().string());
        const auto files = matching(path, pointerTo(pointerTo(pointer, "files"), std::to_string(i)));
        table.files.insert(table.files.end(), files.begin(), files.end());
    }
    table.path = joinedPaths(named);
}

void TableEntryReader::readReading(TableDescription& table, const json& entry, const std::string& pointer) const {
    if (entry.contains("delimiter"))
        table.delimiter = delimiterOf(entry.at("delimiter").get<std::string>(), pointerTo(pointer, "delimiter"));
    if (const auto header = entry.find("header"); header != entry.end()) {
        table.findHeader = header->is_string();
        table.hasHeader = table.findHeader || header->get<bool>();
    }
    if (const auto encoding = entry.find("encoding"); encoding != entry.end()) {
        const auto name = encoding->is_string() ? encoding->get<std::string>() : encoding->dump();
        table.encoding = findEncoding(name);
        if (!table.encoding)
            fail(pointerTo(pointer, "encoding"), unknownEncoding(name));
    }
    if (const auto quote = entry.find("quote"); quote != entry.end()) {
        const auto text = quote->get<std::string>();
        table.quote = text == "none" ? '\0' : text.front();
        if (text != "none" && (text.size() != 1 || text == "\r" || text == "\n"))
            fail(pointerTo(pointer, "quote"), "a quote is one ASCII character, or the word none");
    }
    if (table.delimiter && *table.delimiter == table.quote)
        fail(pointerTo(pointer, entry.contains("quote") ? "quote" : "delimiter"),
             "the delimiter and the quote must be different");
    if (const auto sample = entry.find("sample"); sample != entry.end())
        table.sample = sampleOf(*sample);
}

void TableEntryReader::readFilter(TableDescription& table, const json& entry, const std::string& pointer) const {
    for (const char* key : {"file", "files", "folder", "delimiter", "header", "encoding", "quote", "sample", "source",
                            "table", "query", "schema", "catalog", "counted by"})
        if (entry.contains(key))
            fail(pointerTo(pointer, key),
                 fmt::format("\"{}\" does not go with a filtered table, which has the rows of another one", key));
    for (const char* key : {"name", "where"})
        if (!entry.contains(key))
            fail(pointer, fmt::format("the key \"{}\" is missing; a filtered table needs it", key));
    table.name = entry.at("name").get<std::string>();
    table.basedOn = entry.at("based on").get<std::string>();
    table.where = expressionAt(entry.at("where"), pointerTo(pointer, "where"));
}

void TableEntryReader::readMetrics(TableDescription& table, const json& list, const std::string& pointer) const {
    for (std::size_t i = 0; i < list.size(); ++i) {
        const json& entry = list[i];
        const std::string place = pointerTo(pointer, std::to_string(i));
        CustomMetricDescription metric;
        metric.name = entry.at("name").get<std::string>();
        if (hasName(table.metrics, metric.name))
            fail(pointerTo(place, "name"), fmt::format("there is already a custom metric \"{}\"", metric.name));
        metric.outputName = entry.value("output", metric.name);
        const auto figure = std::find_if(kFigures.begin(), kFigures.end(),
                                         [&](Figure one) { return entry.contains(std::string(figureWord(one))); });
        metric.figure = *figure;
        const std::string key(figureWord(*figure));
        metric.expression = expressionAt(entry.at(key), pointerTo(place, key));
        table.metrics.push_back(std::move(metric));
    }
}

void TableEntryReader::readRules(TableDescription& table, const json& list, const std::string& pointer) const {
    for (std::size_t i = 0; i < list.size(); ++i) {
        const json& entry = list[i];
        const std::string place = pointerTo(pointer, std::to_string(i));
        RuleDescription rule;
        rule.name = entry.at("name").get<std::string>();
        if (hasName(table.rules, rule.name))
            fail(pointerTo(place, "name"), fmt::format("there is already a rule \"{}\"", rule.name));
        rule.condition = expressionAt(entry.at("condition"), pointerTo(place, "condition"));
        rule.rowLogLimit = entry.value("row log limit", m_rowLogLimit);
        table.rules.push_back(std::move(rule));
    }
}

char TableEntryReader::delimiterOf(const std::string& text, const std::string& pointer) const {
    if (text == "tab")
        return '\t';
    const char c = text.front();
    if (text.size() != 1 || c == '"' || c == '\r' || c == '\n')
        fail(pointer, "a delimiter is one ASCII character, but not a quote or a line end");
    return c;
}

ExpressionText TableEntryReader::expressionAt(const json& value, const std::string& pointer) const {
    ExpressionText expression{value.get<std::string>(), placeText(m_document, m_file, pointer)};
    if (const auto parsed = expression::parse(expression.text); parsed.error)
        fail(pointer, "in the expression, " + expression::describe(*parsed.error));
    return expression;
}

} // namespace tavix::job
