#pragma once

#include "base/SettingsStore.h"
#include "report/DistributionKind.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

struct NamedFilter {
    std::string name;
    std::string text;

    bool operator==(const NamedFilter&) const = default;
};

/// A user's recent and named filters, kept separately for values and patterns among the settings.
class FilterMemory {
  public:
    static constexpr std::size_t kMostRecent = 10;
    static constexpr std::size_t kMostNamed = 50;
    /// Bytes of a filter text; limits the size of the settings file, which must be readable again.
    static constexpr std::size_t kLongestText = std::size_t{8} * 1024;
    static constexpr std::size_t kLongestName = 200;

    /// `settings` must outlive the memory.
    explicit FilterMemory(SettingsStore& settings) : m_settings(settings) {}

    /// Newest first.
    [[nodiscard]] std::vector<std::string> Recent(DistributionKind kind) const;
    /// Puts a text first and drops the oldest beyond the limit. Ignores an empty text and one that is too long.
    Status Remember(DistributionKind kind, std::string_view text);

    /// Sorted by name, ignoring case.
    [[nodiscard]] std::vector<NamedFilter> Named(DistributionKind kind) const;
    /// The existing name that Keep() would replace.
    [[nodiscard]] std::optional<std::string> FindName(DistributionKind kind, std::string_view name) const;
    /// Keeps a text under a name and replaces a filter whose name differs only in case. Trims the name and turns its
    /// line breaks into blanks. Fails and changes nothing when the name is empty or too long, the text is empty or too
    /// long, or there are too many names.
    Status Keep(DistributionKind kind, std::string_view name, std::string_view text);
    /// Removes a name; does nothing when there is no such name.
    Status Forget(DistributionKind kind, std::string_view name);

  private:
    SettingsStore& m_settings;
};

} // namespace tavix
