#pragma once

#include "profiling/JobRunner.h"

namespace tavix::cli {

/// Gets the user and password of a database from the environment (TAVIX_SOURCE_USER and TAVIX_SOURCE_PASSWORD, or those
/// of one source, such as TAVIX_SOURCE_PASSWORD_SHOP), else, if the server requires them, from the terminal, where a
/// password is not echoed.
[[nodiscard]] source::AskCredentials sourceCredentials();

} // namespace tavix::cli
