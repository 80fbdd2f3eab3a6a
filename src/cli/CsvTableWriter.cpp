#include "cli/CsvTableWriter.h"

#include "base/NumberText.h"

#include <algorithm>
#include <string>
#include <variant>

namespace tavix::cli {

namespace {

bool looksLikeFormula(std::string_view text) {
    return std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos && !parseNumber(text);
}

bool needsQuotes(std::string_view text) {
    return text.empty() ||
           std::any_of(text.begin(), text.end(), [](char c) { return c == ',' || c == '"' || c == '\r' || c == '\n'; });
}

} // namespace

void CsvTableWriter::begin(const Section& section) {
    m_line.clear();
    for (const Column& column : section.columns) {
        if (!m_line.empty())
            m_line += ',';
        appendText(column.key);
    }
    m_line += '\n';
    m_output.write(m_line);
}

void CsvTableWriter::row(std::span<const KvbDatavar> cells) {
    m_line.clear();
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i > 0)
            m_line += ',';
        if (const auto* text = std::get_if<std::string>(&cells[i].storage()))
            appendText(*text);
        else if (!cells[i].isNull())
            appendText(cells[i].toText().view());
    }
    m_line += '\n';
    m_output.write(m_line);
}

void CsvTableWriter::appendText(std::string_view text) {
    const bool mark = m_spreadsheet && !text.empty() && looksLikeFormula(text);
    if (!needsQuotes(text)) {
        if (mark)
            m_line += '\'';
        m_line += text;
        return;
    }
    m_line += '"';
    if (mark)
        m_line += '\'';
    for (const char c : text) {
        if (c == '"')
            m_line += '"';
        m_line += c;
    }
    m_line += '"';
}

} // namespace tavix::cli
