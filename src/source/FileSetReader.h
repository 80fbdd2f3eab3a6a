#pragma once

#include "source/TextFileReader.h"
#include "source/TextFileSearch.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavix::source {

/// What opening a file found.
struct FileForm {
    const CEncoding* encoding = nullptr;
    char delimiter = '\0'; ///< 0: its lines are not split
    bool hasByteOrderMark = false;
    std::int64_t size = 0; ///< bytes
    UtcTime modified{};
};

/// How to read one of several files, as far as known.
struct StatedForm {
    std::optional<char> delimiter;       ///< 0: its lines are not split
    const CEncoding* encoding = nullptr; ///< null: unknown
};

/// Text files with the same columns as one table: the rows of the first, then those of the second, and so on. One file
/// is open at a time.
class FileSetReader final : public RowReader {
  public:
    /// `files` is not empty. Options that are not stated are detected for each file, except for the header: the first
    /// file decides for all. `forms` has precedence over the options; there is one for each file, or none.
    [[nodiscard]] static Result<std::unique_ptr<FileSetReader>>
    open(std::vector<std::string> files, const TextFileOptions& options, std::vector<StatedForm> forms = {});

    /// Opens every file for its columns, size and time; an error names the first file whose columns differ from the
    /// first file's. Without this call, read() finds it when it reaches the file.
    [[nodiscard]] Status checkColumns();
    /// Skips rows that do not have this text in a column, where the bytes of a file show it; read() may still return
    /// some. To be called before the first read(). `column` counts from 0 and must exist; TextFileSearch::canFind()
    /// must accept `value`. Damaged rows are not listed then.
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
    /// Rows of each file that was read to the end.
    [[nodiscard]] const std::vector<std::int64_t>& rowsOfFiles() const { return m_rows; }
    /// Of a file that open() or read() has opened.
    [[nodiscard]] const CEncoding& encodingOf(std::size_t file) const { return *m_forms[file].encoding; }
    /// Of every file that open() or read() has opened, in their order.
    [[nodiscard]] const std::vector<FileForm>& forms() const { return m_forms; }
    /// The latest time of change of the files opened.
    [[nodiscard]] UtcTime modified() const { return m_modified; }
    /// The file that is being read; the first one before read().
    [[nodiscard]] const TextFileReader& current() const { return *m_current; }

  private:
    FileSetReader(std::vector<std::string> files, const TextFileOptions& options, std::vector<StatedForm> forms)
        : m_files(std::move(files)), m_options(options), m_stated(std::move(forms)) {}
    [[nodiscard]] TextFileOptions optionsOf(std::size_t file) const;
    [[nodiscard]] Status compare(const TextFileReader& reader) const;
    void begin(std::unique_ptr<TextFileReader> reader);
    /// Opens it if its columns are those of the table.
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
    std::unique_ptr<TextFileSearch> m_search; ///< reads instead of m_current
    std::vector<std::int64_t> m_rows;
    std::vector<FileForm> m_forms;
    UtcTime m_modified{};
    std::int64_t m_sizeOpened = 0; ///< of the files begun so far
    std::int64_t m_sizeOfAll = 0;  ///< when checkColumns() was called
    std::int64_t m_bytesBefore = 0;
    std::vector<DamagedRow> m_damaged;
    std::size_t m_damageTaken = 0; ///< of the current file's list
    std::int64_t m_damagedBefore = 0;
};

} // namespace tavix::source
