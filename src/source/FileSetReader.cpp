#include "source/FileSetReader.h"

#include "base/Encodings.h"
#include "source/ShownName.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tavix::source {

namespace {

/// Enough of a file for the names of its columns.
constexpr std::size_t kGlance = std::size_t{1} << 16;

} // namespace

Result<std::unique_ptr<FileSetReader>>
FileSetReader::open(std::vector<std::string> files, const TextFileOptions& options, std::vector<StatedForm> forms) {
    std::unique_ptr<FileSetReader> set(new FileSetReader(std::move(files), options, std::move(forms)));
    auto first = TextFileReader::open(set->m_files.front(), set->optionsOf(0));
    if (!first)
        return first.error();
    set->begin(std::move(*first));
    set->m_names.assign(set->m_current->columnNames().begin(), set->m_current->columnNames().end());
    set->m_options.hasHeader = set->m_current->hasHeader();
    set->m_options.findHeader = false;
    return set;
}

TextFileOptions FileSetReader::optionsOf(std::size_t file) const {
    TextFileOptions options = m_options;
    if (file >= m_stated.size())
        return options;
    if (m_stated[file].delimiter)
        options.delimiter = m_stated[file].delimiter;
    if (m_stated[file].encoding)
        options.encoding = m_stated[file].encoding;
    return options;
}

void FileSetReader::begin(std::unique_ptr<TextFileReader> reader) {
    m_current = std::move(reader);
    m_rows.push_back(0);
    m_forms.push_back({m_current->encoding().encoding, m_current->delimiter(), m_current->hasByteOrderMark(),
                       m_current->fileSize(), m_current->modified()});
    m_modified = std::max(m_modified, m_current->modified());
    m_sizeOpened += m_current->total();
    m_damageTaken = 0;
    takeDamage();
}

Status FileSetReader::compare(const TextFileReader& reader) const {
    const auto names = reader.columnNames();
    const auto [mine, theirs] = std::mismatch(m_names.begin(), m_names.end(), names.begin(), names.end());
    if (mine == m_names.end() && theirs == names.end())
        return {};
    const std::string all = fmt::format("the files of a table have the same columns, but \"{}\" has", m_files.front());
    if (m_names.size() != names.size())
        return Error{fmt::format("{} {} and \"{}\" {}", all, m_names.size(), reader.path(), names.size())};
    return Error{fmt::format("{} \"{}\" where \"{}\" has \"{}\", in column {}", all, shownName(*mine), reader.path(),
                             shownName(*theirs), mine - m_names.begin() + 1)};
}

Result<std::unique_ptr<TextFileReader>> FileSetReader::openNext(std::size_t file,
                                                                const TextFileOptions& options) const {
    auto reader = TextFileReader::open(m_files[file], options);
    if (!reader)
        return reader;
    if (Status status = compare(**reader); !status)
        return status.error();
    return reader;
}

Status FileSetReader::checkColumns() {
    std::int64_t total = m_current->total();
    for (std::size_t i = 1; i < m_files.size(); ++i) {
        const TextFileOptions options = optionsOf(i);
        TextFileOptions glance = options;
        if (glance.delimiter) {
            // Most files have the encoding of the first; another is detected only if that one does not give the
            // columns.
            if (!glance.encoding)
                glance.encoding = m_current->encoding().encoding;
            glance.pieceSize = std::min(glance.pieceSize, kGlance);
        }
        auto reader = openNext(i, glance);
        if (!reader && glance.encoding != options.encoding)
            reader = openNext(i, options);
        if (!reader)
            return reader.error();
        total += (*reader)->total();
        m_modified = std::max(m_modified, (*reader)->modified());
    }
    m_sizeOfAll = total;
    return {};
}

Status FileSetReader::narrowTo(std::size_t column, std::string value) {
    m_wanted = {column, std::move(value)};
    return beginSearch();
}

Status FileSetReader::beginSearch() {
    m_search.reset();
    if (!m_wanted || m_current->encoding().encoding != &encodingUtf8() || m_current->fileSize() == 0)
        return {};
    auto search = TextFileSearch::open(*m_current);
    if (!search)
        return search.error();
    m_search = std::move(*search);
    if (m_search)
        m_search->find(m_wanted->column, m_wanted->value);
    return {};
}

void FileSetReader::takeDamage() {
    const auto listed = m_current->damagedRows();
    for (; m_damageTaken < listed.size() && m_damaged.size() < kListedDamage; ++m_damageTaken) {
        m_damaged.push_back(listed[m_damageTaken]);
        m_damaged.back().file = m_rows.size() - 1;
    }
}

Result<bool> FileSetReader::read(RowBlock& block) {
    for (;;) {
        auto more = m_search ? m_search->read(block) : m_current->read(block);
        if (!more)
            return more;
        takeDamage();
        if (m_files.size() > 1)
            block.offsets.clear(); // they do not say in which file they are
        m_rows.back() += static_cast<std::int64_t>(block.rows);
        if (*more || m_rows.size() == m_files.size())
            return more;
        auto next = openNext(m_rows.size(), optionsOf(m_rows.size()));
        if (!next)
            return next.error();
        m_bytesBefore = position();
        m_damagedBefore += m_current->damagedRowCount();
        begin(std::move(*next));
        if (Status status = beginSearch(); !status)
            return status.error();
    }
}

} // namespace tavix::source
