#include "job/DatabaseEntry.h"

#include "job/JobChecks.h"
#include "source/ConnectionText.h"
#include "source/Credentials.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tavix::job {

namespace {

using nlohmann::json;

constexpr std::array<const char*, 4> kPasswordKeys = {"password", "pwd", "passwd", "pass"};

[[noreturn]] void fail(const YamlDocument& document, const std::string& pointer, std::string text) {
    throw DocumentProblem{document.valuePositions.at(pointer), std::move(text)};
}

std::string refusal(const std::string& name) {
    return fmt::format("a password does not belong in a job file: put it into the environment variable {} or {}, or "
                       "leave it out and type it when you are asked for it",
                       source::passwordVariable(name), source::passwordVariable({}));
}

std::vector<std::string> namesOf(const json& root) {
    std::vector<std::string> names;
    for (const json& source : root.value("sources", json::array()))
        names.push_back(source.at("name").get<std::string>());
    return names;
}

} // namespace

std::optional<DocumentProblem> findPassword(const YamlDocument& document) {
    const json& root = document.value;
    if (!root.is_object() || !root.contains("sources") || !root["sources"].is_array())
        return std::nullopt;
    for (std::size_t i = 0; i < root["sources"].size(); ++i) {
        const json& entry = root["sources"][i];
        if (!entry.is_object())
            continue;
        const std::string pointer = pointerTo("/sources", std::to_string(i));
        const auto named = entry.find("name");
        const std::string name = named != entry.end() && named->is_string() ? named->get<std::string>() : "";
        for (const char* key : kPasswordKeys)
            if (entry.contains(key))
                return DocumentProblem{document.entryPositions.at(pointerTo(pointer, key)), refusal(name)};
        const auto odbc = entry.find("odbc");
        if (odbc == entry.end() || !odbc->is_string())
            continue;
        if (const auto text = source::ConnectionText::parse(odbc->get<std::string>()); text && text->holdsPassword())
            return DocumentProblem{document.valuePositions.at(pointerTo(pointer, "odbc")), refusal(name)};
    }
    return std::nullopt;
}

std::vector<SourceDescription> readSources(const YamlDocument& document) {
    std::vector<SourceDescription> sources;
    const json list = document.value.value("sources", json::array());
    for (std::size_t i = 0; i < list.size(); ++i) {
        const std::string pointer = pointerTo("/sources", std::to_string(i));
        SourceDescription source{list[i].at("name").get<std::string>(), list[i].at("odbc").get<std::string>()};
        if (std::any_of(sources.begin(), sources.end(), [&](const auto& other) { return other.name == source.name; }))
            fail(document, pointerTo(pointer, "name"), fmt::format("there is already a source \"{}\"", source.name));
        if (const auto text = source::ConnectionText::parse(source.connection); !text)
            fail(document, pointerTo(pointer, "odbc"), text.error().text);
        sources.push_back(std::move(source));
    }
    return sources;
}

bool isDatabaseEntry(const json& entry) {
    return entry.contains("table") || entry.contains("query");
}

void readDatabaseEntry(TableDescription& table, const YamlDocument& document, const json& entry,
                       const std::string& pointer) {
    const std::vector<std::string> names = namesOf(document.value);
    if (names.empty())
        fail(document, pointer,
             "the job has no sources; a table of a database needs one: sources: [{name: ..., odbc: ...}]");
    if (!entry.contains("source") && names.size() > 1)
        fail(document, pointer, "the key \"source\" is missing: the job has more than one");
    table.source = entry.value("source", names.front());
    if (std::find(names.begin(), names.end(), table.source) == names.end())
        fail(document, pointerTo(pointer, "source"),
             fmt::format("the job has no source \"{}\"{}", table.source, suggestion(table.source, names)));
    for (const char* key : {"file", "files", "folder", "delimiter", "header", "encoding", "quote", "sample"})
        if (entry.contains(key))
            fail(document, pointerTo(pointer, key),
                 fmt::format("\"{}\" belongs to a text file; this table is read from a database", key));
    if (entry.contains("where"))
        fail(document, pointerTo(pointer, "where"),
             "\"where\" belongs to a filtered table: add \"based on\" with a table's name");
    if (entry.contains("query")) {
        for (const char* key : {"table", "schema", "catalog"})
            if (entry.contains(key))
                fail(document, pointerTo(pointer, key), fmt::format("\"{}\" does not go with a query", key));
        if (!entry.contains("name"))
            fail(document, pointer, "the key \"name\" is missing; a query needs it");
        table.database.query = entry.at("query").get<std::string>();
        table.name = entry.at("name").get<std::string>();
    } else {
        table.database.table = entry.at("table").get<std::string>();
        table.database.schema = entry.value("schema", "");
        table.database.catalog = entry.value("catalog", "");
        table.name = entry.value("name", table.database.table);
    }
    table.isCountedByRows = entry.value("counted by", "engine") == "rows";
}

} // namespace tavix::job
