#pragma once

#include "source/TextFileReader.h"
#include "source/TextFileSearch.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavix::source {

/// What was found in a file when it was opened.
struct FileForm {
    const CEncoding* encoding = nullptr;
    char delimiter = '\0'; ///< 0: its lines are not split
    bool hasByteOrderMark = false;
    std::int64_t size = 0; ///< bytes
    UtcTime modified{};
};

/// How one of several files is read, where it is known.
struct StatedForm {
    std::optional<char> delimiter;       ///< 0: its lines are not split
    const CEncoding* encoding = nullptr; ///< null: not known
};

/// Text files with the same columns as one table: the rows of the first, then those of the second, and so on. One file
/// is open at a time.
class FileSetReader final : public RowReader {
  public:
    /// `files` is not empty. What is not stated is found in each file by itself, save for whether there is a header:
    /// the first file tells. `forms` goes before the options; there is one for each file, or none.
    [[nodiscard]] static Result<std::unique_ptr<FileSetReader>>
    open(std::vector<std::string> files, const TextFileOptions& options, std::vector<StatedForm> forms = {});

    /// Opens every file for its columns, size and time; an error names the first that has other columns than the first
    /// file. read() finds the same, but late.
    [[nodiscard]] Status checkColumns();
    /// Leaves out, where the bytes of a file tell, rows that have not this text in a column; others may be among those
    /// that read() gives. To be called before the first read(). `column` counts from 0 and is one of the files';
    /// `value` is one that TextFileSearch::canFind() accepts. Damaged rows are not listed then.
    [[nodiscard]] Status narrowTo(std::size_t column, std::string value);

    [[nodiscard]] std::span<const std::string> columnNames() const override { return m_names; }
    [[nodiscard]] Result<bool> read(RowBlock& block) override;
    [[nodiscard]] std::int64_t position() const override {
        return m_bytesBefore + m_current->position() + (m_search ? m_search->position() : 0);
    }
    [[nodiscard]] std::int64_t total() const override { return std::max(m_sizeOpened, m_sizeOfAll); }
    [[nodiscard]] std::span<const DamagedRow> damagedRows() const override { return m_damaged; }
    [[nodiscard]] std::int64_t damagedRowCount() const override {
        return m_damagedBefore + m_current->damagedRowCount();
    }

    [[nodiscard]] const std::vector<std::string>& files() const { return m_files; }
    /// Rows of each file that was read to its end.
    [[nodiscard]] const std::vector<std::int64_t>& rowsOfFiles() const { return m_rows; }
    /// Of a file that was opened by open() or read().
    [[nodiscard]] const CEncoding& encodingOf(std::size_t file) const { return *m_forms[file].encoding; }
    /// Of every file that was opened by open() or read(), in their order.
    [[nodiscard]] const std::vector<FileForm>& forms() const { return m_forms; }
    /// When the latest of the files was changed that were opened.
    [[nodiscard]] UtcTime modified() const { return m_modified; }
    /// The file that is being read: the first one until read() was called.
    [[nodiscard]] const TextFileReader& current() const { return *m_current; }

  private:
    FileSetReader(std::vector<std::string> files, const TextFileOptions& options, std::vector<StatedForm> forms)
        : m_files(std::move(files)), m_options(options), m_stated(std::move(forms)) {}
    [[nodiscard]] TextFileOptions optionsOf(std::size_t file) const;
    [[nodiscard]] Status compare(const TextFileReader& reader) const;
    void begin(std::unique_ptr<TextFileReader> reader);
    /// Opens it when its columns are those of the table.
    [[nodiscard]] Result<std::unique_ptr<TextFileReader>> openNext(std::size_t file,
                                                                   const TextFileOptions& options) const;
    [[nodiscard]] Status beginSearch();
    void takeDamage();

    std::vector<std::string> m_files;
    TextFileOptions m_options;
    std::vector<StatedForm> m_stated;
    std::vector<std::string> m_names;
    std::unique_ptr<TextFileReader> m_current;
    struct Wanted {
        std::size_t column = 0;
        std::string value;
    };
    std::optional<Wanted> m_wanted;
    std::unique_ptr<TextFileSearch> m_search; ///< reads in place of m_current
    std::vector<std::int64_t> m_rows;
    std::vector<FileForm> m_forms;
    UtcTime m_modified{};
    std::int64_t m_sizeOpened = 0; ///< of the files that were begun
    std::int64_t m_sizeOfAll = 0;  ///< when checkColumns() was called
    std::int64_t m_bytesBefore = 0;
    std::vector<DamagedRow> m_damaged;
    std::size_t m_damageTaken = 0; ///< of the current file's list
    std::int64_t m_damagedBefore = 0;
};

} // namespace tavix::source
