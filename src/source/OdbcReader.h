#pragma once

#include "source/DatabaseTable.h"
#include "source/OdbcConnection.h"
#include "source/OdbcStatement.h"
#include "source/RowReader.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tavix::source {

/// The rows of a statement, every value as text in UTF-8. Columns are bound; if declared lengths bound their values,
/// many rows are fetched at once. Memory does not grow with the number of rows; a value may have up to 1 GiB. Invalid
/// UTF-8 is repaired as in a text file, and its row counts as damaged.
class OdbcReader final : public RowReader {
  public:
    /// Executes the statement. `columns` describes the expected result. The connection must outlive the reader.
    [[nodiscard]] static Result<std::unique_ptr<OdbcReader>> open(const OdbcConnection& connection, const SqlText& text,
                                                                  std::span<const DeclaredColumn> columns,
                                                                  std::span<const std::string> names,
                                                                  KeepGoing keepGoing = {});
    ~OdbcReader() override;
    OdbcReader(const OdbcReader&) = delete;
    OdbcReader& operator=(const OdbcReader&) = delete;

    [[nodiscard]] std::span<const std::string> columnNames() const override { return m_names; }
    /// The error is kCancelled after KeepGoing, which is called on this thread, has returned false. After an error
    /// there are no more rows.
    [[nodiscard]] Result<bool> read(RowBlock& block) override;
    /// The number of rows of a result is unknown before its end.
    [[nodiscard]] std::int64_t position() const override { return 0; }
    [[nodiscard]] std::int64_t total() const override { return 0; }
    /// The line of a damaged row is its number in the result, from 1.
    [[nodiscard]] std::span<const DamagedRow> damagedRows() const override { return m_damaged; }
    [[nodiscard]] std::int64_t damagedRowCount() const override { return m_damagedCount; }

  private:
    struct Text;
    struct Column;

    OdbcReader(const OdbcConnection& connection, OdbcStatement statement, std::span<const std::string> names,
               KeepGoing keepGoing);
    Status bind(std::span<const DeclaredColumn> columns);
    Status fill(RowBlock& block);
    Status takeRow(RowBlock& block, std::size_t fetchedRow);
    /// Reads the whole of a value that is longer than its buffer.
    Status readLong(std::size_t column, bool& isNull);
    [[nodiscard]] Cell keep(const Column& column, const char* data, std::size_t size);
    [[nodiscard]] Cell keepWide(const char* data, std::size_t size);
    [[nodiscard]] Cell keepText(const char* data, std::size_t size);

    const OdbcConnection& m_connection;
    OdbcStatement m_statement;
    std::vector<std::string> m_names;
    KeepGoing m_keepGoing;
    std::vector<Column> m_columns;
    std::size_t m_rowsAtOnce = 1;
    std::uint64_t m_fetched = 0; ///< written by the driver
    std::vector<char> m_long;
    std::shared_ptr<Text> m_text;
    std::size_t m_textSize = 0; ///< of the block that is being filled
    std::int64_t m_rows = 0;
    bool m_isRowDamaged = false;
    bool m_isAtEnd = false;
    std::vector<DamagedRow> m_damaged;
    std::int64_t m_damagedCount = 0;
};

} // namespace tavix::source
