#pragma once

#include "base/Clock.h"
#include "base/KvbDatavar.h"
#include "base/KvbString.h"
#include "sql/Connection.h"

#include <cstdint>
#include <string_view>
#include <variant>

/// Binds values of the library, including null, to parameters of statements.
namespace tavix::repository {

/// Instants as stored: milliseconds since 1970, UTC.
[[nodiscard]] inline std::int64_t storedTime(UtcTime time) {
    return time.time_since_epoch().count();
}

inline void bindText(sql::Statement& statement, int parameter, const KvbString& text) {
    if (text.isNull())
        statement.bindNull(parameter);
    else
        statement.bind(parameter, text.view());
}

inline void bindValue(sql::Statement& statement, int parameter, const KvbDatavar& value) {
    const KvbDatavar::Storage& storage = value.storage();
    if (const auto* integer = std::get_if<std::int64_t>(&storage))
        statement.bind(parameter, *integer);
    else if (const auto* real = std::get_if<double>(&storage))
        statement.bind(parameter, *real);
    else if (const auto* text = std::get_if<std::string>(&storage))
        statement.bind(parameter, std::string_view(*text));
    else
        statement.bindNull(parameter);
}

} // namespace tavix::repository
