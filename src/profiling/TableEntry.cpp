#include "profiling/TableEntry.h"

#include "expression/Parser.h"
#include "profiling/AlertEntry.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tavix::profiling {

namespace {

using nlohmann::json;

constexpr std::array kFigures{Figure::Count,   Figure::Sum,     Figure::Average,
                              Figure::Minimum, Figure::Maximum, Figure::Metric};

template <typename Entry>
bool hasName(const std::vector<Entry>& entries, const std::string& name) {
    return std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) { return entry.name == name; });
}

} // namespace

TableDescription TableEntry::read(const json& entry, const std::string& pointer) const {
    TableDescription table;
    if (entry.contains("based on"))
        readFilter(table, entry, pointer);
    else
        readFile(table, entry, pointer);
    if (const auto key = entry.find("key"); key != entry.end()) {
        for (std::size_t i = 0; i < key->size(); ++i) {
            auto field = (*key)[i].get<std::string>();
            if (std::find(table.key.begin(), table.key.end(), field) != table.key.end())
                fail(pointerTo(pointerTo(pointer, "key"), std::to_string(i)),
                     fmt::format("the field \"{}\" stands twice", field));
            table.key.push_back(std::move(field));
        }
    }
    if (const auto metrics = entry.find("custom metrics"); metrics != entry.end())
        readMetrics(table, *metrics, pointerTo(pointer, "custom metrics"));
    if (const auto rules = entry.find("rules"); rules != entry.end())
        readRules(table, *rules, pointerTo(pointer, "rules"));
    if (const auto alerts = entry.find("alerts"); alerts != entry.end())
        AlertEntries(m_document, table).read(*alerts, pointerTo(pointer, "alerts"));
    return table;
}

void TableEntry::fail(const std::string& pointer, std::string text) const {
    throw DocumentProblem{m_document.valuePositions.at(pointer), std::move(text)};
}

void TableEntry::readFile(TableDescription& table, const json& entry, const std::string& pointer) const {
    if (entry.contains("where"))
        fail(pointerTo(pointer, "where"),
             "\"where\" belongs to a filtered table: add \"based on\" with a table's name");
    const std::filesystem::path file = (m_folder / entry.at("file").get<std::string>()).lexically_normal();
    table.path = file.string();
    table.name = entry.contains("name") ? entry.at("name").get<std::string>() : file.stem().string();
    if (table.name.empty())
        fail(pointerTo(pointer, "file"), "this is not the name of a file");
    if (entry.contains("delimiter"))
        table.delimiter = delimiterOf(entry.at("delimiter").get<std::string>(), pointerTo(pointer, "delimiter"));
    table.hasHeader = entry.value("header", true);
}

void TableEntry::readFilter(TableDescription& table, const json& entry, const std::string& pointer) const {
    for (const char* key : {"file", "delimiter", "header"})
        if (entry.contains(key))
            fail(pointerTo(pointer, key),
                 fmt::format("a filtered table has the rows of another one; leave \"{}\" out", key));
    for (const char* key : {"name", "where"})
        if (!entry.contains(key))
            fail(pointer, fmt::format("the key \"{}\" is missing; a filtered table has it", key));
    table.name = entry.at("name").get<std::string>();
    table.basedOn = entry.at("based on").get<std::string>();
    table.where = expressionAt(entry.at("where"), pointerTo(pointer, "where"));
}

void TableEntry::readMetrics(TableDescription& table, const json& list, const std::string& pointer) const {
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

void TableEntry::readRules(TableDescription& table, const json& list, const std::string& pointer) const {
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

char TableEntry::delimiterOf(const std::string& text, const std::string& pointer) const {
    if (text == "tab")
        return '\t';
    const char c = text.front();
    if (text.size() != 1 || c == '"' || c == '\r' || c == '\n')
        fail(pointer, "a delimiter is one ASCII character other than a quote and a line end");
    return c;
}

ExpressionText TableEntry::expressionAt(const json& value, const std::string& pointer) const {
    const FilePosition position = m_document.valuePositions.at(pointer);
    ExpressionText expression{value.get<std::string>(),
                              fmt::format("{}:{}:{}: ", m_file, position.line, position.column)};
    if (const auto parsed = expression::parse(expression.text); parsed.error)
        fail(pointer, "in the expression, " + expression::describe(*parsed.error));
    return expression;
}

} // namespace tavix::profiling
