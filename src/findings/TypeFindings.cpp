#include "findings/FieldRules.h"

#include <fmt/format.h>

namespace tavix::findings {

namespace {

std::string fitsCondition(std::string_view reading) {
    return fmt::format("fits(`Value`, {})", literalOf(reading));
}

std::string_view codeOf(std::string_view kind) {
    if (kind == "date")
        return "dates-as-text";
    return kind == "boolean" ? "booleans-as-text" : "numbers-as-text";
}

std::string formsText(const std::vector<FormFigure>& forms) {
    std::string text;
    for (const FormFigure& form : forms)
        text += fmt::format("{}{} such as {} ({})", text.empty() ? "" : ", ", form.form, quoted(form.example),
                            form.hits.rows);
    return text;
}

/// Dates of one field that are written in several ways; the most frequent way is the right one.
void addMixedDates(FieldCase& field) {
    std::vector<FormFigure> dates;
    for (const FormFigure& form : field.figures.forms)
        if (form.form.starts_with("date"))
            dates.push_back(form);
    if (dates.size() < 2)
        return;
    Hits others;
    for (std::size_t i = 1; i < dates.size(); ++i) {
        others.values += dates[i].hits.values;
        others.rows += dates[i].hits.rows;
    }
    field.add("mixed-date-forms", Likelihood::Likely, others, "", formsText(dates));
}

} // namespace

void addTypes(FieldCase& field) {
    const FieldFigures& figures = field.figures;
    if (!field.isText())
        return;
    const Hits& shown = field.values.shown();
    if (!figures.ambiguity.empty())
        field.add("ambiguous-readings", Likelihood::Likely, {}, "", std::string(figures.ambiguity));
    if (!figures.hasFigures || figures.fit.rows == 0)
        return;
    if (figures.kindWord() == "date")
        addMixedDates(field);
    const bool isAll = figures.fit.rows == shown.rows;
    field.add(codeOf(figures.kindWord()), Likelihood::Definite, figures.fit, fitsCondition(figures.reading),
              fmt::format("read as {}", figures.reading));
    if (!isAll)
        field.add("values-that-do-not-fit", Likelihood::Definite,
                  {shown.values - figures.fit.values, shown.rows - figures.fit.rows},
                  fmt::format("not isblank(`Value`) and not {}", fitsCondition(figures.reading)),
                  fmt::format("{} of {} rows are read as {}", figures.fit.rows, shown.rows, figures.reading));
}

} // namespace tavix::findings
