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

/// The rows of a statement, every value as a text in UTF-8. Columns are bound and, where no value can be longer than
/// its column says, fetched many rows at a time. Memory does not grow with the number of rows; a value may have up to
/// 1 GiB. What is no well-formed UTF-8 is repaired as in a text file, the row counted as a damaged one.
class OdbcReader final : public RowReader {
  public:
    /// Sends the statement. `columns` says what to expect of its result. The connection must outlive the reader.
    [[nodiscard]] static Result<std::unique_ptr<OdbcReader>> open(const OdbcConnection& connection, const SqlText& text,
                                                                  std::span<const DeclaredColumn> columns,
                                                                  std::span<const std::string> names,
                                                                  KeepGoing keepGoing = {});
    ~OdbcReader() override;
    OdbcReader(const OdbcReader&) = delete;
    OdbcReader& operator=(const OdbcReader&) = delete;

    [[nodiscard]] std::span<const std::string> columnNames() const override { return m_names; }
    /// The error kCancelled after a false of the KeepGoing, which is asked on the calling thread. After an error there
    /// are no more rows.
    [[nodiscard]] Result<bool> read(RowBlock& block) override;
    /// How many rows a result has is not known before its end.
    [[nodiscard]] std::int64_t position() const override { return 0; }
    [[nodiscard]] std::int64_t total() const override { return 0; }
    /// The line of a damaged row is its number, from 1.
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
    /// The whole of a value that its bound memory could not take.
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
