#include "base/Encodings.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <charconv>

namespace tavix {

namespace {

// Written by hand, because ICU's own numeric aliases name converters other than the usual code pages (its "cp1200" is
// big-endian, and its 1252 has no euro sign).
constexpr CEncoding kCatalogue[] = {
    {65001, "UTF-8", "Unicode (UTF-8)", "UTF-8"},
    {37, "IBM037", "IBM EBCDIC (US-Canada)", "ibm-37"},
    {437, "IBM437", "OEM United States", "ibm-437"},
    {500, "IBM500", "IBM EBCDIC (International)", "ibm-500"},
    {720, "DOS-720", "Arabic (DOS)", "ibm-720"},
    {737, "IBM737", "Greek (DOS)", "ibm-737"},
    {775, "IBM775", "Baltic (DOS)", "ibm-775"},
    {850, "IBM850", "Western European (DOS)", "ibm-850"},
    {852, "IBM852", "Central European (DOS)", "ibm-852"},
    {855, "IBM855", "Cyrillic (OEM)", "ibm-855"},
    {857, "IBM857", "Turkish (DOS)", "ibm-857"},
    {858, "IBM00858", "Western European with euro (DOS)", "ibm-858"},
    {860, "IBM860", "Portuguese (DOS)", "ibm-860"},
    {861, "IBM861", "Icelandic (DOS)", "ibm-861"},
    {862, "IBM862", "Hebrew (DOS)", "ibm-862"},
    {863, "IBM863", "French Canadian (DOS)", "ibm-863"},
    {864, "IBM864", "Arabic (864)", "ibm-864"},
    {865, "IBM865", "Nordic (DOS)", "ibm-865"},
    {866, "IBM866", "Cyrillic (DOS)", "ibm-866"},
    {869, "IBM869", "Modern Greek (DOS)", "ibm-869"},
    {870, "IBM870", "IBM EBCDIC (Multilingual Latin-2)", "ibm-870"},
    {874, "windows-874", "Thai (Windows)", "windows-874"},
    {875, "IBM875", "IBM EBCDIC (Greek)", "ibm-875"},
    {932, "Shift_JIS", "Japanese (Shift-JIS)", "windows-932"},
    {936, "GBK", "Chinese Simplified (GBK)", "windows-936"},
    {949, "windows-949", "Korean (Windows)", "windows-949"},
    {950, "Big5", "Chinese Traditional (Big5)", "windows-950"},
    {1026, "IBM1026", "IBM EBCDIC (Turkish Latin-5)", "ibm-1026"},
    {1047, "IBM1047", "IBM EBCDIC (Open systems Latin-1)", "ibm-1047"},
    {1140, "IBM01140", "IBM EBCDIC (US-Canada, euro)", "ibm-1140"},
    {1141, "IBM01141", "IBM EBCDIC (Germany, euro)", "ibm-1141"},
    {1142, "IBM01142", "IBM EBCDIC (Denmark-Norway, euro)", "ibm-1142"},
    {1143, "IBM01143", "IBM EBCDIC (Finland-Sweden, euro)", "ibm-1143"},
    {1144, "IBM01144", "IBM EBCDIC (Italy, euro)", "ibm-1144"},
    {1145, "IBM01145", "IBM EBCDIC (Spain, euro)", "ibm-1145"},
    {1146, "IBM01146", "IBM EBCDIC (United Kingdom, euro)", "ibm-1146"},
    {1147, "IBM01147", "IBM EBCDIC (France, euro)", "ibm-1147"},
    {1148, "IBM01148", "IBM EBCDIC (International, euro)", "ibm-1148"},
    {1149, "IBM01149", "IBM EBCDIC (Iceland, euro)", "ibm-1149"},
    {1200, "UTF-16LE", "Unicode (UTF-16, little-endian)", "UTF-16LE"},
    {1201, "UTF-16BE", "Unicode (UTF-16, big-endian)", "UTF-16BE"},
    {1250, "windows-1250", "Central European (Windows)", "windows-1250"},
    {1251, "windows-1251", "Cyrillic (Windows)", "windows-1251"},
    {1252, "windows-1252", "Western European (Windows)", "windows-1252"},
    {1253, "windows-1253", "Greek (Windows)", "windows-1253"},
    {1254, "windows-1254", "Turkish (Windows)", "windows-1254"},
    {1255, "windows-1255", "Hebrew (Windows)", "windows-1255"},
    {1256, "windows-1256", "Arabic (Windows)", "windows-1256"},
    {1257, "windows-1257", "Baltic (Windows)", "windows-1257"},
    {1258, "windows-1258", "Vietnamese (Windows)", "windows-1258"},
    {10000, "macintosh", "Western European (Mac)", "macintosh"},
    {10006, "x-mac-greek", "Greek (Mac)", "x-mac-greek"},
    {10007, "x-mac-cyrillic", "Cyrillic (Mac)", "x-mac-cyrillic"},
    {10029, "x-mac-ce", "Central European (Mac)", "x-mac-ce"},
    {10081, "x-mac-turkish", "Turkish (Mac)", "x-mac-turkish"},
    {12000, "UTF-32LE", "Unicode (UTF-32, little-endian)", "UTF-32LE"},
    {12001, "UTF-32BE", "Unicode (UTF-32, big-endian)", "UTF-32BE"},
    {20127, "US-ASCII", "US-ASCII", "US-ASCII"},
    {20273, "IBM273", "IBM EBCDIC (Germany)", "ibm-273"},
    {20277, "IBM277", "IBM EBCDIC (Denmark-Norway)", "ibm-277"},
    {20278, "IBM278", "IBM EBCDIC (Finland-Sweden)", "ibm-278"},
    {20280, "IBM280", "IBM EBCDIC (Italy)", "ibm-280"},
    {20284, "IBM284", "IBM EBCDIC (Spain)", "ibm-284"},
    {20285, "IBM285", "IBM EBCDIC (United Kingdom)", "ibm-285"},
    {20297, "IBM297", "IBM EBCDIC (France)", "ibm-297"},
    {20866, "KOI8-R", "Cyrillic (KOI8-R)", "KOI8-R"},
    {21866, "KOI8-U", "Cyrillic (KOI8-U)", "KOI8-U"},
    {28591, "ISO-8859-1", "Western European (ISO)", "ISO-8859-1"},
    {28592, "ISO-8859-2", "Central European (ISO)", "ISO-8859-2"},
    {28593, "ISO-8859-3", "Latin 3 (ISO)", "ISO-8859-3"},
    {28594, "ISO-8859-4", "Baltic (ISO)", "ISO-8859-4"},
    {28595, "ISO-8859-5", "Cyrillic (ISO)", "ISO-8859-5"},
    {28596, "ISO-8859-6", "Arabic (ISO)", "ISO-8859-6"},
    {28597, "ISO-8859-7", "Greek (ISO)", "ISO-8859-7"},
    {28598, "ISO-8859-8", "Hebrew (ISO)", "ISO-8859-8"},
    {28599, "ISO-8859-9", "Turkish (ISO)", "ISO-8859-9"},
    {28603, "ISO-8859-13", "Estonian (ISO)", "ISO-8859-13"},
    {28605, "ISO-8859-15", "Western European with euro (ISO)", "ISO-8859-15"},
    {50220, "ISO-2022-JP", "Japanese (JIS)", "ISO-2022-JP"},
    {50225, "ISO-2022-KR", "Korean (ISO)", "ISO-2022-KR"},
    {51932, "EUC-JP", "Japanese (EUC)", "EUC-JP"},
    {51949, "EUC-KR", "Korean (EUC)", "EUC-KR"},
    {52936, "HZ-GB-2312", "Chinese Simplified (HZ)", "HZ-GB-2312"},
    {54936, "GB18030", "Chinese Simplified (GB18030)", "GB18030"},
    {65000, "UTF-7", "Unicode (UTF-7)", "UTF-7"},
};

std::string_view withoutPrefix(std::string_view text) {
    if (text.size() > 2 && (text[0] == 'c' || text[0] == 'C') && (text[1] == 'p' || text[1] == 'P'))
        text.remove_prefix(2);
    return text;
}

} // namespace

std::span<const CEncoding> encodingCatalogue() {
    return kCatalogue;
}

const CEncoding* findEncoding(int code) {
    const auto* const found = std::find_if(std::begin(kCatalogue), std::end(kCatalogue),
                                           [&](const CEncoding& encoding) { return encoding.code == code; });
    return found == std::end(kCatalogue) ? nullptr : found;
}

const CEncoding* findEncoding(std::string_view name) {
    constexpr std::size_t kLongestName = 60; // ICU's name
    if (name.empty() || name.size() > kLongestName || name.find('\0') != std::string_view::npos)
        return nullptr;
    const std::string_view digits = withoutPrefix(name);
    int code = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code);
    if (error == std::errc() && end == digits.data() + digits.size())
        return findEncoding(code);
    const std::string text(name);
    if (ucnv_compareNames("UTF-16", text.c_str()) == 0)
        return &encodingUtf16(false);
    if (ucnv_compareNames("UTF-32", text.c_str()) == 0)
        return &encodingUtf32(false);
    for (const CEncoding& encoding : kCatalogue)
        if (ucnv_compareNames(encoding.name, text.c_str()) == 0)
            return &encoding;
    const auto canonical = [](const char* one) {
        UErrorCode status = U_ZERO_ERROR;
        const char* found = ucnv_getAlias(one, 0, &status);
        return U_SUCCESS(status) && found ? std::string_view(found) : std::string_view();
    };
    const std::string_view wanted = canonical(text.c_str());
    if (wanted.empty())
        return nullptr;
    for (const CEncoding& encoding : kCatalogue)
        if (canonical(encoding.converter) == wanted)
            return &encoding;
    return nullptr;
}

const CEncoding& encodingUtf8() {
    return kCatalogue[0];
}

const CEncoding& encodingUtf16(bool isBigEndian) {
    return *findEncoding(isBigEndian ? 1201 : 1200);
}

const CEncoding& encodingUtf32(bool isBigEndian) {
    return *findEncoding(isBigEndian ? 12001 : 12000);
}

const CEncoding& encodingWindows1252() {
    return *findEncoding(1252);
}

} // namespace tavix
