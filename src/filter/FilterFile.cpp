#include "filter/FilterFile.h"

#include "base/Characters.h"
#include "base/HeldRepositories.h"
#include "filter/FilterMessages.h"

#include <array>
#include <filesystem>
#include <istream>

namespace tavix {

namespace {

Error failure(const filter_messages::Message& message) {
    return {std::string(message.text)};
}

/// A folder can be opened like a file and only then fails to be read.
bool isFolder(const std::string& path) {
    std::error_code code;
    return std::filesystem::is_directory(path, code);
}

/// Each byte that belongs to no character becomes U+FFFD.
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

Result<std::ifstream> openFilterToRead(const std::string& path) {
    if (Status free = requireNotHeld(path); !free)
        return free.error();
    std::ifstream file;
    if (!isFolder(path))
        file.open(path, std::ios::binary);
    if (!file.is_open())
        return failure(filter_messages::kCannotOpen);
    return file;
}

Result<std::unique_ptr<FileWriter>> openFilterToWrite(const std::string& path) {
    if (Status free = requireNotHeld(path); !free)
        return free.error();
    auto file = FileWriter::open(path, FileWriter::Reader::Require);
    if (!file)
        return failure(filter_messages::kCannotOpen);
    return file;
}

Result<std::string> readFilter(std::istream& file) {
    std::array<char, 2> header{};
    if (!file.read(header.data(), header.size()))
        return failure(filter_messages::kNoFilterFile);
    const auto low = static_cast<unsigned char>(header[0]);
    const auto high = static_cast<unsigned char>(header[1]);
    std::string text(static_cast<std::size_t>(low) | static_cast<std::size_t>(high) << 8u, '\0');
    if (!file.read(text.data(), static_cast<std::streamsize>(text.size())))
        return failure(filter_messages::kCutFilterFile);
    return repaired(text);
}

std::string filterFileBytes(std::string_view text) {
    const std::size_t length = text.size() & 0xFFFFu;
    std::string bytes = {static_cast<char>(length & 0xFFu), static_cast<char>(length >> 8u)};
    return bytes.append(text.substr(0, length));
}

Status writeFilter(FileWriter& file, std::string_view text) {
    // A failure is final, so the second call returns that of the first.
    static_cast<void>(file.write(filterFileBytes(text)));
    return file.commit() ? Status() : failure(filter_messages::kCannotWrite);
}

} // namespace tavix
