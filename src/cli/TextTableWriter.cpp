#include "cli/TextTableWriter.h"

#include "base/NumberText.h"
#include "cli/DisplayText.h"
#include "report/FitFigures.h"

#include <algorithm>
#include <optional>

namespace tavix::cli {

namespace {

constexpr std::size_t kRowsForWidths = 1000;
constexpr std::size_t kWidestCell = 60;
constexpr std::size_t kWidestProse = 72;
constexpr std::string_view kGap = "  ";

/// The number to round for reading; nothing for a cell that is shown in full.
std::optional<double> roundedNumber(const KvbDatavar& value, const Column& column) {
    if (const double* real = std::get_if<double>(&value.storage()))
        return *real;
    const auto* text = std::get_if<std::string>(&value.storage());
    if (!text || !column.isComputed || (column.places < 0 && parseInteger(*text)))
        return std::nullopt;
    return parseNumber(*text);
}

} // namespace

void TextTableWriter::begin(const Section& section) {
    m_section = section;
    m_headings.clear();
    m_widths.clear();
    m_waiting.clear();
    m_settled = false;
    for (const Column& column : std::span(section.columns).first(section.textColumns())) {
        Cell cell{column.title, displayWidth(column.title), column.kind == Column::Kind::Number};
        m_widths.push_back(cell.width);
        m_headings.push_back(std::move(cell));
    }
    if (m_several) {
        m_output.write((m_anySection ? "\n" : "") + printable(section.title) + "\n");
    }
    m_anySection = true;
}

void TextTableWriter::row(std::span<const KvbDatavar> cells) {
    const bool isMarked = m_section.fitColumn >= 0 && !cells[static_cast<std::size_t>(m_section.fitColumn)].isNull();
    cells = cells.first(m_section.textColumns());
    if (m_section.isRecord) {
        writeRecord(cells, isMarked);
        return;
    }
    std::vector<Cell> made;
    made.reserve(cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i)
        made.push_back(makeCell(cells[i], m_section.columns[i], isMarked));
    if (m_settled) {
        writeRow(made);
        return;
    }
    m_waiting.push_back(std::move(made));
    if (m_waiting.size() >= kRowsForWidths)
        writeWaiting();
}

void TextTableWriter::end() {
    if (m_section.isRecord || m_settled)
        return;
    if (m_waiting.empty())
        m_output.write("(none)\n");
    else
        writeWaiting();
}

TextTableWriter::Cell TextTableWriter::makeCell(const KvbDatavar& value, const Column& column, bool isMarked) const {
    Cell cell;
    if (value.isNull())
        cell.text = m_section.nullText;
    else if (const auto number = roundedNumber(value, column))
        cell.text = column.places >= 0 ? formatFixed(*number, column.places) : formatReadable(*number);
    else if (column.kind == Column::Kind::Prose) {
        cell.more = foldToWidth(value.toText().view(), kWidestProse);
        cell.text = std::move(cell.more.front());
        cell.more.erase(cell.more.begin());
    } else
        cell.text = cutToWidth(printable(value.toText().view()), kWidestCell);
    if (isMarked && column.isMarked && !value.isNull())
        cell.text += kOverFits;
    cell.width = displayWidth(cell.text);
    for (const std::string& line : cell.more)
        cell.width = std::max(cell.width, displayWidth(line));
    cell.right = column.kind == Column::Kind::Number;
    return cell;
}

void TextTableWriter::writeWaiting() {
    for (const std::vector<Cell>& cells : m_waiting)
        for (std::size_t i = 0; i < cells.size(); ++i)
            m_widths[i] = std::max(m_widths[i], cells[i].width);
    m_settled = true;
    writeRow(m_headings);
    for (std::size_t i = 0; i < m_widths.size(); ++i) {
        if (i > 0)
            m_output.write(kGap);
        m_output.write(std::string(m_widths[i], '-'));
    }
    m_output.write("\n");
    for (const std::vector<Cell>& cells : m_waiting)
        writeRow(cells);
    m_waiting.clear();
}

void TextTableWriter::writeRow(std::span<const Cell> cells) {
    m_line.clear();
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i > 0)
            m_line += kGap;
        const std::size_t padding = m_widths[i] > cells[i].width ? m_widths[i] - cells[i].width : 0;
        if (cells[i].right)
            m_line.append(padding, ' ');
        m_line += cells[i].text;
        if (!cells[i].right && i + 1 < cells.size())
            m_line.append(padding, ' ');
    }
    m_line.erase(m_line.find_last_not_of(' ') + 1);
    m_line += '\n';
    if (!cells.empty() && !cells.back().more.empty()) {
        std::size_t indent = 0;
        for (std::size_t i = 0; i + 1 < cells.size(); ++i)
            indent += m_widths[i] + kGap.size();
        for (const std::string& line : cells.back().more) {
            if (!line.empty())
                m_line.append(indent, ' ').append(line);
            m_line += '\n';
        }
    }
    m_output.write(m_line);
}

void TextTableWriter::writeRecord(std::span<const KvbDatavar> cells, bool isMarked) {
    std::size_t widest = 0;
    for (const Cell& heading : m_headings)
        widest = std::max(widest, heading.width);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        m_line = m_headings[i].text;
        m_line.append(widest - m_headings[i].width, ' ');
        m_line += kGap;
        const Cell cell = makeCell(cells[i], m_section.columns[i], isMarked);
        m_line += cell.text + '\n';
        for (const std::string& more : cell.more)
            m_line += std::string(widest, ' ').append(kGap) + more + '\n';
        m_output.write(m_line);
    }
}

} // namespace tavix::cli
