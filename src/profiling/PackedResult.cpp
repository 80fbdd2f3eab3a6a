#include "profiling/PackedResult.h"

#include "base/FreeMemory.h"
#include "profiling/StopSignal.h"
#include "repository/PackedHashes.h"

#include <utility>

namespace tavix::profiling {

Status PackedRows::pack(ByteStore& store) {
    Block block;
    block.facts = m_packer->finish();
    auto piece = store.keep(block.facts.payload);
    if (!piece)
        return piece.error();
    block.payload = std::move(*piece);
    block.facts.payload = {};
    m_blocks.push_back(std::move(block));
    return {};
}

Status PackedRows::add(ByteStore& store, const repository::ValueCount& row) {
    if (!m_packer)
        m_packer.emplace();
    if (!m_packer->hasRoomFor(row.isNull ? 0 : row.value.size()))
        if (Status status = pack(store); !status)
            return status;
    ++m_rows;
    m_sum += row.count;
    return m_packer->add(row);
}

Status PackedRows::finish(ByteStore& store) {
    Status status = !m_packer || m_packer->isEmpty() ? Status{} : pack(store);
    m_packer.reset(); // Many fields wait for the end of the run, and each packer holds memory.
    return status;
}

void PackedRows::append(PackedRows&& following) {
    m_blocks.reserve(m_blocks.size() + following.m_blocks.size());
    for (Block& block : following.m_blocks) {
        block.facts.firstRow += m_rows;
        m_blocks.push_back(std::move(block));
    }
    m_rows += following.m_rows;
    m_sum += following.m_sum;
    following.m_blocks.clear();
}

Result<bool> PackedRows::next(ByteStore& store, repository::PackedBlock& block) {
    if (m_next > 0)
        store.drop(m_blocks[m_next - 1].payload);
    if (m_next == m_blocks.size()) {
        // Many fields wait for the end of the run: free the memory that reading took.
        freeMemory(m_blocks);
        freeMemory(m_buffer);
        m_next = 0;
        return false;
    }
    const Block& following = m_blocks[m_next++];
    const auto payload = store.read(following.payload, m_buffer);
    if (!payload)
        return payload.error();
    block = following.facts;
    block.payload = *payload;
    return true;
}

Status PackedResult::addHashes(std::span<const std::uint64_t> chunk) {
    auto piece = m_store.keep(repository::packSortedHashes(chunk));
    if (!piece)
        return piece.error();
    m_hashes.push_back(std::move(*piece));
    return {};
}

Status PackedResult::goOn() const {
    return mayGoOn && !mayGoOn() ? Status{StopSignal::stopped()} : Status{};
}

Result<bool> PackedResult::nextValues(repository::PackedBlock& block) {
    if (Status status = goOn(); !status)
        return status.error();
    return values.next(m_store, block);
}

Result<bool> PackedResult::nextPatterns(repository::PackedBlock& block) {
    if (Status status = goOn(); !status)
        return status.error();
    return patterns.next(m_store, block);
}

Result<bool> PackedResult::nextHashes(std::span<const std::byte>& chunk) {
    if (Status status = goOn(); !status)
        return status.error();
    if (m_nextHashes > 0)
        m_store.drop(m_hashes[m_nextHashes - 1]);
    if (m_nextHashes == m_hashes.size()) {
        freeMemory(m_hashes);
        freeMemory(m_buffer);
        m_nextHashes = 0;
        return false;
    }
    const auto bytes = m_store.read(m_hashes[m_nextHashes++], m_buffer);
    if (!bytes)
        return bytes.error();
    chunk = *bytes;
    return true;
}

} // namespace tavix::profiling
