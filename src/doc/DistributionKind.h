#pragma once

namespace tavix {

/// The two distributions of a field; each has a filter of its own.
enum class DistributionKind { Frequency, Pattern };

} // namespace tavix
