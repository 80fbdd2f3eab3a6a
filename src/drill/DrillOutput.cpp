#include "drill/DrillOutput.h"

#include "base/Characters.h"
#include "base/HeldRepositories.h"
#include "base/NumberText.h"
#include "doc/CountText.h"
#include "grid/FoldCase.h"
#include "worksheet/Workbook.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

namespace tavix {

namespace {

constexpr std::string_view kFileError = "File Error";
constexpr std::string_view kPartEnding = ".part"; ///< of a file as long as it is written
constexpr std::size_t kBufferBytes = std::size_t{1} << 20;

bool endsWith(std::string_view path, std::string_view ending) {
    return path.size() >= ending.size() && foldCase(path.substr(path.size() - ending.size())) == ending;
}

bool isTooLong(const std::string& path) {
    return path.size() >= PATH_MAX ||
           std::filesystem::path(path).filename().string().size() + kPartEnding.size() > NAME_MAX;
}

// Lines into a file beside the one that they are to become.
class LineFile {
  public:
    explicit LineFile(const std::string& path)
        : m_path(path),
          m_part(path + std::string(kPartEnding)),
          m_file(std::fopen(m_part.c_str(), "wb")),
          m_wasOpened(m_file != nullptr) {
        m_buffer.reserve(kBufferBytes);
    }
    ~LineFile() {
        close();
        if (m_wasOpened && !m_kept)
            std::remove(m_part.c_str());
    }
    LineFile(const LineFile&) = delete;
    LineFile& operator=(const LineFile&) = delete;

    [[nodiscard]] bool isOpen() const { return m_file != nullptr; }

    void put(std::string_view text, bool quoted) {
        if (quoted)
            m_buffer += '"';
        m_buffer += text;
        if (quoted)
            m_buffer += '"';
        m_buffer += ',';
    }
    /// After at least one cell.
    void endLine() {
        m_buffer.back() = '\n';
        if (m_buffer.size() >= kBufferBytes)
            flush();
    }
    /// Puts the file in its place.
    Status keep() {
        flush();
        if (!close())
            m_ok = false;
        std::error_code failure;
        if (m_ok)
            std::filesystem::rename(m_part, m_path, failure);
        m_kept = m_ok && !failure;
        if (m_kept)
            return {};
        return Error{failure ? failure.message() : std::string(std::strerror(m_errno))};
    }

  private:
    void flush() {
        if (m_ok && std::fwrite(m_buffer.data(), 1, m_buffer.size(), m_file) != m_buffer.size()) {
            m_ok = false;
            m_errno = errno;
        }
        m_buffer.clear();
    }
    bool close() {
        if (!m_file)
            return true;
        const bool ok = std::fclose(m_file) == 0;
        if (!ok && m_ok)
            m_errno = errno;
        m_file = nullptr;
        return ok;
    }

    std::string m_path;
    std::string m_part;
    std::FILE* m_file;
    bool m_wasOpened;
    std::string m_buffer;
    bool m_ok = true;
    int m_errno = 0;
    bool m_kept = false;
};

bool saveText(const CDrillThruDataSrc& source, const std::string& path, Messages& messages) {
    const std::string failed = "Unable to open or create file " + path;
    LineFile file(path);
    if (!file.isOpen()) {
        messages.warn(failed, kFileError);
        return false;
    }
    const int columns = source.GetColumnCount();
    for (int column = 0; column < columns; ++column)
        file.put(source.GetRows().columns()[static_cast<std::size_t>(column)].name, true);
    file.endLine();
    for (std::int64_t row = 0; row < source.GetRowCount(); ++row) {
        for (int column = 0; column < columns; ++column)
            file.put(source.GetText(column, row).text, !isNumeric(source.GetType(column)));
        file.endLine();
    }
    if (const Status kept = file.keep(); !kept) {
        messages.warn(failed + "\n\n" + kept.error().text, kFileError);
        return false;
    }
    return true;
}

Status putCell(worksheet::Range cell, kvbType type, std::string_view text) {
    if (text.empty())
        return {};
    if (type == kvbType::Integer) {
        if (const auto whole = parseInteger(text))
            return cell.putInteger(*whole);
    }
    if (isNumeric(type)) {
        if (const auto number = parseNumber(text))
            return cell.putNumber(*number);
    }
    return cell.putText(text);
}

Status putRows(const CDrillThruDataSrc& source, worksheet::Sheet& sheet) {
    for (std::int64_t row = 0; row <= source.GetRowCount(); ++row) {
        auto cell = sheet.range("A" + formatInteger(row + 1));
        if (!cell)
            return cell.error();
        for (int column = 0; column < source.GetColumnCount(); ++column, *cell = cell->next()) {
            const DrillColumn& shown = source.GetRows().columns()[static_cast<std::size_t>(column)];
            const Status put = row == 0 ? cell->putHeader(shown.name)
                                        : putCell(*cell, shown.type, source.GetText(column, row - 1).text);
            if (!put)
                return put;
        }
    }
    return {};
}

bool saveWorksheet(const CDrillThruDataSrc& source, const std::string& path, std::string_view context,
                   Messages& messages) {
    worksheet::Workbook book;
    worksheet::Sheet& sheet = *book.sheet("Sheet1");
    Status saved = book.rename(sheet, worksheet::toSheetName(context));
    if (saved)
        saved = putRows(source, sheet);
    if (saved)
        saved = book.save(path);
    if (!saved) {
        messages.warn("Unable to create new Microsoft Excel workbook\n\n" + saved.error().text, "Export Error");
        return false;
    }
    if (book.cutTexts() > 0)
        messages.warn(countOf(book.cutTexts(), "value") + (book.cutTexts() == 1 ? " was" : " were") +
                          " longer than the 32,767 characters that a cell of a worksheet holds, and cut there.",
                      "Export");
    return true;
}

} // namespace

std::string drillFolder(const SettingsStore& settings) {
    return settings.read("Environment", "WorkingPath");
}

std::string drillFileName(std::string_view context) {
    std::string name(context);
    std::replace_if(
        name.begin(), name.end(),
        [](char c) { return static_cast<unsigned char>(c) < ' ' || std::strchr("/\\:*?\"<>|", c) != nullptr; }, '_');
    // Room for an extension.
    constexpr std::size_t kMostBytes = 200;
    name.resize(cutToBytes(name, kMostBytes).size());
    // A name that begins with a point would be hidden.
    return name.empty() || name.front() == '.' ? "drill through" + name : name;
}

bool saveDrillRows(const CDrillThruDataSrc& source, const std::string& path, std::string_view context,
                   Messages& messages) {
    if (isTooLong(path)) {
        messages.warn("Path too long: " + path, kFileError);
        return false;
    }
    if (const Status free = requireNotHeld(path); !free) {
        messages.warn("Unable to open or create file " + path + "\n\n" + free.error().text, kFileError);
        return false;
    }
    const bool isWorksheet = endsWith(path, ".xls");
    std::error_code ignored;
    if (std::filesystem::exists(path, ignored)) {
        const std::string question = isWorksheet ? "Worksheet " + path + " already exists. Overwrite it?"
                                                 : path + " already exists.\nDo you want to replace it?";
        if (messages.ask(question, "Overwrite", Messages::Answer::No) != Messages::Answer::Yes)
            return false;
    }
    const auto busy = messages.busy();
    return isWorksheet ? saveWorksheet(source, path, context, messages) : saveText(source, path, messages);
}

} // namespace tavix
