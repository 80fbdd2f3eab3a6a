#pragma once

#include "sql/Connection.h"

#include <string>
#include <string_view>

namespace tavix::testing {

/// The rows of a query over a repository file as lines, cells separated by '|', nulls as NULL; the error's text if the
/// query fails.
inline std::string storedRows(const std::string& file, std::string_view query) {
    auto connection = sql::Connection::openFile(file, sql::OpenMode::Read);
    if (!connection)
        return connection.error().text;
    auto statement = (*connection)->prepare(query);
    if (!statement)
        return statement.error().text;
    std::string rows;
    while (statement->step() == sql::Step::Row) {
        for (int c = 0; c < statement->columnCount(); ++c) {
            rows += c == 0 ? "" : "|";
            rows += statement->isNull(c) ? std::string_view("NULL") : statement->text(c);
        }
        rows += "\n";
    }
    return rows;
}

} // namespace tavix::testing
