#include "support/RunScript.h"

#include "sql/Connection.h"

#include <stdexcept>

namespace tavix::testing {

void runScript(const std::string& repository, const std::string& script) {
    auto connection = sql::Connection::openFile(repository, sql::OpenMode::Write);
    if (!connection)
        throw std::runtime_error(connection.error().text);
    if (const Status done = (*connection)->execute(script); !done)
        throw std::runtime_error(done.error().text);
}

} // namespace tavix::testing
