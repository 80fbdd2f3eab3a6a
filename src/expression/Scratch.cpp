#include "expression/Scratch.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tavix::expression {

namespace {

constexpr std::size_t kChunk = std::size_t{64} << 10;
/// Larger chunks are freed, so that one large row does not keep its memory forever.
constexpr std::size_t kKept = std::size_t{4} << 20;

} // namespace

void Scratch::clear(std::size_t most) {
    std::size_t kept = 0;
    std::size_t size = 0;
    while (kept < m_chunks.size() && (size += m_chunks[kept].size) <= kKept)
        ++kept;
    m_chunks.resize(kept);
    m_chunk = 0;
    m_used = 0;
    m_total = 0;
    m_most = most;
    m_isFull = false;
    if (m_builder.capacity() > kKept)
        m_builder = std::string();
}

bool Scratch::refuse(std::size_t size) {
    if (size == 0)
        return true;
    m_isFull = m_isFull || size <= kLongestText;
    fail(size > kLongestText ? "a text would become too long" : "the texts of a row take too much memory");
    return false;
}

char* Scratch::allocate(std::size_t size) {
    if (!fits(size))
        return nullptr;
    m_total += size;
    while (m_chunk < m_chunks.size() && m_chunks[m_chunk].size - m_used < size) {
        ++m_chunk;
        m_used = 0;
    }
    if (m_chunk == m_chunks.size()) {
        const std::size_t wanted = std::max(kChunk, size);
        m_chunks.push_back({std::make_unique_for_overwrite<char[]>(wanted), wanted});
        m_used = 0;
    }
    char* const bytes = m_chunks[m_chunk].bytes.get() + m_used;
    m_used += size;
    return bytes;
}

std::string_view Scratch::keep(std::string_view text) {
    char* const bytes = text.empty() ? nullptr : allocate(text.size());
    if (!bytes)
        return {};
    std::memcpy(bytes, text.data(), text.size());
    return {bytes, text.size()};
}

std::string& Scratch::builder() {
    m_builder.clear();
    return m_builder;
}

void Scratch::fail(std::string message) {
    if (m_failure.empty())
        m_failure = std::move(message);
}

std::string Scratch::takeFailure() {
    return std::exchange(m_failure, std::string());
}

} // namespace tavix::expression
