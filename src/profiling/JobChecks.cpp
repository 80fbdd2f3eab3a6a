#include "profiling/JobChecks.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace tavix::profiling {

namespace {

/// The first name that stands twice.
template <typename Entries>
const std::string* repeatedName(const Entries& entries) {
    std::set<std::string_view> names;
    for (const auto& entry : entries)
        if (!names.insert(entry.name).second)
            return &entry.name;
    return nullptr;
}

Status checkTable(const JobDescription& job, const TableDescription& table, std::span<const std::string> known) {
    if (table.isFiltered()) {
        const auto base = std::find_if(job.tables.begin(), job.tables.end(),
                                       [&](const TableDescription& other) { return other.name == table.basedOn; });
        if (base == job.tables.end())
            return Error{fmt::format("{}Table \"{}\" is based on \"{}\", which the job does not have{}.",
                                     table.where.place, table.name, table.basedOn, suggestion(table.basedOn, known))};
        if (base->isFiltered())
            return Error{fmt::format("{}Table \"{}\" is based on the filtered table \"{}\". Base it on \"{}\" and join "
                                     "the conditions with \"and\".",
                                     table.where.place, table.name, table.basedOn, base->basedOn)};
    }
    if (table.delimiter && *table.delimiter == table.quote)
        return Error{fmt::format("Table \"{}\": the delimiter and the quote are two characters.", table.name)};
    if (const std::string* name = repeatedName(table.metrics))
        return Error{fmt::format("Table \"{}\" has two custom metrics \"{}\".", table.name, *name)};
    if (const std::string* name = repeatedName(table.rules))
        return Error{fmt::format("Table \"{}\" has two rules \"{}\".", table.name, *name)};
    return {};
}

} // namespace

std::string unknownEncoding(std::string_view name) {
    std::vector<std::string> known;
    for (const CEncoding& encoding : encodingCatalogue())
        known.emplace_back(encoding.name);
    return fmt::format("there is no encoding \"{}\"{}", name, suggestion(name, known));
}

Status checkJob(const JobDescription& job) {
    if (job.name.empty())
        return Error{"The job has no name."};
    if (job.tables.empty())
        return Error{fmt::format("The job \"{}\" has no tables.", job.name)};
    std::set<std::string_view> names;
    std::vector<std::string> known;
    for (const TableDescription& table : job.tables) {
        if (!names.insert(table.name).second)
            return Error{fmt::format("Two tables of the job \"{}\" have the name \"{}\".", job.name, table.name)};
        known.push_back(table.name);
    }
    for (const TableDescription& table : job.tables)
        if (Status status = checkTable(job, table, known); !status)
            return status;
    for (const auto& collection : job.collections)
        for (const auto& address : collection.fields)
            if (!names.contains(address.table))
                return Error{fmt::format("Collection \"{}\": the job has no table \"{}\"{}.", collection.name,
                                         address.table, suggestion(address.table, known))};
    return {};
}

Status checkCollectionFields(const JobDescription& job, std::string_view table, std::span<const std::string> columns) {
    for (const auto& collection : job.collections)
        for (const auto& address : collection.fields)
            if (address.table == table && std::find(columns.begin(), columns.end(), address.field) == columns.end())
                return Error{fmt::format("Collection \"{}\": the table \"{}\" has no field \"{}\"{}.", collection.name,
                                         table, address.field, suggestion(address.field, columns))};
    return {};
}

} // namespace tavix::profiling
