#include "base/tests/SourceFolder.h"
#include "base/tests/TempFolder.h"
#include "worksheet/Workbook.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

/// Readers that are not ours have to find every cell: check_worksheet.py starts them and compares with a list of the
/// cells that is written beside each workbook.
namespace tavix::worksheet {
namespace {

std::string times(int count, std::string_view text) {
    std::string all;
    all.reserve(static_cast<std::size_t>(count) * text.size());
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

std::string hexadecimal(std::string_view bytes) {
    std::string digits;
    for (char byte : bytes)
        digits += fmt::format("{:02x}", static_cast<unsigned char>(byte));
    return digits;
}

class Sample {
  public:
    explicit Sample(const std::string& cells) : m_cells(cells) {}

    void useSheet(const std::string& name) {
        m_sheet = m_book.sheet(name);
        if (!m_sheet)
            m_sheet = *m_book.addSheet(name);
        m_row = 0;
    }
    void text(int column, std::string_view text) {
        check(m_sheet->putText({m_row, column}, text));
        expectText(m_sheet->name(), m_row, column, text);
    }
    void header(int column, std::string_view text) {
        check(m_sheet->putHeader({m_row, column}, text));
        expect(m_sheet->name(), m_row, column, 'h', hexadecimal(text));
    }
    void number(int column, double value) {
        check(m_sheet->putNumber({m_row, column}, value));
        expectNumber(column, value);
    }
    void integer(int column, std::int64_t value) {
        check(m_sheet->putInteger({m_row, column}, value));
        expectNumber(column, static_cast<double>(value));
    }
    void nextRow() { ++m_row; }

    /// Cells that stand elsewhere, or otherwise, than they were put.
    void expectText(std::string_view sheet, std::int64_t row, int column, std::string_view text) {
        expect(sheet, row, column, 't', hexadecimal(text));
    }
    void expect(std::string_view sheet, std::int64_t row, int column, char kind, std::string_view value) {
        m_cells << sheet << '\t' << row << '\t' << column << '\t' << kind << '\t' << value << '\n';
    }
    /// Puts without expecting.
    Sheet& sheet() { return *m_sheet; }
    [[nodiscard]] std::int64_t row() const { return m_row; }

    void save(const std::string& path) {
        check(m_book.save(path));
        m_cells.flush();
    }
    static void check(const Status& status) { ASSERT_TRUE(status) << status.error().text; }

  private:
    void expectNumber(int column, double value) {
        expect(m_sheet->name(), m_row, column, 'n', fmt::format("{:a}", value));
    }

    std::ofstream m_cells;
    Workbook m_book;
    Sheet* m_sheet = nullptr;
    std::int64_t m_row = 0;
};

void addTexts(Sample& sample) {
    sample.useSheet("Sheet1");
    sample.header(0, "Text");
    sample.header(2, "Gr\u00F6\u00DFe \u6771\u4EAC");
    const std::vector<std::string> texts = {
        "a",
        " blank at both ends ",
        "007",
        "=1+1",
        "'quoted",
        "1e5",
        "TRUE",
        "2026-01-01",
        "\u00E9\u00FF\u00A0",
        "\u0100\u20AC",
        "\u6771\u4EAC\u90FD",
        "\u0627\u0644\u0639\u0631\u0628\u064A\u0629",
        "e\u0301",
        "\U0001F600 \U0001F469\u200D\U0001F4BB \U00020000",
        "line\nbreak",
        "\u6771\nbreak\n",
        "quote \" comma , semicolon ; tab \t end",
        "#REF!",
        "carriage\r\nreturn\r",
        "control \x01\x1F\x7F",
        std::string("NUL \0 inside", 12),
        "noncharacter \uFFFF \uFFFE",
        std::string(255, 'm'),
        std::string(256, 'n'),
        std::string(32767, 'x'),
        times(32767, "\u00E4"),
        times(32767, "\u4E00"),
        times(16383, "\U0001F600") + "y",
    };
    for (const std::string& text : texts) {
        sample.nextRow();
        sample.text(0, text);
        sample.text(2, text); // shared; column B stays empty
        sample.text(255, "IV");
    }
    sample.nextRow();
    sample.nextRow(); // an empty row
    sample.text(1, "last");
    Sample::check(sample.sheet().setColumnWidth(1, 30));
    sample.expect("Sheet1", 0, 1, 'w', "30");
    sample.expect("Sheet1", 0, 0, 'f', "1");
}

void addNumbers(Sample& sample) {
    sample.useSheet("Numbers");
    for (double value : {0.0, -0.0, 1.0, -1.0, 0.1, 1.0 / 3, 0.1 + 0.2, 1e300, -1e-300, 1e15, 123456789.123456789,
                         5e-324, 1.2345678901234e308, std::numeric_limits<double>::min()}) {
        sample.number(0, value);
        sample.nextRow();
    }
    for (std::int64_t value : {std::int64_t{0}, std::int64_t{-7}, std::int64_t{1} << 53, -(std::int64_t{1} << 53)}) {
        sample.integer(0, value);
        sample.nextRow();
    }
    Sample::check(sample.sheet().putInteger({sample.row(), 0}, (std::int64_t{1} << 53) + 1));
    sample.expectText("Numbers", sample.row(), 0, "9007199254740993");
    Sample::check(sample.sheet().putInteger({sample.row(), 1}, std::numeric_limits<std::int64_t>::min()));
    sample.expectText("Numbers", sample.row(), 1, "-9223372036854775808");
    Sample::check(sample.sheet().putNumber({sample.row(), 2}, std::nan("")));
    sample.expectText("Numbers", sample.row(), 2, "nan");
    Sample::check(sample.sheet().putNumber({sample.row(), 3}, -std::numeric_limits<double>::infinity()));
    sample.expectText("Numbers", sample.row(), 3, "-inf");
}

/// Texts to lay across the end of a record of the shared texts.
struct Probe {
    std::string_view text;
    std::size_t units;
    std::size_t unitBytes;
};
constexpr Probe kProbes[] = {
    {"narrow probe", 12, 1},
    {"\u00E4\u00F6\u00FC\u00DF", 4, 1},
    {"\u6771\u4EAC\u90FD wide", 8, 2},
    {"\U0001F600\U0001F601\U0001F602\U0001F603", 8, 2},
};
constexpr std::size_t kRecordBytes = 8224;
constexpr std::size_t kTextHeaderBytes = 3;

/// Pairs of a filler and a probe that fill a record with the byte that starts its continuation, so that the probes move
/// slowly over the end of the record, each kind in turn.
void addStraddlers(Sample& sample) {
    sample.useSheet("Straddle");
    for (std::size_t number = 0; number < 200; ++number) {
        const Probe& probe = kProbes[number % std::size(kProbes)];
        const std::size_t digits = 3;
        const std::size_t bytes = 2 * kTextHeaderBytes + (probe.units + digits) * probe.unitBytes;
        const std::size_t drift = number % std::size(kProbes) == 0 ? 1 : 0;
        std::string filler = std::to_string(number) + ' ';
        filler.resize(kRecordBytes - 1 - bytes + drift - (number == 0 ? 50 : 0), 'f');
        sample.text(0, filler);
        sample.text(1, fmt::format("{}{:03}", probe.text, number));
        sample.nextRow();
    }
}

/// A workbook whose second text, the probe, starts at a byte of the first record.
void saveStraddler(const testing::TempFolder& folder, const Probe& probe, std::size_t start, const std::string& name) {
    constexpr std::size_t kCountsBytes = 8;
    Sample sample(folder.file(name + ".tsv"));
    sample.useSheet("Sheet1");
    sample.text(0, std::string(start - kCountsBytes - kTextHeaderBytes, 'f'));
    sample.text(1, probe.text);
    sample.text(2, "end");
    sample.save(folder.file(name + ".xls"));
}

void addRows(Sample& sample) {
    sample.useSheet("Exact");
    for (std::int64_t row = 0; row < kMaxRows; ++row, sample.nextRow())
        sample.integer(0, row);

    sample.useSheet("More");
    sample.header(0, "Head");
    sample.header(1, "Line");
    for (std::int64_t row = 1; row < kMaxRows - 1; ++row) {
        sample.nextRow();
        sample.integer(1, row);
    }
    // Rows that do not fit follow the header of the next sheet.
    sample.expect("More", kMaxRows - 1, 0, 'h', hexadecimal("Continued on worksheet \"More (2)\""));
    sample.expect("More (2)", 0, 0, 'h', hexadecimal("Head"));
    sample.expect("More (2)", 0, 1, 'h', hexadecimal("Line"));
    sample.expect("More (2)", 0, 0, 'f', "1");
    sample.expect("Exact", 0, 0, 'f', "0");
    Sample::check(sample.sheet().putText({kMaxRows - 1, 0}, "the 65,536th"));
    Sample::check(sample.sheet().putText({kMaxRows, 0}, "the 65,537th"));
    sample.expectText("More (2)", 1, 0, "the 65,536th");
    sample.expectText("More (2)", 2, 0, "the 65,537th");
}

/// 0 when the script agrees; what it prints is shown.
int check(const testing::TempFolder& folder, const std::string& reader) {
    const std::string command =
        fmt::format("/usr/bin/python3 '{}' {} '{}' 2>&1", testing::sourceFile("tests/worksheets/check_worksheet.py"),
                    reader, folder.path().string());
    return std::system(command.c_str()); // NOLINT(cert-env33-c,concurrency-mt-unsafe)
}

TEST(ReadBack, OtherProgramsFindEveryCell) {
    const testing::TempFolder folder;
    Sample sample(folder.file("sample.tsv"));
    addTexts(sample);
    addNumbers(sample);
    addStraddlers(sample);
    addRows(sample);
    sample.save(folder.file("sample.xls"));
    ASSERT_FALSE(HasFatalFailure());
    EXPECT_EQ(check(folder, "xlrd"), 0);
    EXPECT_EQ(check(folder, "libreoffice"), 0);
}

TEST(ReadBack, TextsMayLieAcrossTheEndOfARecordAtAnyByte) {
    const testing::TempFolder folder;
    for (std::size_t probe = 0; probe < std::size(kProbes); ++probe)
        for (std::size_t start = kRecordBytes - 30; start <= kRecordBytes + 2; ++start)
            saveStraddler(folder, kProbes[probe], start, fmt::format("probe{}-{}", probe, start));
    ASSERT_FALSE(HasFatalFailure());
    EXPECT_EQ(check(folder, "xlrd"), 0);
}

} // namespace
} // namespace tavix::worksheet
