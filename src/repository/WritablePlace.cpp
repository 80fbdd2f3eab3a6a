#include "repository/WritablePlace.h"

#include "sql/FileCheck.h"

#include <string_view>

namespace tavix::repository {

Status checkWritablePlace(const std::string& path) {
    constexpr std::string_view kScheme = "sqlite:";
    return sql::checkRepositoryFile(path.starts_with(kScheme) ? path.substr(kScheme.size()) : path,
                                    sql::OpenMode::Create);
}

} // namespace tavix::repository
