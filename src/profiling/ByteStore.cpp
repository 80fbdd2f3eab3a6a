#include "profiling/ByteStore.h"

#include <cstring>

namespace tavix::profiling {

Result<ByteStore::Piece> ByteStore::keep(std::span<const std::byte> bytes) {
    Piece piece;
    piece.m_size = static_cast<std::uint32_t>(bytes.size());
    if (m_inUse.fetch_add(bytes.size()) + bytes.size() <= m_memory) {
        piece.m_bytes = std::make_unique_for_overwrite<std::byte[]>(bytes.size());
        std::memcpy(piece.m_bytes.get(), bytes.data(), bytes.size());
        return piece;
    }
    m_inUse -= bytes.size();
    const auto offset = m_file.append(bytes);
    if (!offset)
        return offset.error();
    piece.m_offset = *offset;
    return piece;
}

Result<std::span<const std::byte>> ByteStore::read(const Piece& piece, std::vector<std::byte>& buffer) const {
    if (piece.m_bytes)
        return std::span<const std::byte>(piece.m_bytes.get(), piece.m_size);
    buffer.resize(piece.m_size);
    if (Status status = m_file.read(piece.m_offset, buffer); !status)
        return status.error();
    return std::span<const std::byte>(buffer);
}

void ByteStore::drop(Piece& piece) {
    if (piece.m_bytes)
        m_inUse -= piece.m_size;
    else
        m_file.release(piece.m_offset, piece.m_size);
    piece = {};
}

} // namespace tavix::profiling
