#pragma once

#include "base/Clock.h"
#include "source/FileRange.h"
#include "source/FileStamp.h"
#include "source/RowReader.h"
#include "source/RowScanner.h"
#include "source/TextArena.h"
#include "source/TextFileReader.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::source {

/// Reads the rows of a delimited text file in UTF-8 that have a given text in one column: the same rows that
/// TextFileReader gives, but parses only those near an occurrence of the text's bytes. Damaged rows read as there, but
/// are not listed.
class TextFileSearch final : public RowReader {
  public:
    /// Whether bytes alone find the text. Other texts need a reader of every row: the empty text, quotes (which may be
    /// doubled in the file), U+FFFD (which replaces other bytes).
    [[nodiscard]] static bool canFind(std::string_view value, char quote);

    /// `options` are those with which the file was read. Fails as TextFileReader does, and for a file that is not
    /// regular. Null for a compressed file, whose bytes are not those of its text.
    [[nodiscard]] static Result<std::unique_ptr<TextFileSearch>> open(const std::string& path,
                                                                      const TextFileOptions& options);
    /// Takes over the regular file in UTF-8 that `reader` has opened and not yet read from; fails if the file was
    /// replaced since. Null for a compressed file.
    [[nodiscard]] static Result<std::unique_ptr<TextFileSearch>> open(const TextFileReader& reader);
    ~TextFileSearch() override;
    TextFileSearch(const TextFileSearch&) = delete;
    TextFileSearch& operator=(const TextFileSearch&) = delete;

    /// Sets what to find; to be called once, before the first read(). `column` counts from 0 and must exist; canFind()
    /// must accept `value`.
    void find(std::size_t column, std::string value);
    /// Restricts the search to these ranges: ascending, without overlap, after the heading. To be called between find()
    /// and the first read().
    void restrictTo(std::vector<FileRange> ranges);

    [[nodiscard]] std::span<const std::string> columnNames() const override { return m_names; }
    /// Returns with the next rows, or after a few MiB without any, so that the caller can report progress; false is the
    /// end of the table.
    [[nodiscard]] Result<bool> read(RowBlock& block) override;
    [[nodiscard]] std::int64_t position() const override { return m_searched; }
    [[nodiscard]] std::int64_t total() const override { return m_total; }
    [[nodiscard]] std::span<const DamagedRow> damagedRows() const override { return {}; }
    [[nodiscard]] std::int64_t damagedRowCount() const override { return 0; }

    [[nodiscard]] std::int64_t fileSize() const { return m_size; }
    [[nodiscard]] UtcTime modified() const { return m_modified; }
    [[nodiscard]] const FileStamp& stamp() const { return m_stamp; }
    /// Where the first row after the heading starts.
    [[nodiscard]] std::int64_t firstRow() const { return m_firstRow; }

  private:
    TextFileSearch(const TextFileReader& reader, int file);
    Status begin(const FileStamp& expected);
    void startRange();
    [[nodiscard]] bool isRangeDone() const { return m_isLast && m_resume == m_end && !m_mustTake; }
    /// Keeps the text after the last known row start and reads on.
    Status refill();
    /// Continues until the block is full or the range is done; false if more text is needed.
    bool search(RowBlock& block, TextArena& arena);
    /// Tests the windows at m_resume before `limit` and before the next quote, up to one in which the value may be a
    /// cell. Not within a quoted cell.
    void judgePlain(const char* limit);
    /// Tests the bytes at m_resume, at most one window and not beyond `limit`.
    void judgeWindow(const char* limit);
    /// The characters in a window of text: bit i for byte i.
    struct Marks {
        const char* text = nullptr;
        std::uint64_t quotes = 0;
        std::uint64_t lineEnds = 0;   ///< of a pair the second
        std::uint64_t candidates = 0; ///< the value may start
    };
    /// Tests a window at once if every quote opens or closes a cell or is doubled; else returns false, with nothing
    /// tested.
    bool judgeRegular(const Marks& marks, std::uint64_t separators);
    void judgeOneByOne(Marks marks);
    /// Takes the last of these line ends, if any, as the end of the row before the one at m_rowStart.
    void goToRow(const char* text, std::uint64_t lineEnds);
    [[nodiscard]] bool looksLikeCell(const char* at, bool isQuoted) const;
    /// Parses the row at m_rowStart; false if its end is not in the text yet.
    bool takeRow(RowBlock& block, TextArena& arena);
    /// Tests the text `row`, whose cells are m_cells.
    void keepIfWanted(std::string_view row, RowBlock& block, TextArena& arena);
    [[nodiscard]] bool isSeparator(char c) const { return c == m_delimiter || c == '\n' || c == '\r'; }
    [[nodiscard]] Error failure(std::string_view what) const;

    std::string m_path;
    int m_file;
    std::string m_value;
    std::size_t m_column = 0;
    char m_quote = '"';      ///< 0: none
    char m_delimiter = '\0'; ///< '\n' if lines are not split
    std::vector<std::string> m_names;
    std::int64_t m_size = 0;
    std::int64_t m_firstRow = 0;
    UtcTime m_modified{};
    FileStamp m_stamp;

    std::vector<FileRange> m_ranges;
    std::size_t m_range = 0;
    std::int64_t m_offset = 0; ///< in the file, of what is read next
    std::int64_t m_searched = 0;
    std::int64_t m_total = 0;

    std::unique_ptr<char[]> m_buffer; ///< one byte before the text, padding behind it
    std::size_t m_capacity = 0;
    const char* m_rowStart = nullptr; ///< the latest known row start; a line end precedes it
    const char* m_resume = nullptr;   ///< everything before it has been tested
    const char* m_end = nullptr;
    const char* m_nextQuote = nullptr; ///< at or after m_resume, or m_end; null or before m_resume: unknown
    bool m_isLast = false;             ///< nothing of the range follows the text
    bool m_isQuoted = false;           ///< m_resume is within a quoted cell
    bool m_isPlain = true;             ///< the last window had no quote
    bool m_mustTake = false;           ///< the row at m_rowStart is to be parsed once all of it is in the text

    std::vector<RawCell> m_cells;
    std::size_t m_rowLimit = 0;
};

} // namespace tavix::source
