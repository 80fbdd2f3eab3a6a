#include "repository/WritablePlace.h"

#include "base/HeldRepositories.h"
#include "sql/FileCheck.h"

namespace tavix::repository {

Status checkWritablePlace(const std::string& path) {
    return sql::checkRepositoryFile(repositoryFile(path), sql::OpenMode::Create);
}

} // namespace tavix::repository
