#pragma once

#include "profiling/JobRunner.h"

namespace tavix::cli {

/// Where user and password of a database come from: the environment (TAVIX_SOURCE_USER and TAVIX_SOURCE_PASSWORD, or
/// those of one source, as TAVIX_SOURCE_PASSWORD_SHOP), else its user at the terminal, when the input is one and the
/// server wants them. What is typed as a password is not shown.
[[nodiscard]] source::AskCredentials sourceCredentials();

} // namespace tavix::cli
