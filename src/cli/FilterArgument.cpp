#include "cli/FilterArgument.h"

#include "base/Ascii.h"
#include "base/HeldRepositories.h"
#include "cli/CommandError.h"
#include "filter/FilterFile.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <string_view>

namespace tavix::cli {

namespace {

/// Longer than any filter. The limit also ends the reading of a device.
constexpr std::size_t kLongestFile = std::size_t{4} << 20;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isFilterFileName(const std::string& path) {
    const std::string ending = asciiLower(std::filesystem::path(path).extension().string());
    return ending.size() > 1 && ending.substr(1) == kFilterFileExtension;
}

[[noreturn]] void fail(const std::string& path, std::string_view reason) {
    throw CommandError(ExitCode::Source, fmt::format("{}: {}", path, reason));
}

std::string readFilterFile(const std::string& path) {
    LoadedFilter loaded = loadFilter(path);
    if (const auto* problem = std::get_if<FilterFileProblem>(&loaded))
        fail(path, problem->text);
    return std::get<std::string>(std::move(loaded));
}

/// Whether the bytes are those of a ".flt" file: they begin with the length of the rest, and not with text.
bool isFilterFile(std::string_view bytes) {
    if (bytes.size() < 2)
        return false;
    const auto low = static_cast<unsigned char>(bytes[0]);
    const auto high = static_cast<unsigned char>(bytes[1]);
    const bool isText = low >= ' ' && high >= ' ' && !bytes.substr(2).starts_with("/*{{BEGIN CONDITIONS");
    return !isText && bytes.size() - 2 == (std::size_t{low} | std::size_t{high} << 8U);
}

std::string readTextFile(const std::string& path) {
    if (const Status free = requireNotHeld(path); !free)
        throw CommandError(ExitCode::Usage, free.error().text);
    std::ifstream file(path, std::ios::binary);
    std::string text(kLongestFile + 1, '\0');
    if (file)
        file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (file.bad() || !file.is_open())
        fail(path, "the filter cannot be read");
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > kLongestFile)
        fail(path, fmt::format("a filter has at most {} bytes", kLongestFile));
    if (isFilterFile(text))
        fail(path, "this is a filter as the dialog saves it; a file with one has to be named *.flt");
    if (text.starts_with(kByteOrderMark))
        text.erase(0, kByteOrderMark.size());
    return text;
}

} // namespace

std::string filterTextOf(const std::string& argument) {
    // A long expression cannot be a path: the system reports an error instead of a missing file.
    std::error_code error;
    const auto status = std::filesystem::status(argument, error);
    const bool isFile = !error && std::filesystem::exists(status) && !std::filesystem::is_directory(status);
    if (isFilterFileName(argument)) {
        if (!isFile)
            throw CommandError(ExitCode::Usage, fmt::format("there is no file \"{}\"", argument));
        return readFilterFile(argument);
    }
    return isFile ? readTextFile(argument) : argument;
}

} // namespace tavix::cli
