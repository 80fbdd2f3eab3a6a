#pragma once

#include "report/DistributionKind.h"

#include <map>
#include <string>
#include <utility>

namespace tavix {

/// The filter texts of a report's fields, one for each distribution. A field keeps its id in every run, so a filter
/// stays when the user switches between runs to compare them. Another report starts without filters.
class FieldFilters {
  public:
    /// "" for no filter. Valid until the next Set.
    [[nodiscard]] const std::string& Get(int fieldId, DistributionKind kind) const {
        static const std::string kNone;
        const auto found = m_texts.find({fieldId, kind});
        return found == m_texts.end() ? kNone : found->second;
    }
    void Set(int fieldId, DistributionKind kind, std::string text) {
        if (text.empty())
            m_texts.erase({fieldId, kind});
        else
            m_texts[{fieldId, kind}] = std::move(text);
    }
    void Clear() { m_texts.clear(); }

  private:
    std::map<std::pair<int, DistributionKind>, std::string> m_texts;
};

} // namespace tavix
