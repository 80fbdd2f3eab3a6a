#include "base/KvbDatavar.h"

#include "base/NumberText.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tavix {

KvbDatavar::KvbDatavar(const KvbString& text) {
    if (!text.isNull())
        m_value = text.str();
}

KvbString KvbDatavar::toText() && {
    if (auto* text = std::get_if<std::string>(&m_value))
        return std::move(*text);
    return std::as_const(*this).toText();
}

KvbString KvbDatavar::toText() const& {
    if (const auto* text = std::get_if<std::string>(&m_value))
        return *text;
    if (const auto* integer = std::get_if<std::int64_t>(&m_value))
        return formatInteger(*integer);
    if (const auto* real = std::get_if<double>(&m_value))
        return formatReal(*real);
    return {};
}

std::int64_t KvbDatavar::toInt64() const {
    if (const auto* integer = std::get_if<std::int64_t>(&m_value))
        return *integer;
    if (const auto* text = std::get_if<std::string>(&m_value)) {
        if (const auto integer = parseInteger(*text))
            return *integer;
    }
    return saturateToInt64(toDouble());
}

int KvbDatavar::toInt() const {
    constexpr std::int64_t kLow = std::numeric_limits<int>::min();
    constexpr std::int64_t kHigh = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(toInt64(), kLow, kHigh));
}

double KvbDatavar::toDouble() const {
    if (const auto* real = std::get_if<double>(&m_value))
        return *real;
    if (const auto* integer = std::get_if<std::int64_t>(&m_value))
        return static_cast<double>(*integer);
    if (const auto* text = std::get_if<std::string>(&m_value))
        return parseNumber(*text).value_or(0.0);
    return 0.0;
}

} // namespace tavix
