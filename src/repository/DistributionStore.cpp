#include "repository/DistributionStore.h"

#include "repository/PackedHashes.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace tavix::repository {

namespace {

std::string_view letter(const DistributionKind& kind) {
    static_assert(sizeof(DistributionKind) == 1);
    return {reinterpret_cast<const char*>(&kind), 1};
}

Result<sql::Statement> insertBlock(sql::Connection& connection, const DistributionKey& key) {
    auto insert = connection.prepare("INSERT INTO distribution_block(run, field, kind, other_field, block, first_row, "
                                     "rows, sum, bytes_present, payload) VALUES(?1,?2,?3,?4,?5,?6,?7,?8,?9,?10)");
    if (insert)
        insert->bind(1, key.run).bind(2, key.field).bind(3, letter(key.kind)).bind(4, key.otherField);
    return insert;
}

Status storeBlock(sql::Statement& insert, std::int64_t number, const PackedBlock& block) {
    insert.bind(5, number).bind(6, block.firstRow).bind(7, block.rows).bind(8, static_cast<std::int64_t>(block.sum));
    insert.bindBlob(9, block.presence).bindBlob(10, block.payload);
    return insert.run();
}

Result<sql::Statement> insertHashes(sql::Connection& connection, int run, int field) {
    auto insert = connection.prepare("INSERT INTO value_hash(run, field, chunk, hashes) VALUES(?1,?2,?3,?4)");
    if (insert)
        insert->bind(1, run).bind(2, field);
    return insert;
}

/// Whether the block may contain the text: all of its bytes occur.
bool mayHold(std::span<const std::byte> presence, std::string_view text) {
    if (presence.size() != std::tuple_size_v<BytePresence>)
        return true;
    return std::all_of(text.begin(), text.end(), [&](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (static_cast<unsigned>(presence[byte / 8]) >> (byte % 8) & 1) != 0;
    });
}

} // namespace

Status storeDistribution(sql::Connection& connection, const DistributionKey& key, std::span<const ValueCount> rows) {
    if (rows.empty())
        return {};
    auto insert = insertBlock(connection, key);
    if (!insert)
        return insert.error();
    DistributionPacker packer(rows);
    for (std::int64_t number = 0;; ++number) {
        const auto packed = packer.next();
        if (!packed)
            return packed.error();
        if (!*packed)
            return {};
        if (Status done = storeBlock(*insert, number, packer.block()); !done)
            return done;
    }
}

Status storePacked(sql::Connection& connection, const DistributionKey& key, PackedField& field) {
    auto insert = insertBlock(connection, key);
    if (!insert)
        return insert.error();
    PackedBlock block;
    for (std::int64_t number = 0;; ++number) {
        const auto more = key.kind == DistributionKind::Patterns ? field.nextPatterns(block) : field.nextValues(block);
        if (!more)
            return more.error();
        if (!*more)
            return {};
        if (Status done = storeBlock(*insert, number, block); !done)
            return done;
    }
}

Status storeValueHashes(sql::Connection& connection, int run, int field, std::span<const ValueCount> rows) {
    std::vector<std::uint64_t> hashes = sortedHashes(rows);
    if (hashes.empty())
        return {};
    auto insert = insertHashes(connection, run, field);
    if (!insert)
        return insert.error();
    std::span<const std::uint64_t> rest(hashes);
    for (std::int64_t chunk = 0; !rest.empty(); ++chunk) {
        auto part = rest.first(std::min(kHashesPerChunk, rest.size()));
        const std::vector<std::byte> packed = packSortedHashes(part);
        insert->bind(3, chunk).bindBlob(4, packed);
        if (auto done = insert->run(); !done)
            return done;
        rest = rest.subspan(part.size());
    }
    return {};
}

Status storePackedHashes(sql::Connection& connection, int run, int field, PackedField& packed) {
    auto insert = insertHashes(connection, run, field);
    if (!insert)
        return insert.error();
    std::span<const std::byte> part;
    for (std::int64_t chunk = 0;; ++chunk) {
        const auto more = packed.nextHashes(part);
        if (!more)
            return more.error();
        if (!*more)
            return {};
        insert->bind(3, chunk).bindBlob(4, part);
        if (auto done = insert->run(); !done)
            return done;
    }
}

Result<bool> DistributionReader::next() {
    if (!hasMore())
        return false;
    auto select = m_connection.prepare("SELECT rows, first_row, payload FROM distribution_block WHERE run = ?1 AND "
                                       "field = ?2 AND kind = ?3 AND other_field = ?4 AND block = ?5");
    if (!select)
        return select.error();
    select->bind(1, m_key.run).bind(2, m_key.field).bind(3, letter(m_key.kind)).bind(4, m_key.otherField);
    switch (select->bind(5, m_nextBlock).step()) {
    case sql::Step::Failed:
        return Error{m_connection.errorText()};
    case sql::Step::Done:
        return Error{"A part of a stored distribution is missing. The run may have been deleted."};
    case sql::Step::Row:
        break;
    }
    auto payload = select->blob(2);
    m_bytes.assign(payload.begin(), payload.end());
    auto block = UnpackedBlock::parse(m_bytes);
    if (!block)
        return block.error();
    auto rows = static_cast<std::int64_t>(block->rowCount());
    if (rows == 0 || rows != select->integer(0) || m_rowsRead != select->integer(1) ||
        m_rowsRead + rows > m_expectedRows)
        return Error{"A stored distribution is damaged."};
    m_block = std::move(*block);
    m_rowsRead += rows;
    ++m_nextBlock;
    return true;
}

Result<std::uint64_t> countOfText(sql::Connection& connection, const DistributionKey& key, std::string_view text) {
    auto select = connection.prepare("SELECT bytes_present, payload FROM distribution_block WHERE run = ?1 AND "
                                     "field = ?2 AND kind = ?3 AND other_field = ?4 ORDER BY block");
    if (!select)
        return select.error();
    select->bind(1, key.run).bind(2, key.field).bind(3, letter(key.kind)).bind(4, key.otherField);
    std::vector<std::byte> bytes;
    for (;;) {
        const sql::Step step = select->step();
        if (step == sql::Step::Failed)
            return Error{connection.errorText()};
        if (step == sql::Step::Done)
            return std::uint64_t{0};
        if (!mayHold(select->blob(0), text))
            continue;
        const auto payload = select->blob(1);
        bytes.assign(payload.begin(), payload.end());
        const auto block = UnpackedBlock::parse(bytes);
        if (!block)
            return block.error();
        for (std::size_t row = 0; row < block->rowCount(); ++row)
            if (block->valueAt(row) == text && block->nullRow() != row)
                return block->countAt(row);
    }
}

} // namespace tavix::repository
