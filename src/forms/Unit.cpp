#include "forms/Unit.h"

#include "base/Ascii.h"
#include "base/Characters.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace tavix::forms {

namespace {

constexpr UnitCode kCurrencyCode = UnitCode{1} << 31;
constexpr std::size_t kCodeLength = 3;

/// ISO 4217: the national currencies in use in 2024 and those that have replaced one of them since, in order.
constexpr std::string_view kCurrencies = "AED AFN ALL AMD ANG AOA ARS AUD AWG AZN BAM BBD BDT BGN BHD BIF BMD BND BOB "
                                         "BRL BSD BTN BWP BYN BZD CAD CDF CHF CLP "
                                         "CNY COP CRC CUP CVE CZK DJF DKK DOP DZD EGP ERN ETB EUR FJD FKP GBP GEL GHS "
                                         "GIP GMD GNF GTQ GYD HKD HNL HTG HUF IDR "
                                         "ILS INR IQD IRR ISK JMD JOD JPY KES KGS KHR KMF KPW KRW KWD KYD KZT LAK LBP "
                                         "LKR LRD LSL LYD MAD MDL MGA MKD MMK MNT "
                                         "MOP MRU MUR MVR MWK MXN MYR MZN NAD NGN NIO NOK NPR NZD OMR PAB PEN PGK PHP "
                                         "PKR PLN PYG QAR RON RSD RUB RWF SAR SBD "
                                         "SCR SDG SEK SGD SHP SLE SOS SRD SSP STN SVC SYP SZL THB TJS TMT TND TOP TRY "
                                         "TTD TWD TZS UAH UGX USD UYU UZS VED VES "
                                         "VND VUV WST XAF XCD XCG XOF XPF YER ZAR ZMW ZWG ";

constexpr UnitCode packed(std::string_view code) {
    const auto letter = [&](std::size_t i) { return static_cast<UnitCode>(static_cast<unsigned char>(code[i])); };
    return kCurrencyCode | letter(0) << 16U | letter(1) << 8U | letter(2);
}

constexpr auto kCodes = [] {
    std::array<UnitCode, kCurrencies.size() / (kCodeLength + 1)> codes{};
    for (std::size_t i = 0; i < codes.size(); ++i)
        codes[i] = packed(kCurrencies.substr(i * (kCodeLength + 1), kCodeLength));
    return codes;
}();
static_assert(std::is_sorted(kCodes.begin(), kCodes.end()));

bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

/// Of a text of three characters.
UnitCode currencyOf(std::string_view code) {
    if (!std::all_of(code.begin(), code.end(), isUpper))
        return kNoUnit;
    const UnitCode unit = packed(code);
    return std::binary_search(kCodes.begin(), kCodes.end(), unit) ? unit : kNoUnit;
}

bool isCurrencySign(std::int32_t character) {
    return character == '$' || (character >= 0x80 && u_charType(character) == U_CURRENCY_SYMBOL);
}

} // namespace

UnitCode takeUnitAtStart(std::string_view& text) {
    if (text.empty() || isAsciiDigit(text.front()))
        return kNoUnit;
    if (text.size() > kCodeLength && isUpper(text.front())) {
        const UnitCode unit = isAsciiLetter(text[kCodeLength]) ? kNoUnit : currencyOf(text.substr(0, kCodeLength));
        if (unit != kNoUnit)
            text.remove_prefix(kCodeLength);
        return unit;
    }
    std::size_t at = 0;
    const std::int32_t character = nextCharacter(text, at);
    if (!isCurrencySign(character))
        return kNoUnit;
    text.remove_prefix(at);
    return static_cast<UnitCode>(character);
}

UnitCode takeUnitAtEnd(std::string_view& text) {
    if (text.empty() || isAsciiDigit(text.back()))
        return kNoUnit;
    if (text.back() == '%') {
        text.remove_suffix(1);
        return kPercent;
    }
    if (text.size() > kCodeLength && isUpper(text.back())) {
        const std::size_t rest = text.size() - kCodeLength;
        const UnitCode unit = isAsciiLetter(text[rest - 1]) ? kNoUnit : currencyOf(text.substr(rest));
        if (unit != kNoUnit)
            text = text.substr(0, rest);
        return unit;
    }
    std::size_t start = text.size() - 1;
    while (start > 0 && (static_cast<unsigned char>(text[start]) & 0xC0U) == 0x80)
        --start;
    std::size_t at = start;
    const std::int32_t character = nextCharacter(text, at);
    if (at != text.size() || !isCurrencySign(character))
        return kNoUnit;
    text = text.substr(0, start);
    return static_cast<UnitCode>(character);
}

std::string unitText(UnitCode unit) {
    std::string text;
    if ((unit & kCurrencyCode) != 0)
        for (const unsigned shift : {16U, 8U, 0U})
            text += static_cast<char>((unit >> shift) & 0x7FU);
    else if (unit != kNoUnit)
        appendCharacter(text, static_cast<std::int32_t>(unit));
    return text;
}

std::optional<UnitCode> parseUnit(std::string_view text) {
    if (text == "%")
        return kPercent;
    if (text.size() == kCodeLength && isUpper(text.front())) {
        const UnitCode unit = currencyOf(text);
        return unit == kNoUnit ? std::nullopt : std::optional(unit);
    }
    const UnitCode unit = takeUnitAtStart(text);
    return unit != kNoUnit && text.empty() ? std::optional(unit) : std::nullopt;
}

} // namespace tavix::forms
