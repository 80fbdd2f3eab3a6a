#include "drill/DrillRows.h"

#include <algorithm>
#include <utility>

namespace tavix {

namespace {

constexpr std::size_t kChunkBytes = std::size_t{1} << 20;
// Leaves room for the last row of a chunk, so that few chunks reallocate.
constexpr std::size_t kChunkReserve = kChunkBytes + kChunkBytes / 64;
// About the number of cells that a lookup skips at most.
constexpr std::uint32_t kPassedCells = 8;

// A cell is its length + 1 as a varint (seven bits per byte, low bits first), then its bytes. 0 means null.
void putLength(std::vector<char>& chunk, std::size_t length) {
    for (; length >= 0x80; length >>= 7)
        chunk.push_back(static_cast<char>((length & 0x7F) | 0x80));
    chunk.push_back(static_cast<char>(length));
}

std::size_t takeLength(const char*& at) {
    std::size_t length = 0;
    for (unsigned shift = 0;; shift += 7) {
        const auto byte = static_cast<unsigned char>(*at++);
        length |= static_cast<std::size_t>(byte & 0x7FU) << shift;
        if (byte < 0x80)
            return length;
    }
}

} // namespace

DrillRows::DrillRows(std::vector<DrillColumn> columns)
    : m_columns(std::move(columns)),
      m_stride(m_columns.empty()
                   ? 1
                   : std::max<std::uint32_t>(1, kPassedCells / static_cast<std::uint32_t>(m_columns.size()))) {}

void DrillRows::beginRow() {
    const bool isPlace = m_count % m_stride == 0;
    if (isPlace && (m_chunks.empty() || m_chunks.back().size() >= kChunkBytes)) {
        shrink();
        m_chunks.emplace_back().reserve(kChunkReserve);
    }
    m_rowBegin = m_chunks.back().size();
    if (isPlace)
        m_places.push_back({static_cast<std::uint32_t>(m_chunks.size() - 1), static_cast<std::uint32_t>(m_rowBegin)});
}

void DrillRows::add(const KvbString& value) {
    if (!std::exchange(m_inRow, true))
        beginRow();
    std::vector<char>& chunk = m_chunks.back();
    const std::string_view text = value.view();
    putLength(chunk, value.isNull() ? 0 : text.size() + 1);
    chunk.insert(chunk.end(), text.begin(), text.end());
}

void DrillRows::endRow() {
    ++m_count;
    m_inRow = false;
}

void DrillRows::dropOpenRow() {
    if (!std::exchange(m_inRow, false))
        return;
    m_chunks.back().resize(m_rowBegin);
    if (m_count % m_stride == 0)
        m_places.pop_back();
}

void DrillRows::shrink() {
    if (!m_chunks.empty() && m_chunks.back().capacity() > kChunkReserve)
        m_chunks.back().shrink_to_fit();
}

void DrillRows::finish() {
    if (!m_chunks.empty())
        m_chunks.back().shrink_to_fit();
    m_places.shrink_to_fit();
}

const char* DrillRows::placeBefore(std::uint32_t row) const {
    const Place& place = m_places[row / m_stride];
    return m_chunks[place.chunk].data() + place.offset;
}

DrillRows::Cell DrillRows::cell(int column, std::uint32_t row) const {
    const char* at = placeBefore(row);
    std::size_t cells = (row % m_stride) * m_columns.size() + static_cast<std::size_t>(column);
    for (; cells > 0; --cells) {
        if (const std::size_t length = takeLength(at); length > 1)
            at += length - 1;
    }
    const std::size_t length = takeLength(at);
    return length == 0 ? Cell{{}, true} : Cell{{at, length - 1}, false};
}

void DrillRows::texts(int column, std::uint32_t first, std::span<std::string_view> texts) const {
    const auto wanted = static_cast<std::size_t>(column);
    if (texts.empty())
        return;
    const char* at = placeBefore(first);
    for (std::uint32_t row = first - first % m_stride; row < first + texts.size(); ++row) {
        if (row % m_stride == 0)
            at = placeBefore(row);
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            const std::size_t length = std::max<std::size_t>(1, takeLength(at)) - 1;
            if (i == wanted && row >= first)
                texts[row - first] = {at, length};
            at += length;
        }
    }
}

std::size_t DrillRows::bytes() const {
    std::size_t bytes = m_places.capacity() * sizeof(Place);
    for (const std::vector<char>& chunk : m_chunks)
        bytes += chunk.capacity();
    return bytes;
}

} // namespace tavix
