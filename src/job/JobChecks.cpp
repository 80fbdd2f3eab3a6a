#include "job/JobChecks.h"

#include "base/Characters.h"
#include "source/Utf8.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace tavix::job {

namespace {

/// The first name that occurs twice.
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
        return Error{fmt::format("Table \"{}\": the delimiter and the quote must be different.", table.name)};
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

Status checkName(std::string_view what, std::string_view name) {
    if (name.empty())
        return Error{fmt::format("The {} has no name.", what)};
    if (name.find_first_not_of(" \t\n\v\f\r") == std::string_view::npos)
        return Error{fmt::format("The name of the {} is blank.", what)};
    if (const std::size_t length = countCharacters(name); length > kLongestName)
        return Error{fmt::format("The name of the {} has {} characters; the limit is {}.", what, length, kLongestName)};
    return {};
}

Status checkGivenName(std::string_view what, std::string_view name) {
    if (source::validUtf8Prefix(name) != name.size())
        return Error{fmt::format("The name of the {} is not UTF-8 text.", what)};
    return checkName(what, name);
}

Status checkDescription(std::string_view what, std::string_view text) {
    if (source::validUtf8Prefix(text) != text.size())
        return Error{fmt::format("The description of the {} is not UTF-8 text.", what)};
    if (const std::size_t length = countCharacters(text); length > kLongestDescription)
        return Error{fmt::format("The description of the {} has {} characters; the limit is {}.", what, length,
                                 kLongestDescription)};
    return {};
}

Status checkJob(const JobDescription& job) {
    if (Status status = checkName("job", job.name); !status)
        return status;
    if (Status status = checkDescription("job", job.description); !status)
        return status;
    if (job.tables.empty())
        return Error{fmt::format("The job \"{}\" has no tables.", job.name)};
    std::set<std::string_view> names;
    std::vector<std::string> known;
    for (const TableDescription& table : job.tables) {
        if (Status status = checkName("table", table.name); !status)
            return status;
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
    for (std::size_t c = 0; c < job.collections.size(); ++c) {
        const repository::CollectionFacts& collection = job.collections[c];
        for (std::size_t f = 0; f < collection.fields.size(); ++f) {
            const repository::FieldAddress& address = collection.fields[f];
            if (address.table != table || std::find(columns.begin(), columns.end(), address.field) != columns.end())
                continue;
            const std::string_view place =
                c < job.collectionPlaces.size() ? placeAt(job.collectionPlaces[c], f) : std::string_view();
            return Error{fmt::format("{}Collection \"{}\": the table \"{}\" has no field \"{}\"{}.", place,
                                     collection.name, table, address.field, suggestion(address.field, columns))};
        }
    }
    return {};
}

} // namespace tavix::job
