#include "source/EncodingDetector.h"

#include "source/Utf8.h"

#include <algorithm>
#include <cstddef>

namespace tavix::source {

namespace {

using std::string_view_literals::operator""sv;

constexpr std::size_t kZeroSample = std::size_t{64} << 10;

const CEncoding* markedEncoding(std::string_view start) {
    if (start.starts_with("\xEF\xBB\xBF"))
        return &encodingUtf8();
    // UTF-32's begins like UTF-16's.
    if (start.starts_with("\xFF\xFE\0\0"sv))
        return &encodingUtf32(false);
    if (start.starts_with("\0\0\xFE\xFF"sv))
        return &encodingUtf32(true);
    if (start.starts_with("\xFF\xFE"))
        return &encodingUtf16(false);
    if (start.starts_with("\xFE\xFF"))
        return &encodingUtf16(true);
    return nullptr;
}

const CEncoding* encodingByZeros(std::string_view start) {
    const std::size_t pairs = std::min(start.size(), kZeroSample) / 2;
    std::size_t first = 0;
    std::size_t second = 0;
    for (std::size_t i = 0; i < pairs; ++i) {
        first += start[2 * i] == '\0' ? 1 : 0;
        second += start[2 * i + 1] == '\0' ? 1 : 0;
    }
    const auto isSide = [&](std::size_t many, std::size_t few) { return many * 8 >= pairs && few * 8 <= many; };
    if (pairs < 2)
        return nullptr;
    return isSide(second, first) ? &encodingUtf16(false) : isSide(first, second) ? &encodingUtf16(true) : nullptr;
}

/// Whether there are no more misplaced bytes than well-formed characters beyond ASCII.
bool isUtf8(std::string_view start, bool isWhole) {
    std::string_view text = start.substr(0, start.size() - (isWhole ? 0 : unfinishedUtf8Tail(start)));
    std::size_t bad = 0;
    std::size_t good = 0;
    for (;;) {
        const std::size_t valid = validUtf8Prefix(text);
        if (valid == text.size() && bad == 0)
            return true;
        good += static_cast<std::size_t>(std::count_if(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(valid),
                                                       [](char c) { return static_cast<unsigned char>(c) >= 0xC0; }));
        if (valid == text.size())
            return bad <= good;
        ++bad;
        text.remove_prefix(valid + 1);
    }
}

bool isWide(const CEncoding& encoding) {
    return &encoding == &encodingUtf16(false) || &encoding == &encodingUtf16(true) ||
           &encoding == &encodingUtf32(false) || &encoding == &encodingUtf32(true);
}

} // namespace

FoundEncoding detectEncoding(std::string_view start, bool isWhole) {
    if (const CEncoding* marked = markedEncoding(start))
        return {marked, EncodingReason::Mark};
    if (const CEncoding* byZeros = encodingByZeros(start))
        return {byZeros, EncodingReason::ZeroBytes};
    if (isUtf8(start, isWhole))
        return {&encodingUtf8(), EncodingReason::Utf8};
    return {&encodingWindows1252(), EncodingReason::Fallback};
}

FoundEncoding stateEncoding(const CEncoding& encoding, std::string_view start) {
    const CEncoding* marked = markedEncoding(start);
    const bool isOrderTold = marked && isWide(encoding) && isWide(*marked);
    return {isOrderTold ? marked : &encoding, EncodingReason::Stated};
}

} // namespace tavix::source
