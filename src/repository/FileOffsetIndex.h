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

/// The offset index of a table's file: which ranges of the file hold which values of a field.
namespace tavix::repository {

/// The ranges to which the indexes of a file's fields refer, and the seeds of their hash.
struct FileOffsetIndex {
    source::FileStamp stamp;
    HashSeeds seeds;
    std::vector<std::int64_t> offsets; ///< the start of each range, then the end of the last one
};

struct OffsetIndexKey {
    int run = -1;
    int table = -1;
    int field = -1;
};

/// Within the caller's transaction.
[[nodiscard]] Status storeFileOffsetIndex(sql::Connection& connection, int run, int table,
                                          const FileOffsetIndex& index);
[[nodiscard]] Status storeFieldOffsetIndex(sql::Connection& connection, int run, int field,
                                           std::span<const OffsetIndexPage> pages);

struct FoundRanges {
    source::FileStamp stamp;               ///< of the file that the run read
    std::vector<source::FileRange> ranges; ///< ascending and disjoint
};

/// The ranges that may hold the value; no other range does. Nothing without an index, or if so many ranges may hold it
/// that the index does not help.
[[nodiscard]] Result<std::optional<FoundRanges>> findRanges(sql::Connection& connection, const OffsetIndexKey& key,
                                                            std::string_view value);

} // namespace tavix::repository
