#pragma once

#include "source/TextFileReader.h"

#include <memory>
#include <string>
#include <vector>

namespace tavix::source {

/// Text files with the same columns as one table: the rows of the first, then those of the second, and so on. One file
/// is open at a time.
class FileSetReader final : public RowReader {
  public:
    /// `files` is not empty. What is not stated is found in each file by itself, save for whether there is a header:
    /// the first file tells.
    [[nodiscard]] static Result<std::unique_ptr<FileSetReader>> open(std::vector<std::string> files,
                                                                     const TextFileOptions& options);

    /// Opens every file for its columns and its size; an error names the first that has others than the first file.
    /// read() finds the same, but late.
    [[nodiscard]] Status checkColumns();

    [[nodiscard]] std::span<const std::string> columnNames() const override { return m_names; }
    [[nodiscard]] Result<bool> read(RowBlock& block) override;
    [[nodiscard]] std::int64_t position() const override { return m_bytesBefore + m_current->position(); }
    [[nodiscard]] std::int64_t total() const override { return m_total; }
    [[nodiscard]] std::span<const DamagedRow> damagedRows() const override { return m_damaged; }
    [[nodiscard]] std::int64_t damagedRowCount() const override {
        return m_damagedBefore + m_current->damagedRowCount();
    }

    [[nodiscard]] const std::vector<std::string>& files() const { return m_files; }
    /// Rows of each file that was read to its end.
    [[nodiscard]] const std::vector<std::int64_t>& rowsOfFiles() const { return m_rows; }
    /// The file that is being read: the first one until read() was called.
    [[nodiscard]] const TextFileReader& current() const { return *m_current; }

  private:
    FileSetReader(std::vector<std::string> files, const TextFileOptions& options)
        : m_files(std::move(files)), m_options(options) {}
    [[nodiscard]] Status compare(const TextFileReader& reader) const;
    void takeDamage();

    std::vector<std::string> m_files;
    TextFileOptions m_options;
    std::vector<std::string> m_names;
    std::unique_ptr<TextFileReader> m_current;
    std::size_t m_index = 0;
    std::vector<std::int64_t> m_rows{0};
    std::int64_t m_total = 0;
    std::int64_t m_bytesBefore = 0;
    std::vector<DamagedRow> m_damaged;
    std::size_t m_damageTaken = 0; ///< of the current file's list
    std::int64_t m_damagedBefore = 0;
};

} // namespace tavix::source
