#pragma once

#include "findings/Catalogue.h"

#include <span>

/// The parts of the catalogue.
namespace tavix::findings {

[[nodiscard]] std::span<const CatalogueEntry> catalogueOfTypes();
[[nodiscard]] std::span<const CatalogueEntry> catalogueOfWriting();
[[nodiscard]] std::span<const CatalogueEntry> catalogueOfContents();
[[nodiscard]] std::span<const CatalogueEntry> catalogueOfShape();
[[nodiscard]] std::span<const CatalogueEntry> catalogueOfQuantities();

} // namespace tavix::findings
