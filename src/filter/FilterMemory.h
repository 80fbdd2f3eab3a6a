#pragma once

#include "base/SettingsStore.h"
#include "report/DistributionKind.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

struct NamedFilter {
    std::string name;
    std::string text;

    bool operator==(const NamedFilter&) const = default;
};

/// The filters that a user used last and those that the user gave a name, kept apart for values and patterns
/// among the settings.
class FilterMemory {
  public:
    static constexpr std::size_t kMostRecent = 10;
    static constexpr std::size_t kMostNamed = 50;
    /// Bytes of a filter text; the settings file must stay small enough to be opened again.
    static constexpr std::size_t kLongestText = std::size_t{8} * 1024;
    static constexpr std::size_t kLongestName = 200;

    /// `settings` outlives the memory.
    explicit FilterMemory(SettingsStore& settings) : m_settings(settings) {}

    /// Newest first.
    [[nodiscard]] std::vector<std::string> Recent(DistributionKind kind) const;
    /// Puts a text first, and forgets the oldest beyond the limit. An empty text is no filter, and one that is too long
    /// is not remembered; both are no failure.
    Status Remember(DistributionKind kind, std::string_view text);

    /// In the order of their names without regard to case.
    [[nodiscard]] std::vector<NamedFilter> Named(DistributionKind kind) const;
    /// Keeps a text under a name, in place of what had that name in any case. White space around the name goes, and
    /// line breaks in it become blanks. Fails with nothing changed when the name is empty or too long, the text is
    /// empty or too long, or there are too many names.
    Status Keep(DistributionKind kind, std::string_view name, std::string_view text);
    /// Takes a name away; one that is not there is no failure.
    Status Forget(DistributionKind kind, std::string_view name);

  private:
    SettingsStore& m_settings;
};

} // namespace tavix
