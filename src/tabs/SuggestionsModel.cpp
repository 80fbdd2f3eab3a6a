#include "tabs/SuggestionsModel.h"

#include "access/PrViewer.h"
#include "base/FileWriter.h"
#include "base/GenException.h"
#include "report/CountText.h"
#include "report/JobFileText.h"
#include "report/RuleSuggestions.h"

#include <algorithm>
#include <utility>

namespace tavix {

Status SuggestionsModel::Fill(PrViewer& viewer, int job, int tableId, const std::function<void()>& pulse) try {
    SuggestionOptions options;
    options.tableId = tableId;
    options.pulse = pulse;
    m_all = suggestRules(viewer, job, options);
    m_job = job;
    m_table = tableId;
    m_chosen.clear();
    for (const RuleSuggestion& suggestion : m_all)
        m_chosen.push_back(suggestion.confidence != SuggestionConfidence::Low);
    return {};
} catch (const GenException& failure) {
    return Error{failure.getText().str()};
}

std::array<std::string, SuggestionsModel::kHeadings.size()> SuggestionsModel::CellsOf(std::size_t suggestion) const {
    const RuleSuggestion& one = m_all.at(suggestion);
    std::string place = one.field;
    if (m_table == -1 || one.field.empty())
        place = one.field.empty() ? one.table : one.table + "." + one.field;
    return {std::move(place),
            std::string(suggestionWord(one.kind)),
            std::string(confidenceWord(one.confidence)),
            one.violationText(),
            one.ruleText().empty() ? one.name : one.ruleText(),
            one.reason};
}

std::string SuggestionsModel::GetSummary() const {
    const auto chosen = std::count(m_chosen.begin(), m_chosen.end(), true);
    return groupedCount(chosen) + " of " + countOf(static_cast<std::int64_t>(m_all.size()), "suggestion") + " chosen";
}

Result<std::string> SuggestionsModel::MakeFile(PrViewer& viewer) const try {
    std::vector<RuleSuggestion> chosen;
    for (std::size_t i = 0; i < m_all.size(); ++i)
        if (m_chosen[i])
            chosen.push_back(m_all[i]);
    return jobFileText(viewer, m_job, chosen, m_table);
} catch (const GenException& failure) {
    return Error{failure.getText().str()};
}

Status SuggestionsModel::Save(const std::string& path, std::string_view text) {
    const auto fail = [&path](const Error& reason) {
        return Status{Error{"The file \"" + path + "\" cannot be written: " + reason.text}};
    };
    auto file = FileWriter::open(path);
    if (!file)
        return fail(file.error());
    if (const Status written = (*file)->write(text); !written)
        return fail(written.error());
    const Status kept = (*file)->commit();
    return kept ? kept : fail(kept.error());
}

} // namespace tavix
