#include "cli/JsonTableWriter.h"

#include "base/Ascii.h"
#include "base/TypeWords.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace tavix::cli {

namespace {

std::string jsonText(std::string_view text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

bool isJsonNumber(std::string_view text) {
    // JSON does not allow "+5", ".5" or "007" as numbers; they stay text.
    return !text.empty() && (text.front() == '-' || isAsciiDigit(text.front())) && nlohmann::json::accept(text);
}

bool isNumericWord(std::string_view type) {
    return type == typeWord(FieldType::Integer) || type == typeWord(FieldType::Real);
}

std::string cellText(const KvbDatavar& cell, bool isNumber) {
    if (cell.isNull())
        return "null";
    std::string text = cell.toText().str();
    if (const double* real = std::get_if<double>(&cell.storage()))
        return std::isfinite(*real) ? text : "null";
    if (std::holds_alternative<std::int64_t>(cell.storage()) || (isNumber && isJsonNumber(text)))
        return text;
    return jsonText(text);
}

} // namespace

void JsonTableWriter::begin(const Section& section) {
    m_keys.clear();
    m_kinds.clear();
    for (const Column& column : section.columns) {
        m_keys.push_back(jsonText(column.key) + ": ");
        m_kinds.push_back(column.kind);
    }
    m_isRecord = section.isRecord;
    m_typeColumn = section.typeColumn;
    m_line = m_several ? (m_anySection ? ",\n" : "{\n") + jsonText(section.key) + ": " : std::string();
    if (!m_isRecord)
        m_line += '[';
    m_output.write(m_line);
    m_anySection = true;
    m_anyRow = false;
}

void JsonTableWriter::row(std::span<const KvbDatavar> cells) {
    m_line = m_isRecord ? "{" : (m_anyRow ? ",\n  {" : "\n  {");
    const bool typedNumbers =
        m_typeColumn >= 0 && isNumericWord(cells[static_cast<std::size_t>(m_typeColumn)].toText().view());
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i > 0)
            m_line += ", ";
        m_line += m_keys[i];
        m_line += cellText(cells[i], m_kinds[i] == Column::Kind::Number ||
                                         (m_kinds[i] == Column::Kind::TypedValue && typedNumbers));
    }
    m_line += '}';
    m_output.write(m_line);
    m_anyRow = true;
}

void JsonTableWriter::end() {
    if (m_isRecord) {
        if (!m_anyRow)
            m_output.write("null");
    } else {
        m_output.write(m_anyRow ? "\n]" : "]");
    }
}

void JsonTableWriter::finish() {
    if (m_several)
        m_output.write(m_anySection ? "\n}\n" : "{}\n");
    else
        m_output.write("\n");
}

} // namespace tavix::cli
