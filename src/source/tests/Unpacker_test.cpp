#include "base/tests/TempFolder.h"
#include "source/TextFileReader.h"
#include "source/TextFileSearch.h"
#include "source/tests/Packed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace tavix::source {
namespace {

using ::testing::HasSubstr;

constexpr Packing kPackings[] = {Packing::Gzip, Packing::Bzip2, Packing::Xz, Packing::Zstd};

/// The content of a file with these bytes, read by so many at once, or the error.
std::string unpacked(Packing packing, const std::string& bytes, std::size_t atOnce = 4096) {
    std::size_t used = std::min(kPackingMark, bytes.size());
    Unpacker unpacker(packing, "f", bytes.substr(0, used), [&](char* target, std::size_t size) {
        const std::size_t taken = bytes.copy(target, size, used);
        used += taken;
        return Result<std::size_t>(taken);
    });
    std::string text;
    std::string piece(atOnce, '\0');
    for (;;) {
        const auto got = unpacker.read(piece.data(), piece.size());
        if (!got)
            return "error: " + got.error().text;
        text.append(piece, 0, *got);
        if (*got < piece.size())
            break;
    }
    EXPECT_EQ(unpacker.packedBytes(), static_cast<std::int64_t>(bytes.size()));
    EXPECT_EQ(unpacker.unpackedBytes(), static_cast<std::int64_t>(text.size()));
    return text;
}

std::string someText(std::size_t size) {
    std::mt19937 random(7);
    std::string text;
    while (text.size() < size)
        text += std::to_string(random() % 1000) + ",Zürich\n";
    return text.substr(0, size);
}

TEST(Unpacker, PartsAndPaddingAreReadAsOneText) {
    for (const Packing packing : kPackings) {
        for (const std::size_t size : {0U, 1U, 5000U, 700'000U}) {
            const std::string text = someText(size);
            const std::string part = packed(packing, text);
            EXPECT_EQ(packingOf(part), packing);
            for (const std::size_t atOnce : {7U, 4096U, 1'000'000U})
                EXPECT_EQ(unpacked(packing, part, atOnce), text) << nameOf(packing);
            const std::string two = part + packed(packing, "end");
            EXPECT_EQ(unpacked(packing, two), text + "end");
            EXPECT_EQ(unpacked(packing, two + std::string(512, '\0')), text + "end");
        }
    }
    // A frame of zstd that holds nothing for this reader.
    const std::string skipped("\x50\x2A\x4D\x18\x02\0\0\0xx", 10);
    EXPECT_EQ(packingOf(skipped), Packing::Zstd);
    EXPECT_EQ(unpacked(Packing::Zstd, skipped + packed(Packing::Zstd, "text")), "text");
}

TEST(Unpacker, DataThatIsCutIsAnErrorWithTheBytesThatWereRead) {
    for (const Packing packing : kPackings) {
        const std::string text = someText(3000);
        const std::string whole = packed(packing, text);
        for (std::size_t size = 0; size < whole.size(); ++size)
            EXPECT_THAT(unpacked(packing, whole.substr(0, size)), HasSubstr("\"f\" is cut short: its ")) << size;
        EXPECT_THAT(unpacked(packing, whole + whole.substr(0, whole.size() - 1)), HasSubstr("6,000 unpacked bytes"));
    }
}

TEST(Unpacker, DataThatIsDamagedIsAnErrorAndNeverAnotherText) {
    for (const Packing packing : kPackings) {
        const std::string text = someText(500);
        const std::string whole = packed(packing, text);
        int errors = 0;
        for (std::size_t place = 0; place < whole.size(); ++place)
            for (const char flipped : {'\x01', '\x80', '\xFF'}) {
                std::string damaged = whole;
                damaged[place] = static_cast<char>(damaged[place] ^ flipped);
                const std::string found = unpacked(packing, damaged);
                const bool isError = found.starts_with("error: ");
                EXPECT_TRUE(isError || found == text) << nameOf(packing) << " at " << place;
                errors += isError ? 1 : 0;
            }
        // Of gzip the time and the name of the file are not covered.
        EXPECT_GT(errors, static_cast<int>(whole.size()) * 5 / 2);
        EXPECT_THAT(unpacked(packing, whole + "more than a header has"), HasSubstr("is damaged")) << nameOf(packing);
    }
}

TEST(Unpacker, AWindowOfGigabytesIsRefused) {
    const std::string frame("\x28\xB5\x2F\xFD\x00\xA8\x01\x00\x00", 9);
    EXPECT_THAT(unpacked(Packing::Zstd, frame), HasSubstr("more than 512 MB of memory"));
}

TEST(PackedTextFile, IsReadAsTheTextInIt) {
    const testing::TempFolder folder;
    std::string text = "number,city\n";
    for (int i = 0; i < 200'000; ++i)
        text += std::to_string(i) + ",Bern\n";
    for (const Packing packing : kPackings) {
        const std::string path = folder.file("a.csv");
        const std::string bytes = packed(packing, text);
        std::ofstream(path, std::ios::binary) << bytes;
        const auto reader = TextFileReader::open(path, {});
        ASSERT_TRUE(reader) << reader.error().text;
        EXPECT_THAT((*reader)->columnNames(), ::testing::ElementsAre("number", "city"));
        EXPECT_TRUE((*reader)->isPacked());
        EXPECT_EQ((*reader)->total(), static_cast<std::int64_t>(bytes.size()));
        RowBlock block;
        int rows = 0;
        for (bool more = true; more;) {
            const auto got = (*reader)->read(block);
            ASSERT_TRUE(got) << got.error().text;
            more = *got;
            EXPECT_TRUE(block.offsets.empty());
            for (std::size_t row = 0; more && row < block.rows; ++row, ++rows) {
                const Cell& cell = block.columns[0][row];
                ASSERT_EQ(std::string_view(cell.data, cell.size), std::to_string(rows));
            }
            EXPECT_LE((*reader)->position(), (*reader)->total());
        }
        EXPECT_EQ(rows, 200'000);
        EXPECT_EQ((*reader)->position(), (*reader)->total());
        const auto search = TextFileSearch::open(path, {});
        EXPECT_TRUE(search && !*search);

        // The end is missing, which shows when the rows before it were read.
        std::ofstream(path, std::ios::binary) << bytes.substr(0, bytes.size() - 3);
        const auto cut = TextFileReader::open(path, {});
        ASSERT_TRUE(cut) << cut.error().text;
        Result<bool> more = true;
        while (more && *more)
            more = (*cut)->read(block);
        EXPECT_THAT(more ? "" : more.error().text, HasSubstr("a.csv\" is cut short")) << nameOf(packing);
    }
}

TEST(PackedTextFile, WithoutTextInItIsRefused) {
    const testing::TempFolder folder;
    const auto failure = [&](const std::string& bytes) {
        std::ofstream(folder.file("x.gz"), std::ios::binary) << bytes;
        const auto reader = TextFileReader::open(folder.file("x.gz"), {});
        return reader ? std::string() : reader.error().text;
    };
    std::string archive(600, '\0');
    archive.replace(0, 5, "a.csv");
    archive.replace(257, 5, "ustar");
    EXPECT_THAT(failure(packed(Packing::Gzip, archive)),
                HasSubstr("x.gz\" holds a tar archive, not text: unpack it and profile the files in it."));
    const std::string once = packed(Packing::Gzip, "a,b\n1,2\n");
    EXPECT_EQ(failure(once), "");
    EXPECT_THAT(failure(packed(Packing::Zstd, once)), HasSubstr("holds data compressed by gzip"));
    EXPECT_THAT(failure(packed(Packing::Gzip, "")), HasSubstr("is empty"));
}

} // namespace
} // namespace tavix::source
