#pragma once

#include "base/Clock.h"
#include "base/Result.h"
#include "repository/Facts.h"
#include "sql/Connection.h"

#include <cstdint>
#include <string_view>

/// The types of fields in a run, its findings, and the findings that users have dismissed.
namespace tavix::repository {

/// The repository version that added all of it.
inline constexpr std::int64_t kFirstExamined = 9;

// run_examination.expressions
inline constexpr int kTextExpressions = 1;
inline constexpr int kTypedExpressions = 2;

/// A field of a table in a run; field 0: the table as a whole.
struct FindingPlace {
    int run = 0;
    int table = 0;
    int field = 0;
};

// Within the caller's transaction.
[[nodiscard]] Status storeExamination(sql::Connection& connection, int run, bool hasTypedExpressions);
[[nodiscard]] Status storeBreakdown(sql::Connection& connection, int run, int field, const TypeBreakdown& breakdown);
[[nodiscard]] Status storeFinding(sql::Connection& connection, const FindingPlace& place, const FindingFacts& finding);

/// Dismisses a finding in all runs, or changes the reason. The reason is a note (base/NoteText.h). Fails unless some
/// run has this finding. `field` 0: about the table.
[[nodiscard]] Status dismissFinding(sql::Connection& connection, int table, int field, std::string_view code,
                                    std::string_view author, std::string_view reason, UtcTime dismissed);
/// Fails unless it was dismissed.
[[nodiscard]] Status restoreFinding(sql::Connection& connection, int table, int field, std::string_view code);

} // namespace tavix::repository
