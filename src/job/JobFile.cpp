#include "job/DatabaseEntry.h"
#include "job/JobChecks.h"
#include "job/JobDescription.h"
#include "job/JobSchema.h"
#include "job/TableEntryReader.h"
#include "job/YamlDocument.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>
#include <system_error>

namespace tavix::job {

namespace {

using nlohmann::json;

constexpr std::size_t kLargestFile = std::size_t{1} << 20;

Result<std::string> readWhole(const std::string& path) {
    const auto failure = [&](int code) {
        return Error{fmt::format("\"{}\" cannot be read: {}", path, std::generic_category().message(code))};
    };
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
    if (!file)
        return failure(errno);
    std::string text(kLargestFile + 1, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    if (std::ferror(file.get()) != 0)
        return failure(errno);
    if (text.size() > kLargestFile)
        return Error{fmt::format("\"{}\" is too large for a job file: more than 1 MiB", path)};
    return text;
}

/// Turns a document that follows the schema into the description of a job.
class JobBuilder {
  public:
    JobBuilder(const YamlDocument& document, const std::string& file, const std::filesystem::path& folder)
        : m_document(document),
          m_file(file),
          m_folder(folder),
          m_tables(document, file, folder, document.value.value("row log limit", kRowLogLimit)) {}

    /// Throws a DocumentProblem.
    JobDescription build() {
        const json& root = m_document.value;
        m_job.name = root.at("job").get<std::string>();
        m_job.description = root.value("description", "");
        m_job.repository = repositoryText(root.value("repository", ""));
        m_job.sources = readSources(m_document);
        if (const auto command = root.find("on-alert"); command != root.end())
            readAlertCommand(*command);
        const json& tables = root.at("tables");
        for (std::size_t i = 0; i < tables.size(); ++i)
            addTable(tables[i], pointerTo("/tables", std::to_string(i)));
        for (std::size_t i = 0; i < m_job.tables.size(); ++i)
            if (m_job.tables[i].isFiltered())
                checkBase(m_job.tables[i], pointerTo(m_pointers[i], "based on"));
        m_job.dataSource = root.contains("source") ? root.at("source").get<std::string>()
                                                   : std::filesystem::path(firstFile()).parent_path().string();
        if (const auto collections = root.find("collections"); collections != root.end())
            for (std::size_t i = 0; i < collections->size(); ++i)
                addCollection((*collections)[i], pointerTo("/collections", std::to_string(i)));
        return std::move(m_job);
    }

  private:
    /// Empty when all tables are database tables.
    [[nodiscard]] std::string firstFile() const {
        const auto table = std::find_if(m_job.tables.begin(), m_job.tables.end(), [](const TableDescription& one) {
            return !one.isFiltered() && !one.isDatabase();
        });
        if (table == m_job.tables.end())
            return {};
        return table->files.empty() ? table->path : table->files.front();
    }

    [[noreturn]] void fail(const std::string& pointer, std::string text) const {
        throw DocumentProblem{m_document.valuePositions.at(pointer), std::move(text)};
    }

    [[nodiscard]] std::string absolute(const std::string& path) const {
        return (m_folder / path).lexically_normal().string();
    }

    [[nodiscard]] std::string repositoryText(const std::string& text) const {
        constexpr std::string_view kSqlite = "sqlite:";
        if (text.empty() || text.starts_with("postgresql:") || text.starts_with("postgres:"))
            return text;
        return text.starts_with(kSqlite) ? std::string(kSqlite) + absolute(text.substr(kSqlite.size()))
                                         : absolute(text);
    }

    void readAlertCommand(const json& command) {
        m_job.onAlert = command.get<std::vector<std::string>>();
        std::string& program = m_job.onAlert.front();
        if (program.find('/') != std::string::npos)
            program = absolute(program);
    }

    void addTable(const json& entry, const std::string& pointer) {
        for (TableDescription& table : m_tables.read(entry, pointer)) {
            if (std::find(m_names.begin(), m_names.end(), table.name) != m_names.end())
                fail(entry.contains("name")    ? pointerTo(pointer, "name")
                     : entry.contains("table") ? pointerTo(pointer, "table")
                     : entry.contains("file")  ? pointerTo(pointer, "file")
                                               : pointer,
                     fmt::format("there is already a table \"{}\"; give this one another name", table.name));
            m_names.push_back(table.name);
            m_pointers.push_back(pointer);
            m_job.tables.push_back(std::move(table));
        }
    }

    void checkBase(const TableDescription& table, const std::string& pointer) const {
        const auto base = std::find(m_names.begin(), m_names.end(), table.basedOn);
        if (base == m_names.end())
            failUnknownTable(table.basedOn, pointer);
        const TableDescription& found = m_job.tables[static_cast<std::size_t>(base - m_names.begin())];
        if (found.isFiltered())
            fail(pointer, fmt::format("\"{}\" is a filtered table itself; base this one on \"{}\" and join the "
                                      "conditions with \"and\"",
                                      table.basedOn, found.basedOn));
    }

    void addCollection(const json& entry, const std::string& pointer) {
        repository::CollectionFacts collection;
        collection.name = entry.at("name").get<std::string>();
        collection.description = entry.value("description", "");
        if (!m_collections.insert(collection.name).second)
            fail(pointerTo(pointer, "name"), fmt::format("there is already a collection \"{}\"", collection.name));
        const std::string fieldsPointer = pointerTo(pointer, "fields");
        const json& fields = entry.at("fields");
        std::vector<std::string>& places = m_job.collectionPlaces.emplace_back();
        for (std::size_t i = 0; i < fields.size(); ++i) {
            const std::string place = pointerTo(fieldsPointer, std::to_string(i));
            const auto address = addressOf(fields[i], place);
            if (std::find(collection.fields.begin(), collection.fields.end(), address) != collection.fields.end())
                fail(place, fmt::format("the field \"{}.{}\" is listed twice", address.table, address.field));
            collection.fields.push_back(address);
            places.push_back(placeText(m_document, m_file, place));
        }
        m_job.collections.push_back(std::move(collection));
    }

    [[nodiscard]] repository::FieldAddress addressOf(const json& entry, const std::string& pointer) const {
        if (entry.is_object()) {
            const auto table = entry.at("table").get<std::string>();
            if (std::find(m_names.begin(), m_names.end(), table) == m_names.end())
                failUnknownTable(table, pointerTo(pointer, "table"));
            return {table, entry.at("field").get<std::string>()};
        }
        const auto text = entry.get<std::string>();
        // Table names may contain dots: take the longest that matches.
        const std::string* best = nullptr;
        for (const std::string& name : m_names)
            if (text.size() > name.size() + 1 && text.starts_with(name) && text[name.size()] == '.' &&
                (!best || name.size() > best->size()))
                best = &name;
        if (best)
            return {*best, text.substr(best->size() + 1)};
        const auto dot = text.find('.');
        if (dot == std::string::npos || dot == 0 || dot + 1 == text.size())
            fail(pointer, fmt::format("\"{}\" does not name a field: expected table.field", text));
        failUnknownTable(text.substr(0, dot), pointer);
    }

    [[noreturn]] void failUnknownTable(const std::string& table, const std::string& pointer) const {
        fail(pointer, fmt::format("the job has no table \"{}\"{}", table, suggestion(table, m_names)));
    }

    const YamlDocument& m_document;
    std::string m_file; ///< for messages
    std::filesystem::path m_folder;
    TableEntryReader m_tables;
    JobDescription m_job;
    std::vector<std::string> m_names;
    std::vector<std::string> m_pointers; ///< of each table
    std::set<std::string> m_collections;
};

Error located(const std::string& path, const DocumentProblem& problem) {
    return Error{fmt::format("{}:{}:{}: {}", path, problem.position.line, problem.position.column, problem.text)};
}

} // namespace

Result<JobDescription> readJobFile(const std::string& path) {
    const auto text = readWhole(path);
    if (!text)
        return text.error();
    const auto parsed = parseYaml(*text);
    if (const auto* problem = std::get_if<DocumentProblem>(&parsed))
        return located(path, *problem);
    const auto& document = std::get<YamlDocument>(parsed);
    if (document.value.is_null())
        return Error{fmt::format("{}:1:1: the file does not describe a job", path)};
    if (const auto problem = findPassword(document))
        return located(path, *problem);
    if (const auto problem = findSchemaProblem(document))
        return located(path, *problem);
    std::error_code failure;
    const auto folder = std::filesystem::absolute(path, failure).parent_path();
    if (failure)
        return Error{fmt::format("\"{}\" cannot be found: {}", path, failure.message())};
    try {
        return JobBuilder(document, path, folder).build();
    } catch (const DocumentProblem& problem) {
        return located(path, problem);
    }
}

} // namespace tavix::job
