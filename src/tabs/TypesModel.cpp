#include "tabs/TypesModel.h"

#include "report/CountText.h"

#include <utility>
#include <vector>

namespace tavix {

namespace {

constexpr std::string_view kNotExaminedHere =
    "Types: not examined. The run is of an older version; profile again to see which types the values fit.";

std::string remarkOf(const FieldRecord& field, const FieldBreakdown& breakdown) {
    std::string remark = ambiguityText(breakdown);
    std::string declared = declaredText(field, breakdown);
    if (!declared.empty() && disagreesWithDeclared(field, breakdown))
        declared += " (they disagree)";
    if (!remark.empty() && !declared.empty())
        remark += "\n";
    return remark + declared;
}

} // namespace

void TypesModel::Clear() {
    m_text.clear();
    m_remark.clear();
    m_misfitCondition.clear();
    m_misfitHeading.clear();
    m_forms.Clear();
    m_misfits.Clear();
}

Status TypesModel::Fill(PrViewer& viewer, const FieldRecord& field) {
    Clear();
    const auto breakdown = readFieldBreakdown(viewer, field.id);
    if (!breakdown)
        return breakdown.error();
    std::vector<CountedValue> misfits;
    if (breakdown->hasMisfits() && field.freqCount <= kMostToSearch) {
        auto read = readMisfits(viewer, field.id, *breakdown, kMostMisfits);
        if (!read)
            return read.error();
        misfits = std::move(*read);
    }
    m_text = breakdown->isExamined ? "Types: " + breakdownText(*breakdown, misfits) : std::string(kNotExaminedHere);
    m_remark = remarkOf(field, *breakdown);
    m_forms.Show(*breakdown);
    if (!breakdown->hasMisfits())
        return {};
    m_misfitCondition = misfitCondition(breakdown->reading);
    m_misfitRows = breakdown->misfitRows();
    m_misfitHeading = countOf(breakdown->misfitValues(), "value") +
                      (breakdown->misfitValues() == 1 ? " does not fit" : " do not fit");
    m_misfits.Show(*breakdown, std::move(misfits));
    return {};
}

} // namespace tavix
