#include "job/JobDescription.h"

#include "job/FilePatterns.h"
#include "job/JobChecks.h"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>
#include <utility>

namespace tavix::job {

std::string_view figureWord(Figure figure) {
    switch (figure) {
    case Figure::Count:
        return "count";
    case Figure::Sum:
        return "sum";
    case Figure::Average:
        return "average";
    case Figure::Minimum:
        return "min";
    case Figure::Maximum:
        return "max";
    case Figure::Metric:
        return "metric";
    }
    return {};
}

std::string_view placeAt(std::span<const std::string> places, std::size_t index) {
    return index < places.size() ? std::string_view(places[index]) : std::string_view();
}

Result<JobDescription> describeFiles(std::span<const std::string> files, const std::string& name,
                                     const TableDescription& reading, const std::string& oneTable) {
    if (files.empty())
        return Error{"No file to profile was given."};
    for (const auto& [what, given] : {std::pair("job", &name), std::pair("table", &oneTable)})
        if (!given->empty())
            if (Status status = checkGivenName(what, *given); !status)
                return status.error();
    JobDescription job;
    std::vector<std::string> paths;
    std::vector<std::string> named;
    for (const std::string& file : files) {
        std::error_code failure;
        const auto path = std::filesystem::absolute(file, failure).lexically_normal();
        if (failure)
            return Error{fmt::format("\"{}\" cannot be found: {}", file, failure.message())};
        auto matching = matchingFiles(path.string());
        if (!matching)
            return matching.error();
        named.push_back(path.string());
        paths.insert(paths.end(), matching->begin(), matching->end());
    }
    TableDescription table = reading;
    if (!oneTable.empty()) {
        table.name = oneTable;
        table.path = joinedPaths(named);
        table.files = paths;
        job.tables.push_back(std::move(table));
    } else {
        for (const std::string& path : paths) {
            table.path = path;
            table.name = tableNameOf(path);
            if (table.name.empty())
                return Error{fmt::format("\"{}\" is not a file name.", path)};
            job.tables.push_back(table);
        }
    }
    job.name = name.empty() ? job.tables.front().name : name;
    job.dataSource = std::filesystem::path(paths.front()).parent_path().string();
    if (Status status = checkJob(job); !status)
        return status.error();
    return job;
}

} // namespace tavix::job
