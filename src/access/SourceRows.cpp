#include "access/SourceRows.h"

#include "access/PrViewDisplayMessage.h"
#include "base/GenException.h"
#include "source/Credentials.h"

#include <fmt/format.h>

#include <new>
#include <numeric>
#include <utility>

namespace tavix {

SourceRows::SourceRows(DrillSource source, PrViewDisplayMessage* sink)
    : m_source(std::move(source)),
      m_sink(sink),
      m_names(m_source.reader->columnNames().begin(), m_source.reader->columnNames().end()) {}

bool SourceRows::next() {
    m_isOnRow = false;
    while (m_next == m_rows.size()) {
        if (!m_source.reader)
            return false;
        try {
            if (readBlock())
                continue;
        } catch (...) {
            close();
            throw;
        }
        close();
        return false;
    }
    ++m_next;
    m_isOnRow = true;
    return true;
}

void SourceRows::close() {
    m_rows.clear();
    m_next = 0;
    m_block = {};
    m_source.reader.reset();
}

bool SourceRows::readBlock() {
    m_rows.clear();
    m_next = 0;
    source::RowReader& reader = *m_source.reader;
    const auto goOn = [&] {
        return !m_sink || m_sink->progress(fmt::format("Reading {}", m_source.name), reader.position(), reader.total());
    };
    if (!goOn())
        throw GenException(kReadingStopped);
    const auto more = reader.read(m_block);
    if (!more)
        throw GenException(more.error().text == source::kCancelled ? kReadingStopped : more.error().text);
    m_isComplete = !*more;
    if (!*more)
        return false;
    m_rows.resize(m_block.rows);
    std::iota(m_rows.begin(), m_rows.end(), 0U);
    bool isStopped = false;
    try {
        for (const auto& test : m_source.tests)
            test->narrow(m_block, m_rows, [&] { return !(isStopped = isStopped || !goOn()); });
    } catch (const std::bad_alloc&) {
        throw GenException("There is not enough memory to test the rows.");
    }
    if (isStopped)
        throw GenException(kReadingStopped);
    return true;
}

KvbString SourceRows::warning() const {
    return m_source.warning.empty() ? KvbString() : KvbString(m_source.warning);
}

KvbString SourceRows::name(int column) const {
    return has(column) ? KvbString(m_names[static_cast<std::size_t>(column)]) : KvbString();
}

kvbType SourceRows::type(int column) const {
    return has(column) ? m_source.types[static_cast<std::size_t>(column)] : kvbType::Text;
}

KvbString SourceRows::value(int column) const {
    if (!m_isOnRow || !has(column))
        return {};
    const source::Cell& cell = m_block.columns[static_cast<std::size_t>(column)][m_rows[m_next - 1]];
    return cell.isNull ? KvbString() : KvbString(std::string_view(cell.data, cell.size));
}

} // namespace tavix
