#include "nav/InformationText.h"

#include "base/NumberText.h"

namespace tavix {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

// Turns all line ends into "\r\n" and removes blank lines.
std::string normalised(std::string_view text) {
    std::string lines;
    lines.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool windowsEnd = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if (windowsEnd)
            continue;
        if (text[i] == '\n' && (lines.empty() || lines.back() == '\n'))
            continue;
        lines += text[i];
    }
    while (!lines.empty() && lines.back() == '\n')
        lines.pop_back();
    replaceAll(lines, "\n", kLineEnd);
    return lines;
}

class Lines {
  public:
    void add(std::string_view label, std::string_view value) {
        m_text += label;
        m_text += value;
        m_text += kLineEnd;
    }
    /// Adds no line for an unknown number.
    void add(std::string_view label, std::int64_t value) {
        if (value >= 0)
            add(label, formatInteger(value));
    }
    [[nodiscard]] const std::string& text() const { return m_text; }

  private:
    std::string m_text;
};

std::string filterOrigin(const TableIdentity& table) {
    if (table.name.empty())
        return "Filter (based on SQL query)";
    std::string origin = "Filter (based on ";
    if (!table.catalog.empty())
        origin += table.catalog + ".";
    if (!table.schema.empty())
        origin += table.schema + ".";
    return origin + table.name + ")";
}

void addTable(Lines& lines, const TableIdentity& table, std::string_view typeLabel) {
    const bool isFilter = !table.baseTable.empty();
    if (!table.objectName.empty()) {
        lines.add("", table.objectName);
        lines.add(typeLabel, isFilter ? filterOrigin(table) : "SQL query");
        lines.add("Data source: ", table.dataSource);
        lines.add("Total records: ", table.totalRecords);
        if (isFilter)
            lines.add("Filtered records: ", table.processedRecords);
        else if (table.isSample)
            lines.add("Sampled records: ", table.processedRecords);
        lines.add(isFilter ? "Filter:" : "Query:", "");
        lines.add("", normalised(isFilter ? table.filter : table.query));
        return;
    }
    lines.add("", table.name);
    lines.add(typeLabel, "Table");
    if (!table.schema.empty())
        lines.add("Schema: ", table.schema);
    if (!table.catalog.empty())
        lines.add("Catalog: ", table.catalog);
    lines.add("Data source: ", table.dataSource);
    lines.add("Total records: ", table.totalRecords);
    if (table.isSample)
        lines.add("Sampled records: ", table.processedRecords);
}

} // namespace

std::string informationText(const TableIdentity& table) {
    Lines lines;
    addTable(lines, table, "Type: ");
    return "Name: " + lines.text();
}

std::string informationText(const TableIdentity& table, const FieldInformation& field) {
    Lines lines;
    lines.add("Field: ", field.name);
    lines.add("Defined type: ", field.definedType);
    lines.add("Defined length: ", field.definedLength);
    Lines parent;
    addTable(parent, table, "Parent type: ");
    return lines.text() + "Parent name: " + parent.text();
}

} // namespace tavix
