#include "source/FileContent.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace tavix::source {
namespace {

/// The name of what is in a file with these bytes, "" for text.
std::string contentOf(std::string_view bytes) {
    const auto content = foreignContent(bytes, detectEncoding(bytes, true).reason);
    return content ? std::string(content->name) : "";
}

std::string bytes(std::string_view start, std::size_t zeros = 100) {
    return std::string(start) + std::string(zeros, '\0');
}

using std::string_view_literals::operator""sv;

TEST(FileContent, KnowsWhatIsNotText) {
    EXPECT_EQ(contentOf(bytes("\x89PNG\r\n\x1A\n")), "a PNG image");
    EXPECT_EQ(contentOf(bytes("\x1F\x8B")), "data compressed by gzip");
    EXPECT_EQ(contentOf(bytes("PAR1\x15\x04")), "a Parquet file");
    EXPECT_EQ(contentOf("%PDF-1.7\n1 0 obj\n"), "a PDF document");
    EXPECT_EQ(contentOf(bytes("SQLite format 3\0"sv)), "a SQLite database");
    EXPECT_EQ(contentOf(bytes("\x7F"
                              "ELF\x02\x01")),
              "a program");
    EXPECT_EQ(contentOf(bytes("PK\x03\x04\x14\0mimetypeapplication/vnd.oasis.opendocument.spreadsheet"sv)),
              "an .ods spreadsheet");
    EXPECT_EQ(contentOf(bytes("PK\x03\x04\x14\0[Content_Types].xml...xl/workbook.xml"sv)), "an .xlsx spreadsheet");
    EXPECT_EQ(contentOf(bytes("PK\x03\x04\x14\0word/document.xml"sv)), "an office document");
    EXPECT_EQ(contentOf(bytes("PK\x03\x04\x14\0a.csv"sv)), "a ZIP archive");
    EXPECT_EQ(contentOf(bytes("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1")), "an old office document, as .xls is");
    std::string repository = bytes("SQLite format 3\0"sv);
    repository.replace(68, 4, "Tavx");
    EXPECT_EQ(contentOf(repository), "a repository of profiles");
    std::string dbase = bytes("\x03\x7C\x05\x11\x01\0\0\0\x41\0\x0B\0"sv, 52) + "\r";
    EXPECT_EQ(contentOf(dbase + " Bern      Zurich    "), "a dBase table");
    EXPECT_EQ(contentOf(std::string(1000, '\0')), "binary data");
}

TEST(FileContent, BytesWithoutOrderAreNotText) {
    std::mt19937 random(1);
    for (const std::size_t size : {256U, 1000U, 100'000U})
        for (int i = 0; i < 50; ++i) {
            std::string noise(size, '\0');
            for (char& c : noise)
                c = static_cast<char>(random());
            // Signatures are tested above.
            noise.replace(0, 2, "..");
            EXPECT_EQ(contentOf(noise), "binary data") << size;
        }
    // Whole numbers of 32 bits, whose zeros make them look like UTF-16.
    std::string numbers;
    for (int i = 0; i < 5000; ++i) {
        numbers += static_cast<char>(i % 32);
        numbers += std::string("\0\x03\0", 3);
    }
    EXPECT_EQ(contentOf(numbers), "binary data");
}

TEST(FileContent, TextStaysTextWhateverItBeginsWith) {
    std::string controls;
    for (int i = 0; i < 50; ++i)
        controls += "Bern\x01Zürich\x02x\x03y\n";
    std::string padded = "id,name\n";
    for (int i = 0; i < 50; ++i)
        padded += "1," + std::string("Bern\0\0\0\0\n", 9);
    std::string emptyLines = "0";
    for (int i = 0; i < 3000; ++i)
        emptyLines += "\r\n";
    const std::string wide("a\0,\0b\0\n\0001\0,\0002\0\n\0", 16);
    for (const std::string& text :
         {std::string("a,b\n1,2\n"), std::string("PAR1,PAR2\n1,2\n"), std::string("ORC,x\n"), std::string("MZ;x\n"),
          std::string("GIF8 or not\n"), std::string("BZh1 is a code\n"), std::string("PK,id\n1,2\n"),
          std::string("LZIP;x\n"), std::string("Obj,x\n"), std::string("\xFC,\xE4\r\n\x1A"),
          std::string("\x1B$B%F%9%H\x1B(B,x\n"), std::string("\xEF\xBB\xBF\x01\x02\x03\x04\x05\x06"), controls, padded,
          emptyLines, wide, std::string("\n"), std::string()})
        EXPECT_EQ(contentOf(text), "") << text;
}

} // namespace
} // namespace tavix::source
