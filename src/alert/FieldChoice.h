#pragma once

#include "base/Result.h"
#include "report/AlertStates.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tavix {

class PrViewer;

/// The fields of a table to which an alert on a metric is copied: the user chooses some.
class FieldChoice {
  public:
    struct Field {
        int id = -1;
        std::string name;
        std::string remark; ///< what the user should know: the figure of the run, or why the field needs no copy
        bool canHave = true;
        bool isChosen = false;
    };

    /// `alert` watches a metric of a field. The field itself, and fields with the same alert, cannot be chosen.
    [[nodiscard]] static Result<FieldChoice> Read(PrViewer& viewer, const AlertState& alert);

    [[nodiscard]] const std::vector<Field>& GetFields() const { return m_fields; }
    void Choose(std::size_t field, bool isChosen);
    /// Those that have the figure as a number in this run; without, none.
    void ChooseAll(bool isChosen);
    /// "3 of 12 fields chosen".
    [[nodiscard]] std::string GetSummary() const;
    [[nodiscard]] std::size_t CountChosen() const;
    /// The alerts to be stored; with the sentence as description, since words on one field need not suit another.
    [[nodiscard]] std::vector<AlertDefinition> GetCopies() const;

  private:
    AlertDefinition m_pattern;
    std::vector<Field> m_fields;
    std::vector<bool> m_hasFigure; ///< by field
};

} // namespace tavix
