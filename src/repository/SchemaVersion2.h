#pragma once

namespace tavix::repository {

/// The script that leads from version 1 to version 2: custom metrics and business rules.
extern const char* const kSchemaVersion2;

} // namespace tavix::repository
