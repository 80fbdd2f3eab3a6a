#include "profiling/JobDescription.h"

#include "profiling/JobChecks.h"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>

namespace tavix::profiling {

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

Result<JobDescription> describeFiles(std::span<const std::string> files, const std::string& name,
                                     std::optional<char> delimiter, bool hasHeader) {
    if (files.empty())
        return Error{"No file to profile was named."};
    JobDescription job;
    for (const std::string& file : files) {
        std::error_code failure;
        const auto path = std::filesystem::absolute(file, failure).lexically_normal();
        if (failure)
            return Error{fmt::format("\"{}\" cannot be found: {}", file, failure.message())};
        TableDescription table;
        table.path = path.string();
        table.name = path.stem().string();
        table.delimiter = delimiter;
        table.hasHeader = hasHeader;
        if (table.name.empty())
            return Error{fmt::format("\"{}\" is no name of a file.", file)};
        job.tables.push_back(std::move(table));
    }
    job.name = name.empty() ? job.tables.front().name : name;
    job.dataSource = std::filesystem::path(job.tables.front().path).parent_path().string();
    if (Status status = checkJob(job); !status)
        return status.error();
    return job;
}

} // namespace tavix::profiling
