#pragma once

#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tavix {

class CTavixDoc;

/// Ids and names of the repository's collections, in its order; empty also when they cannot be read.
[[nodiscard]] std::vector<std::pair<int, std::string>> collectionChoices(CTavixDoc& document);

/// Adds the fields to the collection, in order, up to the first failure, which is shown; broadcasts hint 1 if any was
/// added. There are two messages: one for a field that the library rejects (the collection has it already, or field or
/// collection is gone), one for an exception. Returns the number of fields added.
int addFieldsToCollection(CTavixDoc& document, int collectionId, std::span<const int> fieldIds);

} // namespace tavix
