#include "cli/RepositoryChoice.h"

#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

namespace tavix::cli {

namespace {

constexpr const char* kVariable = "TAVIX_REPOSITORY";
constexpr const char* kEnding = ".tavix";

std::vector<std::string> repositoriesHere() {
    std::vector<std::string> names;
    std::error_code failure;
    std::filesystem::directory_iterator entry(".", failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        std::error_code ignored;
        if (entry->path().extension() == kEnding && entry->is_regular_file(ignored))
            names.push_back(entry->path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

std::string chosenRepository(const std::string& named) {
    if (!named.empty())
        return named;
    if (const char* variable = std::getenv(kVariable); variable && *variable != '\0')
        return variable;
    const std::vector<std::string> names = repositoriesHere();
    if (names.empty())
        return {};
    if (names.size() > 1)
        throw CommandError(ExitCode::Usage,
                           fmt::format("which repository? The folder has {}; name one with --repository FILE or in {}",
                                       listNames(names), kVariable));
    say(fmt::format("the repository is {}", names.front()));
    return names.front();
}

std::string requiredRepository(const std::string& named) {
    std::string chosen = chosenRepository(named);
    if (chosen.empty())
        throw CommandError(ExitCode::Usage,
                           fmt::format("which repository? Name it with --repository FILE, or in {}", kVariable));
    return chosen;
}

} // namespace tavix::cli
