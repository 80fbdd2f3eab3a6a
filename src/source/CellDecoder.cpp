#include "source/CellDecoder.h"

#include "source/Utf8.h"

#include <cstring>

namespace tavix::source {

Cell decodeCell(const RawCell& raw, bool isValid, char quote, TextArena& arena, bool& hadBadBytes) {
    const char* data = raw.data;
    std::size_t size = raw.size;
    if (raw.hasDoubledQuotes || raw.tailSize > 0) {
        char* const at = arena.allocate(raw.size + raw.tailSize);
        char* to = at;
        for (std::size_t i = 0; i < raw.size; ++i) {
            *to++ = raw.data[i];
            if (raw.data[i] == quote && i + 1 < raw.size)
                ++i;
        }
        std::memcpy(to, raw.data + raw.size + 1, raw.tailSize);
        to += raw.tailSize;
        data = at;
        size = static_cast<std::size_t>(to - at);
    }
    if (!isValid && validUtf8Prefix({data, size}) != size) {
        hadBadBytes = true;
        char* const at = arena.allocate(size * 3);
        const std::size_t repaired = repairUtf8({data, size}, at);
        arena.giveBack(size * 3 - repaired);
        data = at;
        size = repaired;
    }
    return {data, static_cast<std::uint32_t>(size), size == 0 && !raw.isQuoted};
}

} // namespace tavix::source
