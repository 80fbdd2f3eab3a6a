#include "repository/FileOffsetIndex.h"

#include <cstddef>
#include <utility>

namespace tavix::repository {

namespace {

/// The version that added offset indexes.
constexpr std::int64_t kOffsetIndexSince = 5;

/// Its hash is stored to detect a machine whose hashes differ.
constexpr std::string_view kProbe = "Tavix";

std::int64_t asStored(std::uint64_t number) {
    return static_cast<std::int64_t>(number);
}

std::uint64_t fromStored(std::int64_t number) {
    return static_cast<std::uint64_t>(number);
}

/// The ranges with these numbers, adjacent ones merged.
std::vector<source::FileRange> rangesOf(std::span<const std::uint32_t> numbers, std::span<const std::int64_t> offsets) {
    std::vector<source::FileRange> ranges;
    for (const std::uint32_t number : numbers) {
        const source::FileRange range{offsets[number], offsets[number + 1]};
        if (!ranges.empty() && ranges.back().end == range.begin)
            ranges.back().end = range.end;
        else
            ranges.push_back(range);
    }
    return ranges;
}

/// The list of a bucket's ranges in its page; nothing if they are not listed.
Result<std::optional<std::vector<std::uint32_t>>> readRanges(sql::Connection& connection, const OffsetIndexKey& key,
                                                             std::uint32_t bucket, std::size_t ranges) {
    using Found = std::optional<std::vector<std::uint32_t>>;
    auto page = connection.prepare("SELECT first_bucket, ranges FROM value_place WHERE run = ?1 AND field = ?2 AND "
                                   "first_bucket <= ?3 ORDER BY first_bucket DESC LIMIT 1");
    if (!page)
        return page.error();
    switch (page->bind(1, key.run).bind(2, key.field).bind(3, std::int64_t{bucket}).step()) {
    case sql::Step::Row:
        return rangesOfBucket(page->blob(1), static_cast<std::uint32_t>(page->integer(0)), bucket, ranges);
    case sql::Step::Done:
        return Found();
    default:
        return Error{connection.errorText()};
    }
}

} // namespace

Status storeFileOffsetIndex(sql::Connection& connection, int run, int table, const FileOffsetIndex& index) {
    auto insert = connection.prepare("INSERT INTO file_place(run, table_id, file_size, file_modified, file_changed, "
                                     "seed_1, seed_2, probe, offsets) VALUES(?1,?2,?3,?4,?5,?6,?7,?8,?9)");
    if (!insert)
        return insert.error();
    const std::vector<std::byte> offsets = packOffsets(index.offsets);
    insert->bind(1, run).bind(2, table);
    insert->bind(3, index.stamp.size).bind(4, index.stamp.modified).bind(5, index.stamp.changed);
    insert->bind(6, asStored(index.seeds.first)).bind(7, asStored(index.seeds.second));
    insert->bind(8, asStored(hashText(index.seeds, kProbe))).bindBlob(9, offsets);
    return insert->run();
}

Status storeFieldOffsetIndex(sql::Connection& connection, int run, int field, std::span<const OffsetIndexPage> pages) {
    if (pages.empty())
        return {};
    auto insert = connection.prepare("INSERT INTO value_place(run, field, first_bucket, ranges) VALUES(?1,?2,?3,?4)");
    if (!insert)
        return insert.error();
    insert->bind(1, run).bind(2, field);
    for (const OffsetIndexPage& page : pages)
        if (Status done = insert->bind(3, std::int64_t{page.firstBucket}).bindBlob(4, page.bytes).run(); !done)
            return done;
    return {};
}

Result<std::optional<FoundRanges>> findRanges(sql::Connection& connection, const OffsetIndexKey& key,
                                              std::string_view value) {
    const auto version = connection.schemaVersion();
    if (!version)
        return version.error();
    if (*version < kOffsetIndexSince)
        return std::optional<FoundRanges>();
    auto row = connection.prepare("SELECT file_size, file_modified, file_changed, seed_1, seed_2, probe, offsets "
                                  "FROM file_place WHERE run = ?1 AND table_id = ?2");
    if (!row)
        return row.error();
    switch (row->bind(1, key.run).bind(2, key.table).step()) {
    case sql::Step::Row:
        break;
    case sql::Step::Done:
        return std::optional<FoundRanges>();
    default:
        return Error{connection.errorText()};
    }
    const HashSeeds seeds{fromStored(row->integer(3)), fromStored(row->integer(4))};
    const auto offsets = unpackOffsets(row->blob(6));
    const bool isInFile = offsets && !offsets->empty() && offsets->back() <= row->integer(0);
    if (fromStored(row->integer(5)) != hashText(seeds, kProbe) || !isInFile)
        return std::optional<FoundRanges>();
    const std::uint32_t bucket = offsetIndexBucket(hashText(seeds, value));
    const auto ranges = readRanges(connection, key, bucket, offsets->size() - 1);
    if (!ranges)
        return ranges.error();
    if (!*ranges)
        return std::optional<FoundRanges>();
    FoundRanges found;
    found.stamp = {row->integer(0), row->integer(1), row->integer(2)};
    found.ranges = rangesOf(**ranges, *offsets);
    return std::optional(std::move(found));
}

} // namespace tavix::repository
