#pragma once

#include "base/Result.h"
#include "profiling/ColumnValues.h"
#include "profiling/OrderFigures.h"
#include "profiling/PackedResult.h"
#include "repository/Facts.h"
#include "repository/OffsetIndexPages.h"

#include <memory>
#include <string>
#include <vector>

namespace tavix::profiling {

/// Everything that a run says about one field. `facts` borrows `packed`.
struct FieldFigures {
    repository::FieldFacts facts;
    std::unique_ptr<PackedResult> packed;
    std::vector<repository::OffsetIndexPage> places; ///< not by computeFigures()
};

/// What computing takes from outside.
struct FigureContext {
    SpillFile& file;
    ByteStore& store; ///< keeps what is packed
    StopSignal& stop;
    std::size_t memory = 0; ///< bytes for lists that grow with the values: all of a spilled column, else the patterns
    unsigned threads = 1;   ///< how many may work on a long column, the caller among them
};

/// How much memory computeFigures() takes for a moment beside the values, when they are in memory.
[[nodiscard]] std::size_t figuringTakes(const ColumnValues& values);

/// Computes the figures of a column from its counted values, once per distinct value, and packs them. The values are
/// used up. They are the same figures and blocks whether the values lie in memory or were spilled. `ordinal` counts
/// from 1. Fails when a file fails, and with StopSignal::stopped().
[[nodiscard]] Result<FieldFigures> computeFigures(ColumnValues& values, const std::string& name, int ordinal,
                                                  const FigureContext& context);

} // namespace tavix::profiling
