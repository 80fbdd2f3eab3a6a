#pragma once

#include "base/Result.h"
#include "base/TextHash.h"
#include "repository/OffsetIndexPages.h"
#include "source/FileRange.h"
#include "source/FileStamp.h"
#include "sql/Connection.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

/// The places of values in the file of a table, as a run met them.
namespace tavix::repository {

/// The ranges of a file into which the places of its values are told, and by which hash.
struct FileOffsetIndex {
    source::FileStamp stamp;
    HashSeeds seeds;
    std::vector<std::int64_t> offsets; ///< where each range begins, and behind them where the last one ends
};

struct OffsetIndexKey {
    int run = -1;
    int table = -1;
    int field = -1;
};

/// Within the caller's transaction.
[[nodiscard]] Status storeFileOffsetIndex(sql::Connection& connection, int run, int table, const FileOffsetIndex& places);
[[nodiscard]] Status storeFieldOffsetIndex(sql::Connection& connection, int run, int field,
                                      std::span<const OffsetIndexPage> pages);

struct FoundRanges {
    source::FileStamp stamp;               ///< of the file that the run read
    std::vector<source::FileRange> ranges; ///< ascending, apart from each other
};

/// Where the value stands, if it stands in the file at all. Nothing when the run does not say, or when it stands in so
/// many ranges that they do not help.
[[nodiscard]] Result<std::optional<FoundRanges>> findRanges(sql::Connection& connection, const OffsetIndexKey& key,
                                                            std::string_view value);

} // namespace tavix::repository
