#pragma once

#include "report/FieldEvidence.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tavix {

class PrViewer;

/// A field of the run that may refer to another, or be referred to.
struct ReferenceField {
    int table = -1;
    int base = -1; ///< the table that a filtered table filters, else `table`
    bool isFiltered = false;
    std::string tableName;
    FieldRecord field;
};

/// The values of a field all occur, or nearly all, in a field of another table that identifies its rows.
struct Reference {
    std::size_t to = 0;               ///< the index of that field
    std::int64_t values = 0;          ///< of the referring field
    std::int64_t rowsWithout = 0;     ///< whose value does not occur there
    std::vector<std::string> without; ///< those values, the most frequent first; at most kMostWithout
    bool hasAllWithout = true;

    static constexpr std::size_t kMostWithout = 50;
};

/// Finds what each of the fields `wanted` (indexes into `fields`) refers to, at most one field each. Values are
/// compared by 128 bits of a hash. `pulse` is called regularly. Throws GenException.
[[nodiscard]] std::vector<std::pair<std::size_t, Reference>> findReferences(PrViewer& viewer,
                                                                            const std::vector<ReferenceField>& fields,
                                                                            const std::vector<std::size_t>& wanted,
                                                                            const std::function<void()>& pulse);

} // namespace tavix
