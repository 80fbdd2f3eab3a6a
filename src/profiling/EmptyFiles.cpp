#include "profiling/EmptyFiles.h"

#include "profiling/TableFiles.h"
#include "source/TextInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tavix::profiling {

namespace {

/// Opening every file twice would slow down jobs of many files. A larger file without rows is an error of the run.
constexpr std::uintmax_t kLargestLookedInto = 1024;

/// Whether the file has only line ends and a byte order mark.
bool isEmpty(const std::string& path, const job::TableDescription& table) {
    std::error_code failure;
    if (!std::filesystem::is_regular_file(path, failure))
        return false;
    const std::uintmax_t size = std::filesystem::file_size(path, failure);
    if (failure || size > kLargestLookedInto)
        return false;
    if (size == 0)
        return true;
    const auto input = source::TextInput::open(path, table.encoding, source::TextInput::kSample);
    if (!input)
        return false;
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    std::array<char, 4096> piece{};
    bool isFirst = true;
    for (;;) {
        const auto got = (*input)->read(piece.data(), piece.size());
        if (!got)
            return false;
        std::string_view text(piece.data(), *got);
        if (isFirst && text.starts_with(kByteOrderMark))
            text.remove_prefix(kByteOrderMark.size());
        isFirst = false;
        if (text.find_first_not_of("\r\n") != std::string_view::npos)
            return false;
        if (*got < piece.size())
            return true;
    }
}

void dropCollectionFields(job::JobDescription& job, const std::vector<std::string>& tables) {
    std::vector<repository::CollectionFacts> kept;
    std::vector<std::vector<std::string>> places;
    for (std::size_t c = 0; c < job.collections.size(); ++c) {
        repository::CollectionFacts collection = job.collections[c];
        collection.fields.clear();
        std::vector<std::string> fieldPlaces;
        for (std::size_t f = 0; f < job.collections[c].fields.size(); ++f) {
            const repository::FieldAddress& address = job.collections[c].fields[f];
            if (std::find(tables.begin(), tables.end(), address.table) != tables.end())
                continue;
            collection.fields.push_back(address);
            if (c < job.collectionPlaces.size())
                fieldPlaces.emplace_back(job::placeAt(job.collectionPlaces[c], f));
        }
        if (collection.fields.empty())
            continue;
        kept.push_back(std::move(collection));
        places.push_back(std::move(fieldPlaces));
    }
    job.collections = std::move(kept);
    job.collectionPlaces = std::move(places);
}

} // namespace

std::string emptyFileText(const EmptyFile& file) {
    return file.leavesTable ? fmt::format("table \"{}\" lacks one of its files: {} is empty", file.table, file.path)
                            : fmt::format("table \"{}\" is left out: {} is empty", file.table, file.path);
}

JobWithoutEmptyFiles withoutEmptyFiles(const job::JobDescription& job) {
    JobWithoutEmptyFiles found{job, {}};
    std::vector<std::string> gone;
    for (job::TableDescription& table : found.job.tables) {
        if (table.isFiltered() || table.isDatabase())
            continue;
        std::vector<std::string> kept;
        std::vector<std::string> empty;
        for (std::string& path : pathsOf(table))
            (isEmpty(path, table) ? empty : kept).push_back(std::move(path));
        for (std::string& path : empty)
            found.left.push_back({std::move(path), table.name, !kept.empty()});
        if (kept.empty())
            gone.push_back(table.name);
        else if (!table.files.empty())
            table.files = std::move(kept);
    }
    if (gone.empty())
        return found;
    const auto isGone = [&](const job::TableDescription& table) {
        const std::string& base = table.isFiltered() ? table.basedOn : table.name;
        return std::find(gone.begin(), gone.end(), base) != gone.end();
    };
    for (const job::TableDescription& table : found.job.tables)
        if (table.isFiltered() && isGone(table))
            gone.push_back(table.name);
    std::erase_if(found.job.tables, isGone);
    if (found.job.tables.empty())
        return {job, {}};
    dropCollectionFields(found.job, gone);
    return found;
}

} // namespace tavix::profiling
