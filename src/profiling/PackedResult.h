#pragma once

#include "profiling/ByteStore.h"
#include "repository/Facts.h"
#include "repository/PackedField.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace tavix::profiling {

/// A distribution that is being packed or was packed. Rows come in display order.
class PackedRows {
  public:
    [[nodiscard]] Status add(ByteStore& store, const repository::ValueCount& row);
    [[nodiscard]] Status finish(ByteStore& store);
    /// Takes over rows that follow and were packed elsewhere; both must be finished.
    void append(PackedRows&& following);

    [[nodiscard]] std::int64_t rows() const { return m_rows; }
    [[nodiscard]] std::uint64_t sum() const { return m_sum; }
    /// Gives the next block and forgets the one before. False at the end, when all is forgotten.
    [[nodiscard]] Result<bool> next(ByteStore& store, repository::PackedBlock& block);

  private:
    struct Block {
        repository::PackedBlock facts; ///< the payload is kept apart
        ByteStore::Piece payload;
    };
    Status pack(ByteStore& store);

    std::optional<repository::BlockPacker> m_packer;
    std::vector<Block> m_blocks;
    std::size_t m_next = 0;
    std::vector<std::byte> m_buffer;
    std::int64_t m_rows = 0;
    std::uint64_t m_sum = 0;
};

/// The packed distributions of a field and the hashes of its values, ready to be stored.
class PackedResult final : public repository::PackedField {
  public:
    explicit PackedResult(ByteStore& store) : m_store(store) {}

    PackedRows values;
    PackedRows patterns;
    /// Asked before each block; false makes reading fail.
    std::function<bool()> mayGoOn;

    /// Adds the next hashes in ascending order: kHashesPerChunk of them in all calls but the last.
    [[nodiscard]] Status addHashes(std::span<const std::uint64_t> chunk);

    [[nodiscard]] std::int64_t valueRows() const override { return values.rows(); }
    [[nodiscard]] std::uint64_t valueSum() const override { return values.sum(); }
    [[nodiscard]] std::int64_t patternRows() const override { return patterns.rows(); }
    [[nodiscard]] std::uint64_t patternSum() const override { return patterns.sum(); }
    [[nodiscard]] Result<bool> nextValues(repository::PackedBlock& block) override;
    [[nodiscard]] Result<bool> nextPatterns(repository::PackedBlock& block) override;
    [[nodiscard]] Result<bool> nextHashes(std::span<const std::byte>& chunk) override;

  private:
    [[nodiscard]] Status goOn() const;

    ByteStore& m_store;
    std::vector<ByteStore::Piece> m_hashes;
    std::size_t m_nextHashes = 0;
    std::vector<std::byte> m_buffer;
};

} // namespace tavix::profiling
