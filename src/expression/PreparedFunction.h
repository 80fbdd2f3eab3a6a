#pragma once

#include "base/Result.h"
#include "expression/Scratch.h"
#include "expression/Value.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace tavix::expression {

/// A function whose fixed arguments were parsed once for all rows. All evaluators share it, so it has no state.
class PreparedFunction {
  public:
    PreparedFunction() = default;
    PreparedFunction(const PreparedFunction&) = delete;
    PreparedFunction& operator=(const PreparedFunction&) = delete;
    virtual ~PreparedFunction() = default;

    /// The arguments are those of the call, the fixed ones included. They have the parameters' types, and none is null.
    [[nodiscard]] virtual Value call(std::span<const Value> arguments, Scratch& scratch) const = 0;
};

using Prepared = Result<std::shared_ptr<const PreparedFunction>>;

/// todate(text, format); see base/DateFormat.h. The format may be a reading of dates instead.
[[nodiscard]] Prepared prepareDateFormat(std::string_view format);
/// tonumber(text, reading); see forms/Reading.h.
[[nodiscard]] Prepared prepareNumberReading(std::string_view reading);
/// fits(text, reading).
[[nodiscard]] Prepared prepareFit(std::string_view reading);
/// regexp_extract(text, pattern[, group]). `memory`: bytes, including those while it searches.
[[nodiscard]] Prepared prepareExtraction(std::string_view pattern, std::int64_t memory);
/// regexp_replace(text, pattern, replacement).
[[nodiscard]] Prepared prepareReplacement(std::string_view pattern, std::string_view replacement, std::int64_t memory);

} // namespace tavix::expression
