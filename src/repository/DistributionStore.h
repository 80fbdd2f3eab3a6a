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

/// Which distribution of a repository is meant.
struct DistributionKey {
    int run = -1;
    int field = -1;
    DistributionKind kind = DistributionKind::Values;
    int otherField = 0; ///< for Unmatched

    bool operator==(const DistributionKey&) const = default;
};

/// Within the caller's transaction. The rows must be in the order in which they are shown.
[[nodiscard]] Status storeDistribution(sql::Connection& connection, const DistributionKey& key,
                                       std::span<const ValueCount> rows);
/// The same for what was packed beforehand.
[[nodiscard]] Status storePacked(sql::Connection& connection, const DistributionKey& key, PackedField& field);
[[nodiscard]] Status storePackedHashes(sql::Connection& connection, int run, int field, PackedField& packed);
[[nodiscard]] Status storeValueHashes(sql::Connection& connection, int run, int field,
                                      std::span<const ValueCount> rows);

/// How often a text stands in a stored distribution: 0 when it does not. Blocks without the text's bytes are passed
/// over.
[[nodiscard]] Result<std::uint64_t> countOfText(sql::Connection& connection, const DistributionKey& key,
                                                std::string_view text);

/// Reads a stored distribution block by block. No statement stays open between two blocks, so that a reader that is
/// left half-way stands in nobody's way.
class DistributionReader {
  public:
    /// `rows` is the number of rows that the distribution has; the connection must outlive the reader.
    DistributionReader(sql::Connection& connection, const DistributionKey& key, std::int64_t rows)
        : m_connection(connection), m_key(key), m_expectedRows(rows) {}
    DistributionReader(const DistributionReader&) = delete;
    DistributionReader& operator=(const DistributionReader&) = delete;

    /// Reads the next block; false after the last one. Fails on a block that is missing or damaged, as when the run
    /// was deleted meanwhile.
    [[nodiscard]] Result<bool> next();
    /// Whether there is a block behind those that were read.
    [[nodiscard]] bool hasMore() const { return m_rowsRead < m_expectedRows; }
    /// The block that next() read; valid until the next call.
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
