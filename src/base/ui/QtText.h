#pragma once

#include "base/KvbString.h"

#include <QString>

#include <string>
#include <string_view>

/// Conversion between UTF-8, which everything below the widgets uses, and QString. Invalid bytes become U+FFFD.
namespace tavix {

[[nodiscard]] inline QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

[[nodiscard]] inline QString toQString(const std::string& text) {
    return toQString(std::string_view(text));
}

[[nodiscard]] inline QString toQString(const char* text) {
    return QString::fromUtf8(text);
}

/// Null gives a null QString.
[[nodiscard]] inline QString toQString(const KvbString& text) {
    return text.isNull() ? QString() : toQString(text.view());
}

[[nodiscard]] inline std::string toUtf8(const QString& text) {
    return text.toUtf8().toStdString();
}

} // namespace tavix
