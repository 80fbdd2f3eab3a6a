#pragma once

#include "base/Result.h"
#include "findings/RunFindings.h"
#include "forms/ColumnReading.h"
#include "job/JobDescription.h"
#include "profiling/ColumnValues.h"
#include "profiling/PackedResult.h"
#include "repository/Facts.h"
#include "repository/OffsetIndexPages.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tavix::profiling {

/// Everything that a run stores about one field. `facts` refers to `packed`.
struct FieldProfile {
    repository::FieldFacts facts;
    findings::FieldSummary summary; ///< without table and source
    std::unique_ptr<PackedResult> packed;
    std::vector<repository::OffsetIndexPage> offsetIndex; ///< not set by profileField()
};

/// The statements of a job about how the values of a field are read.
struct ReadingChoice {
    forms::StatedDates dates = forms::StatedDates::Nothing;
    /// A field has figures over the values that fit its reading if they are at least so many percent of the rows that
    /// are neither null, empty nor blank.
    double leastPercent = job::kFitsAtLeast;
};

struct ProfilingContext {
    SpillFile& file;
    ByteStore& store; ///< for packed blocks
    StopSignal& stop;
    std::size_t memory =
        0; ///< bytes for lists that grow with the values: all lists of a spilled column, else the patterns
    unsigned threads = 1; ///< for a long column, including the caller
    std::int64_t now = 0; ///< the moment of the run, in units of base/DateTicks.h
    ReadingChoice reading{};
};

/// The memory that profileField() needs besides the values when they are in memory.
[[nodiscard]] std::size_t profilingMemory(const ColumnValues& values);

/// Computes the metrics of a column from its counted values and packs its distributions. Uses up the values. The result
/// does not depend on whether the values are in memory or were spilled. `ordinal` counts from 1. Fails when a file
/// fails, and with StopSignal::stopped().
[[nodiscard]] Result<FieldProfile> profileField(ColumnValues& values, const std::string& name, int ordinal,
                                                const ProfilingContext& context);

} // namespace tavix::profiling
