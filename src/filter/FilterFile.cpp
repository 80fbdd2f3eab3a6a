#include "filter/FilterFile.h"

#include "base/Characters.h"
#include "base/FileWriter.h"
#include "base/HeldRepositories.h"
#include "filter/FilterMessages.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <istream>

namespace tavix {

namespace {

/// `reason`, when there is one, says more than the text of the message and replaces it.
FilterFileProblem problem(const filter_messages::Message& message, const Status& reason = {}) {
    return {reason ? std::string(message.text) : reason.error().text, message.caption};
}

/// Opening a folder for reading succeeds; only reading it fails.
bool isFolder(const std::string& path) {
    std::error_code code;
    return std::filesystem::is_directory(path, code);
}

/// Replaces each byte that is not part of a character by U+FFFD.
std::string repaired(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    forEachCharacter(text, [&](std::int32_t character, std::string_view bytes) {
        if (character < 0)
            result += "\uFFFD";
        else
            result += bytes;
    });
    return result;
}

} // namespace

std::vector<std::string> filterFileKinds() {
    std::vector<std::string> kinds;
    std::string_view rest = kFilterFilePatterns;
    const auto next = [&rest] {
        const std::string_view part = rest.substr(0, rest.find('|'));
        rest.remove_prefix(std::min(part.size() + 1, rest.size()));
        return part;
    };
    while (!rest.empty()) {
        const std::string_view words = next();
        const std::string_view pattern = next();
        // Here "*" fits every name, also one without a dot.
        if (!words.empty())
            kinds.push_back(std::string(words.substr(0, words.find(" ("))) + " (" +
                            (pattern == "*.*" ? "*" : std::string(pattern)) + ")");
    }
    return kinds;
}

LoadedFilter loadFilter(const std::string& path) {
    if (const Status free = requireNotHeld(path); !free)
        return problem(filter_messages::kCannotOpen, free);
    std::ifstream file;
    if (!isFolder(path))
        file.open(path, std::ios::binary);
    if (!file.is_open())
        return problem(filter_messages::kCannotOpen);
    return readFilter(file);
}

LoadedFilter readFilter(std::istream& file) {
    std::array<char, 2> header{};
    if (!file.read(header.data(), header.size()))
        return problem(filter_messages::kNoFilterFile);
    const auto low = static_cast<unsigned char>(header[0]);
    const auto high = static_cast<unsigned char>(header[1]);
    std::string text(static_cast<std::size_t>(low) | static_cast<std::size_t>(high) << 8u, '\0');
    if (!file.read(text.data(), static_cast<std::streamsize>(text.size())))
        return problem(filter_messages::kCutFilterFile);
    return repaired(text);
}

std::string filterFileBytes(std::string_view text) {
    const std::size_t length = text.size() & 0xFFFFu;
    std::string bytes = {static_cast<char>(length & 0xFFu), static_cast<char>(length >> 8u)};
    return bytes.append(text.substr(0, length));
}

std::optional<FilterFileProblem> saveFilter(const std::string& path, std::string_view text) {
    if (const Status free = requireNotHeld(path); !free)
        return problem(filter_messages::kCannotOpen, free);
    const auto file = FileWriter::open(path, FileWriter::Reader::Require);
    if (!file)
        return problem(filter_messages::kCannotOpen);
    // A writer keeps its first failure, and commit() returns it.
    static_cast<void>((*file)->write(filterFileBytes(text)));
    if (!(*file)->commit())
        return problem(filter_messages::kCannotWrite);
    return std::nullopt;
}

} // namespace tavix
