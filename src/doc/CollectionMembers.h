#pragma once

#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tavix {

class CTavixDoc;

/// Ids and names of the repository's collections, in its order. Empty when there are none or they cannot be read.
[[nodiscard]] std::vector<std::pair<int, std::string>> collectionChoices(CTavixDoc& document);

/// Adds the fields to the collection in their order, up to the first that cannot be added, and broadcasts hint 1 when
/// any was added. A field that the library turns down, because the collection has it already or one of the two is gone,
/// is a mapping that cannot be created; a library that breaks off while it works could not add the field. Each has a
/// message of its own. The result is the number of fields added: 0 means that everything is as it was.
int addFieldsToCollection(CTavixDoc& document, int collectionId, std::span<const int> fieldIds);

} // namespace tavix
