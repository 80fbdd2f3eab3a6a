#pragma once

#include "base/Clock.h"
#include "source/RowReader.h"
#include "source/RowScanner.h"
#include "source/TextInput.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::source {

struct TextFileOptions {
    std::optional<char> delimiter;                        ///< found in the first rows unless stated
    bool hasHeader = true;                                ///< otherwise the columns are named Column1, Column2, ...
    bool findHeader = false;                              ///< the first row decides instead: see looksLikeNames
    const CEncoding* encoding = nullptr;                  ///< found in the file when null
    char quote = '"';                                     ///< 0: quotes have no meaning
    std::size_t pieceSize = std::size_t{1} << 20;         ///< bytes read at once; rows may be longer
    std::ptrdiff_t offsetEvery = std::ptrdiff_t{1} << 15; ///< bytes between two rows whose offsets are given, at least
    bool isPreview = false; ///< of a longer file, read only the rows that end in its first MiB
    KeepGoing keepGoing{};  ///< asked while a pipe has no data; a false is an error
};

/// Whether a first row holds column names rather than data: no cell has a digit but no letter, as numbers and dates
/// have.
[[nodiscard]] bool looksLikeNames(std::span<const std::string> cells);

/// Reads a delimited text file (RFC 4180, and its common variants: docs/definitions.md) in pieces that belong to the
/// blocks; other memory grows only with the longest row. For a regular, uncompressed file in UTF-8 the blocks contain
/// offsets of rows.
class TextFileReader final : public RowReader {
  public:
    /// Opens the file and reads its first piece, which gives encoding, delimiter and column names. Fails for a file
    /// that cannot be read, a folder, an empty file, one of more than 100,000 columns, and, unless encoding or
    /// delimiter is stated, one whose content is not text. Header names are kept, but an empty one becomes ColumnN, and
    /// a repeated one gets " (2)", " (3)", ...
    [[nodiscard]] static Result<std::unique_ptr<TextFileReader>> open(const std::string& path,
                                                                      const TextFileOptions& options);
    ~TextFileReader() override;
    TextFileReader(const TextFileReader&) = delete;
    TextFileReader& operator=(const TextFileReader&) = delete;

    [[nodiscard]] std::span<const std::string> columnNames() const override { return m_names; }
    /// Fails, too, if the file was changed since it was opened, or if a row is longer than 1 GiB.
    [[nodiscard]] Result<bool> read(RowBlock& block) override;
    [[nodiscard]] std::int64_t position() const override;
    [[nodiscard]] std::int64_t total() const override { return m_input->size(); }
    [[nodiscard]] std::span<const DamagedRow> damagedRows() const override { return m_damaged; }
    [[nodiscard]] std::int64_t damagedRowCount() const override { return m_damagedCount; }

    /// 0 if the lines are not split.
    [[nodiscard]] char delimiter() const { return m_delimiter; }
    /// 0: none.
    [[nodiscard]] char quote() const { return m_quote; }
    [[nodiscard]] bool hasHeader() const { return m_hasHeader; }
    /// Whether the first row looks like names of columns, whether it is the header or not.
    [[nodiscard]] bool looksLikeNames() const { return m_looksLikeNames; }
    [[nodiscard]] const std::string& path() const { return m_input->path(); }
    /// The text of a preview without its byte order mark, followed by the readable bytes that RowScanner requires.
    [[nodiscard]] std::string_view previewText() const { return m_previewText; }
    /// Whether the file continues after the preview.
    [[nodiscard]] bool isCut() const { return m_input->isCut(); }
    [[nodiscard]] const FoundEncoding& encoding() const { return m_input->encoding(); }
    [[nodiscard]] bool hasByteOrderMark() const { return m_hasMark; }
    [[nodiscard]] std::int64_t fileSize() const { return m_input->size(); }
    /// Whether the file is compressed, so that offsets in it are not offsets in its text.
    [[nodiscard]] bool isPacked() const { return m_input->isPacked(); }
    [[nodiscard]] Packing packing() const { return m_input->packing(); }
    [[nodiscard]] UtcTime modified() const { return m_input->modified(); }
    [[nodiscard]] const FileStamp& stamp() const { return m_input->stamp(); }

  private:
    struct Piece;
    struct Rewrite {
        std::size_t column = 0;
        RawCell cell;
    };

    explicit TextFileReader(std::unique_ptr<TextInput> input);
    Status begin(const TextFileOptions& options);
    Status findColumns(const TextFileOptions& options);
    /// Replaces the piece by one that holds what was not consumed and at least as much again from the file.
    Status refill();
    [[nodiscard]] std::shared_ptr<Piece> freePiece(std::size_t capacity);
    [[nodiscard]] Cell rewritten(const RawCell& cell, bool& hadBadBytes);
    void reserve(RowBlock& block);
    /// The next row is one of those whose offsets are given.
    void notePlace(RowBlock& block, std::size_t row);
    void finishRow(const ScannedRow& row, RowBlock& block, std::size_t rowIndex);
    void noteDamage(const ScannedRow& row, bool hadBadBytes);
    [[nodiscard]] Error failure(std::string_view what) const { return m_input->failure(what); }

    std::unique_ptr<TextInput> m_input;
    char m_quote = '"';
    std::size_t m_pieceSize = 0;
    std::ptrdiff_t m_offsetEvery = 0; ///< 0: no offsets
    const char* m_nextPlace = nullptr;
    char m_delimiter = '\0';
    bool m_hasMark = false;
    bool m_hasHeader = true;
    bool m_looksLikeNames = true;
    bool m_isEmptyLineRow = false;
    std::string_view m_previewText;
    std::vector<std::string> m_names;

    std::vector<std::shared_ptr<Piece>> m_pieces;
    std::shared_ptr<Piece> m_piece;
    std::optional<RowScanner> m_scanner; ///< over m_piece
    std::vector<Cell*> m_targets;        ///< the columns of the block being filled
    std::vector<Rewrite> m_rewrites;     ///< cells of the current row that had to be decoded
    std::size_t m_rowLimit = 0;

    std::int64_t m_line = 1; ///< where the next row starts
    std::vector<DamagedRow> m_damaged;
    std::int64_t m_damagedCount = 0;
};

} // namespace tavix::source
