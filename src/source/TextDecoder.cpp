#include "source/TextDecoder.h"

#include "base/Characters.h"

#include <fmt/format.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/utf16.h>

#include <cstddef>

namespace tavix::source {

namespace {

constexpr std::size_t kUnits = std::size_t{1} << 15;
/// A lone low surrogate, which no converter produces: marks damage until it becomes kNoUtf8.
constexpr char16_t kDamage = 0xDFFF;
constexpr char kNoUtf8 = '\xFF';

void markDamage(const void* /*context*/, UConverterToUnicodeArgs* arguments, const char* /*bytes*/,
                std::int32_t /*length*/, UConverterCallbackReason reason, UErrorCode* status) {
    if (reason > UCNV_IRREGULAR)
        return; // the converter is reset, closed or cloned
    *status = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(arguments, &kDamage, 1, 0, status);
}

/// ICU's tables of DOS code pages permute three control characters: byte 1A for 1C, 1C for 7F and 7F for 1A. In files
/// they mean what they mean in ASCII.
bool hasRotatedControls(UConverter* converter) {
    if (ucnv_getMinCharSize(converter) != 1)
        return false;
    constexpr char kDelete = '\x7F';
    const char* byte = &kDelete;
    UErrorCode status = U_ZERO_ERROR;
    const UChar32 found = ucnv_getNextUChar(converter, &byte, byte + 1, &status);
    ucnv_reset(converter);
    return U_SUCCESS(status) && found == 0x1A;
}

char16_t rotatedBack(char16_t c) {
    return c == 0x1C ? u'\x1A' : c == 0x7F ? u'\x1C' : c == 0x1A ? u'\x7F' : c;
}

} // namespace

TextDecoder::TextDecoder(UConverter* converter)
    : m_converter(converter),
      m_units(kUnits),
      m_text(kUnits * 3 + 4, '\0'),
      m_hasRotatedControls(hasRotatedControls(converter)) {}

TextDecoder::~TextDecoder() {
    ucnv_close(m_converter);
}

Result<std::unique_ptr<TextDecoder>> TextDecoder::open(const CEncoding& encoding) {
    UErrorCode status = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(encoding.converter, &status);
    if (U_SUCCESS(status))
        ucnv_setToUCallBack(converter, &markDamage, nullptr, nullptr, nullptr, &status);
    if (U_FAILURE(status)) {
        ucnv_close(converter);
        return Error{fmt::format("the encoding {} cannot be read: {}", encoding.name, u_errorName(status))};
    }
    return std::unique_ptr<TextDecoder>(new TextDecoder(converter));
}

std::string_view TextDecoder::decode(std::string_view& bytes, bool isLast) {
    const char* source = bytes.data();
    const char* const sourceEnd = source + bytes.size();
    char16_t* units = m_units.data();
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(m_converter, &units, units + m_units.size(), &source, sourceEnd, nullptr, isLast ? 1 : 0, &status);
    m_hasMore = status == U_BUFFER_OVERFLOW_ERROR;
    bytes.remove_prefix(static_cast<std::size_t>(source - bytes.data()));

    char* to = m_text.data();
    for (const char16_t* unit = m_units.data(); unit != units; ++unit) {
        const char16_t c = *unit;
        if (c < 0x80)
            *to++ = static_cast<char>(m_hasRotatedControls ? rotatedBack(c) : c);
        else if (!U16_IS_SURROGATE(c))
            to = putCharacter(to, c);
        else if (U16_IS_SURROGATE_LEAD(c))
            m_high = c;
        else if (m_high != 0) {
            to = putCharacter(to, U16_GET_SUPPLEMENTARY(m_high, c));
            m_high = 0;
        } else {
            *to++ = kNoUtf8;
        }
    }
    return {m_text.data(), static_cast<std::size_t>(to - m_text.data())};
}

} // namespace tavix::source
