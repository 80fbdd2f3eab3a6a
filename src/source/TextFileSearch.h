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

/// Reads the rows of a delimited text file in UTF-8 that have a given text in one column: the very rows that
/// TextFileReader gives, but only those near which the text's bytes stand are taken apart. Damaged rows read as they do
/// there; they are not listed.
class TextFileSearch final : public RowReader {
  public:
    /// Whether bytes alone find the text. The others are for a reader of every row: nothing to look for, quotes (they
    /// may be doubled in the file), U+FFFD (which stands for other bytes).
    [[nodiscard]] static bool canFind(std::string_view value, char quote);

    /// The options are those with which the file is read otherwise. Fails as TextFileReader does, and for what is no
    /// regular file. Null for a compressed file, whose bytes are not those of its text.
    [[nodiscard]] static Result<std::unique_ptr<TextFileSearch>> open(const std::string& path,
                                                                      const TextFileOptions& options);
    /// The regular file in UTF-8 that `reader` has opened and not yet read from; another one is an error when it stands
    /// there by now. Null for a compressed file.
    [[nodiscard]] static Result<std::unique_ptr<TextFileSearch>> open(const TextFileReader& reader);
    ~TextFileSearch() override;
    TextFileSearch(const TextFileSearch&) = delete;
    TextFileSearch& operator=(const TextFileSearch&) = delete;

    /// What to look for, to be called once, before the first read(). `column` counts from 0 and is one of the file's;
    /// `value` is one that canFind() accepts.
    void find(std::size_t column, std::string value);
    /// Looks only here: ascending, without overlap, behind the heading. To be called between find() and the first
    /// read().
    void restrictTo(std::vector<FileRange> ranges);

    [[nodiscard]] std::span<const std::string> columnNames() const override { return m_names; }
    /// Comes back with the next rows, or after a few MiB without any, so that its caller can tell of progress: the end
    /// of the table is when it says false.
    [[nodiscard]] Result<bool> read(RowBlock& block) override;
    [[nodiscard]] std::int64_t position() const override { return m_searched; }
    [[nodiscard]] std::int64_t total() const override { return m_total; }
    [[nodiscard]] std::span<const DamagedRow> damagedRows() const override { return {}; }
    [[nodiscard]] std::int64_t damagedRowCount() const override { return 0; }

    [[nodiscard]] std::int64_t fileSize() const { return m_size; }
    [[nodiscard]] UtcTime modified() const { return m_modified; }
    [[nodiscard]] const FileStamp& stamp() const { return m_stamp; }
    /// Where the first row behind the heading begins.
    [[nodiscard]] std::int64_t firstRow() const { return m_firstRow; }

  private:
    TextFileSearch(const TextFileReader& reader, int file);
    Status begin(const FileStamp& expected);
    void startRange();
    [[nodiscard]] bool isRangeDone() const { return m_isLast && m_resume == m_end && !m_mustTake; }
    /// Keeps what stands behind the last known row start and reads on.
    Status refill();
    /// Goes on until the block is full or the range is done; false when more text is needed.
    bool search(RowBlock& block, TextArena& arena);
    /// Judges the windows at m_resume that lie before `limit` and before the next quote, up to one where the value may
    /// be a cell. Not within a quoted cell.
    void judgePlain(const char* limit);
    /// Judges the bytes at m_resume, at most one window and not beyond `limit`.
    void judgeWindow(const char* limit);
    /// What stands where in a window of text: bit i for byte i.
    struct Marks {
        const char* text = nullptr;
        std::uint64_t quotes = 0;
        std::uint64_t lineEnds = 0;   ///< of a pair the second
        std::uint64_t candidates = 0; ///< the value may begin
    };
    /// All at once, if every quote opens or closes a cell or is doubled; else false, and nothing was judged.
    bool judgeRegular(const Marks& marks, std::uint64_t separators);
    void judgeOneByOne(Marks marks);
    /// The last of these line ends, if there are some, ends the row before the one at m_rowStart.
    void goToRow(const char* text, std::uint64_t lineEnds);
    [[nodiscard]] bool looksLikeCell(const char* at, bool isQuoted) const;
    /// Takes the row at m_rowStart apart; false when its end is not there yet.
    bool takeRow(RowBlock& block, TextArena& arena);
    /// Of the text `row`, whose cells are m_cells.
    void keepIfWanted(std::string_view row, RowBlock& block, TextArena& arena);
    [[nodiscard]] bool isSeparator(char c) const { return c == m_delimiter || c == '\n' || c == '\r'; }
    [[nodiscard]] Error failure(std::string_view what) const;

    std::string m_path;
    int m_file;
    std::string m_value;
    std::size_t m_column = 0;
    char m_quote = '"';      ///< 0: none
    char m_delimiter = '\0'; ///< '\n' when lines are not split
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
    const char* m_rowStart = nullptr; ///< the latest place known to begin a row; a line end stands before it
    const char* m_resume = nullptr;   ///< what stands before it has been judged
    const char* m_end = nullptr;
    const char* m_nextQuote = nullptr; ///< at or behind m_resume, or m_end; null or before m_resume: not known
    bool m_isLast = false;             ///< nothing of the range follows the text
    bool m_isQuoted = false;           ///< m_resume is within a quoted cell
    bool m_isPlain = true;             ///< no quote stood in the last window
    bool m_mustTake = false;           ///< the row at m_rowStart is to be taken apart once all of it is there

    std::vector<RawCell> m_cells;
    std::size_t m_rowLimit = 0;
};

} // namespace tavix::source
