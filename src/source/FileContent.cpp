#include "source/FileContent.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstddef>

namespace tavix::source {

namespace {

using std::string_view_literals::operator""sv;

constexpr std::string_view kUnpack = "unpack it and profile the files in it";
constexpr std::string_view kSaveSheets = "save its sheets as CSV";
constexpr std::string_view kSaveTables = "save its tables as CSV";
constexpr std::string_view kDatabase = "a job file can read its tables through ODBC";
constexpr std::string_view kUnpackFirst = "unpack it first";

struct Signature {
    std::size_t offset;
    std::string_view bytes;
    ForeignContent content;
};

constexpr Signature kSignatures[] = {
    {0, "\x89PNG\r\n\x1A\n"sv, {"a PNG image", {}}},
    {0, "\xFF\xD8\xFF"sv, {"a JPEG image", {}}},
    {0, "GIF8"sv, {"a GIF image", {}}},
    {0, "II*\0"sv, {"a TIFF image", {}}},
    {0, "MM\0*"sv, {"a TIFF image", {}}},
    {8, "WEBPVP8"sv, {"a WebP image", {}}},
    {0, "7z\xBC\xAF\x27\x1C"sv, {"a 7z archive", kUnpack}},
    {0, "Rar!\x1A\x07"sv, {"a RAR archive", kUnpack}},
    {257, "ustar"sv, {"a tar archive", kUnpack}},
    {0, "\x1F\x8B"sv, {"data compressed by gzip", kUnpackFirst}},
    {0, "BZh"sv, {"data compressed by bzip2", kUnpackFirst}},
    {0, "\xFD\x37\x7A\x58\x5A\0"sv, {"data compressed by xz", kUnpackFirst}},
    {0, "\x28\xB5\x2F\xFD"sv, {"data compressed by zstd", kUnpackFirst}},
    {0, "\x04\x22\x4D\x18"sv, {"data compressed by lz4", kUnpackFirst}},
    {0, "\x1F\x9D"sv, {"data compressed by compress", kUnpackFirst}},
    {0, "LZIP\x01"sv, {"data compressed by lzip", kUnpackFirst}},
    {0, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv, {"an old office document, as .xls is", kSaveSheets}},
    {0, "PAR1"sv, {"a Parquet file", kSaveTables}},
    {0, "PARE"sv, {"an encrypted Parquet file", kSaveTables}},
    {0, "ARROW1"sv, {"an Arrow file", kSaveTables}},
    {0, "FEA1"sv, {"a Feather file", kSaveTables}},
    {0, "ORC"sv, {"an ORC file", kSaveTables}},
    {0, "Obj\x01"sv, {"an Avro file", kSaveTables}},
    {0, "\x89HDF\r\n\x1A\n"sv, {"an HDF5 file", kSaveTables}},
    {0, "\x93NUMPY"sv, {"a NumPy array", kSaveTables}},
    {0, "$FL2"sv, {"an SPSS file", kSaveTables}},
    {0, "<stata_dta>"sv, {"a Stata file", kSaveTables}},
    {4, "Standard Jet DB"sv, {"an Access database", kDatabase}},
    {4, "Standard ACE DB"sv, {"an Access database", kDatabase}},
    {68, "Tavx"sv, {"a repository of profiles", "other commands read it, by --repository"}},
    {0, "SQLite format 3\0"sv, {"a SQLite database", kDatabase}},
    {0, "%PDF-"sv, {"a PDF document", "copy its tables into a text file"}},
    {0,
     "\x7F"
     "ELF"sv,
     {"a program", {}}},
    {0, "MZ"sv, {"a program", {}}},
    {0, "\xCA\xFE\xBA\xBE"sv, {"a program", {}}},
};

constexpr std::string_view kZip = "PK\x03\x04";

/// Neither whitespace nor an escape sequence.
bool isControl(unsigned unit) {
    return (unit < 0x20 && (unit < '\t' || unit > '\r') && unit != 0x1B) || unit == 0x7F;
}

bool hasControl(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) { return isControl(static_cast<unsigned char>(c)); });
}

/// Whether text can begin like that; then more is examined.
bool isWordOfText(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

std::optional<ForeignContent> signedContent(std::string_view start) {
    constexpr std::size_t kNear = 512;
    for (const Signature& signature : kSignatures) {
        if (start.size() < signature.offset || !start.substr(signature.offset).starts_with(signature.bytes))
            continue;
        const bool mayBeText = isWordOfText(signature.bytes) && signature.bytes != "%PDF-";
        if (!mayBeText || hasControl(start.substr(0, kNear)))
            return signature.content;
    }
    return std::nullopt;
}

/// By the names of the files in it.
ForeignContent archiveContent(std::string_view start) {
    constexpr std::size_t kNames = std::size_t{64} << 10;
    const std::string_view names = start.substr(0, kNames);
    const auto has = [&](std::string_view name) { return names.find(name) != std::string_view::npos; };
    if (has("mimetypeapplication/vnd.oasis.opendocument.spreadsheet"))
        return {"an .ods spreadsheet", kSaveSheets};
    if (has("xl/"))
        return {"an .xlsx spreadsheet", kSaveSheets};
    if (has("word/") || has("mimetypeapplication/vnd.oasis.opendocument"))
        return {"an office document", "copy its tables into a text file"};
    return {"a ZIP archive", kUnpack};
}

/// A dBase-like table: a version, the day of the last change, and a list of columns that ends where its length says.
bool isDbase(std::string_view start) {
    constexpr std::string_view kVersions = "\x03\x30\x31\x43\x83\x8B\xF5";
    const auto at = [&](std::size_t place) { return static_cast<unsigned char>(start[place]); };
    // Some versions are digits and letters, but reserved bytes are zero.
    if (start.size() < 33 || kVersions.find(start[0]) == std::string_view::npos ||
        start.substr(0, 32).find('\0') == std::string_view::npos)
        return false;
    const std::size_t header = at(8) + at(9) * std::size_t{256};
    return at(2) >= 1 && at(2) <= 12 && at(3) >= 1 && at(3) <= 31 && header > 32 && header <= start.size() &&
           (start[header - 1] == '\r' || start.substr(32, header - 32).find('\r') != std::string_view::npos);
}

/// Of random bytes, eleven in a hundred are control characters, of all kinds. Text has none, a few kinds as delimiters,
/// or zeros as padding.
bool isBinary(std::string_view start, bool isWide) {
    constexpr std::size_t kFewKinds = 4;
    constexpr std::size_t kLookedAt = std::size_t{64} << 10;
    std::bitset<256> kinds;
    std::size_t controls = 0;
    std::size_t units = 0;
    const std::size_t step = isWide ? 2 : 1;
    // Enough for a verdict, and every run of a text file pays for it.
    start = start.substr(0, kLookedAt);
    for (std::size_t i = 0; i + step <= start.size(); i += step, ++units) {
        const auto first = static_cast<unsigned char>(start[i]);
        const unsigned second = isWide ? static_cast<unsigned char>(start[i + 1]) : 0;
        if (first != 0 && second != 0)
            continue;
        const unsigned unit = first | second;
        if (isControl(unit)) {
            kinds.set(unit);
            ++controls;
        }
    }
    return controls * 2 > units || (kinds.count() > kFewKinds && controls * 50 > units);
}

} // namespace

std::optional<ForeignContent> foreignContent(std::string_view start, EncodingReason reason) {
    if (reason == EncodingReason::Mark)
        return std::nullopt;
    if (start.starts_with(kZip))
        return archiveContent(start);
    if (auto content = signedContent(start))
        return content;
    if (isDbase(start))
        return ForeignContent{"a dBase table", kSaveTables};
    if (isBinary(start, reason == EncodingReason::ZeroBytes))
        return ForeignContent{"binary data", {}};
    return std::nullopt;
}

} // namespace tavix::source
