#pragma once

#include "base/Result.h"
#include "repository/Facts.h"
#include "repository/PackedDistribution.h"
#include "repository/PackedField.h"
#include "sql/Connection.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tavix::repository {

enum class DistributionKind : char {
    Values = 'V',
    Patterns = 'P',
    Unmatched = 'K', ///< values of a field that another one does not have
};

/// Identifies a distribution of a repository.
struct DistributionKey {
    int run = -1;
    int field = -1;
    DistributionKind kind = DistributionKind::Values;
    int otherField = 0; ///< for Unmatched

    bool operator==(const DistributionKey&) const = default;
};

/// Within the caller's transaction. The rows must be in the order of the distribution.
[[nodiscard]] Status storeDistribution(sql::Connection& connection, const DistributionKey& key,
                                       std::span<const ValueCount> rows);
/// The same for a distribution that was packed before.
[[nodiscard]] Status storePacked(sql::Connection& connection, const DistributionKey& key, PackedField& field);
[[nodiscard]] Status storePackedHashes(sql::Connection& connection, int run, int field, PackedField& packed);
[[nodiscard]] Status storeValueHashes(sql::Connection& connection, int run, int field,
                                      std::span<const ValueCount> rows);

/// The count of a text in a stored distribution: 0 if it does not occur. Skips blocks that lack a byte of the text.
[[nodiscard]] Result<std::uint64_t> countOfText(sql::Connection& connection, const DistributionKey& key,
                                                std::string_view text);

/// Reads a stored distribution block by block. No statement stays open between two blocks, so that an unfinished reader
/// blocks nobody.
class DistributionReader {
  public:
    /// `rows` is the number of rows of the distribution; the connection must outlive the reader.
    DistributionReader(sql::Connection& connection, const DistributionKey& key, std::int64_t rows)
        : m_connection(connection), m_key(key), m_expectedRows(rows) {}
    DistributionReader(const DistributionReader&) = delete;
    DistributionReader& operator=(const DistributionReader&) = delete;

    /// Reads the next block; false after the last one. Fails if the block is missing or damaged, as after a deletion of
    /// the run.
    [[nodiscard]] Result<bool> next();
    /// Whether further blocks follow.
    [[nodiscard]] bool hasMore() const { return m_rowsRead < m_expectedRows; }
    /// The current block; valid until the next call of next().
    [[nodiscard]] const UnpackedBlock& block() const { return m_block; }
    /// The number of its first row in the distribution, from 0.
    [[nodiscard]] std::int64_t firstRow() const { return m_rowsRead - static_cast<std::int64_t>(m_block.rowCount()); }

  private:
    sql::Connection& m_connection;
    DistributionKey m_key;
    std::int64_t m_expectedRows;
    std::int64_t m_rowsRead = 0;
    std::int64_t m_nextBlock = 0;
    std::vector<std::byte> m_bytes;
    UnpackedBlock m_block;
};

} // namespace tavix::repository
