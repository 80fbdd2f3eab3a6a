#include "base/SettingsStore.h"

#include "base/Ascii.h"
#include "base/FileWriter.h"

#define SI_CONVERT_ICU 1
#include <SimpleIni.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <thread>
#include <utility>

namespace tavix {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kMaxFileSize = 4u << 20;

using Name = std::pair<std::string, std::string>; ///< section and key

Name foldedName(std::string_view section, std::string_view key) {
    return {asciiLower(section), asciiLower(key)};
}

class MemorySettings final : public SettingsStore {
  public:
    std::string read(std::string_view section, std::string_view key) const override {
        const auto found = m_values.find(foldedName(section, key));
        return found == m_values.end() ? std::string() : found->second;
    }
    Status write(std::string_view section, std::string_view key, std::string_view value) override {
        m_values.insert_or_assign(foldedName(section, key), std::string(value));
        return {};
    }

  private:
    std::map<Name, std::string> m_values;
};

/// Changes whenever a file is replaced or written; all 0 for a missing file.
struct FileState {
    dev_t device = 0;
    ino_t number = 0;
    off_t size = 0;
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;

    bool operator==(const FileState&) const = default;
};

FileState stateOf(const std::string& path) {
    struct stat found {};
    if (stat(path.c_str(), &found) != 0)
        return {};
    return {found.st_dev, found.st_ino, found.st_size, found.st_mtim.tv_sec, found.st_mtim.tv_nsec};
}

/// Keeps other stores from writing, in this process and in others. Has no effect on file systems without locks.
class WriterLock {
  public:
    explicit WriterLock(const std::string& path) : m_file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {}
    ~WriterLock() {
        if (m_file >= 0)
            close(m_file);
    }
    WriterLock(const WriterLock&) = delete;
    WriterLock& operator=(const WriterLock&) = delete;

    /// False when another writer does not finish in time, so that a window never hangs.
    [[nodiscard]] bool take() const {
        using namespace std::chrono;
        const auto end = steady_clock::now() + kLongestWait;
        while (m_file >= 0 && flock(m_file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
            if (steady_clock::now() > end)
                return false;
            std::this_thread::sleep_for(kPause);
        }
        return true;
    }

  private:
    static constexpr std::chrono::seconds kLongestWait{3};
    static constexpr std::chrono::milliseconds kPause{2};

    int m_file;
};

std::unique_ptr<CSimpleIniA> emptyIni() {
    auto ini = std::make_unique<CSimpleIniA>();
    ini->SetUnicode(true);
    ini->SetQuotes(true);
    ini->SetSpaces(false);
    return ini;
}

class FileSettings final : public SettingsStore {
  public:
    explicit FileSettings(std::string path) : m_path(std::move(path)), m_ini(emptyIni()) {}

    Status load() {
        const FileState state = stateOf(m_path);
        auto ini = readFile();
        if (!ini)
            return ini.error();
        m_ini = std::move(*ini);
        m_state = state;
        return {};
    }

    std::string read(std::string_view section, std::string_view key) const override {
        if (const auto own = m_unsaved.find(foldedName(section, key)); own != m_unsaved.end())
            return own->second.value;
        // Another window may have written the file. When it can no longer be read, the known values stay.
        if (const FileState state = stateOf(m_path); state != m_state) {
            m_state = state;
            if (auto ini = readFile())
                m_ini = std::move(*ini);
        }
        return m_ini->GetValue(std::string(section).c_str(), std::string(key).c_str(), "");
    }

    Status write(std::string_view section, std::string_view key, std::string_view value) override {
        if (value.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos)
            return Error{fmt::format("The setting {} cannot hold a line break.", key)};
        m_unsaved.insert_or_assign(foldedName(section, key),
                                   Unsaved{std::string(section), std::string(key), std::string(value)});
        return merge();
    }

  private:
    struct Unsaved {
        std::string section;
        std::string key;
        std::string value;
    };

    /// The current file; an empty store when there is none.
    [[nodiscard]] Result<std::unique_ptr<CSimpleIniA>> readFile() const {
        auto ini = emptyIni();
        std::error_code code;
        if (!fs::exists(m_path, code))
            return ini;
        if (!fs::is_regular_file(m_path, code))
            return Error{fmt::format("The settings file {} is not a file.", m_path)};
        if (fs::file_size(m_path, code) > kMaxFileSize)
            return Error{fmt::format("The settings file {} is larger than 4 MiB.", m_path)};
        std::ifstream in(m_path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        if (!in)
            return Error{fmt::format("The settings file {} cannot be read: {}.", m_path, std::strerror(errno))};
        if (bytes.find('\0') != std::string::npos || ini->LoadData(bytes) < 0)
            return Error{fmt::format("The settings file {} is not a text file of settings.", m_path)};
        return ini;
    }

    /// Writes only the values that this store has changed into the current file.
    Status merge() {
        std::error_code code;
        if (const auto folder = fs::path(m_path).parent_path(); !folder.empty())
            fs::create_directories(folder, code);
        const WriterLock lock(m_path + ".lock");
        if (!lock.take())
            return Error{fmt::format("The settings file {} cannot be written: another program is writing it.", m_path)};
        auto ini = readFile();
        if (!ini)
            return ini.error();
        bool changed = false;
        for (const auto& [name, own] : m_unsaved) {
            const char* present = (*ini)->GetValue(own.section.c_str(), own.key.c_str(), nullptr);
            if (present && own.value == present)
                continue;
            (*ini)->SetValue(own.section.c_str(), own.key.c_str(), own.value.c_str());
            changed = true;
        }
        if (changed) {
            std::string bytes;
            (*ini)->Save(bytes);
            if (Status saved = replaceFile(bytes); !saved)
                return saved;
        }
        m_ini = std::move(*ini);
        m_state = stateOf(m_path);
        m_unsaved.clear();
        return {};
    }

    [[nodiscard]] Status replaceFile(const std::string& bytes) const {
        const auto file = FileWriter::open(m_path);
        Status written = file ? (*file)->write(bytes) : Status(file.error());
        if (written)
            written = (*file)->commit();
        if (!written)
            return Error{fmt::format("The settings file {} cannot be written: {}.", m_path, written.error().text)};
        return {};
    }

    std::string m_path;
    mutable std::unique_ptr<CSimpleIniA> m_ini; ///< the file as it was in that state
    mutable FileState m_state;
    std::map<Name, Unsaved> m_unsaved; ///< values not in the file yet, by folded names
};

} // namespace

Result<std::unique_ptr<SettingsStore>> openSettingsFile(const std::string& path) {
    auto store = std::make_unique<FileSettings>(path);
    if (auto loaded = store->load(); !loaded)
        return loaded.error();
    return std::unique_ptr<SettingsStore>(std::move(store));
}

std::string defaultSettingsPath() {
    if (const char* path = std::getenv("TAVIX_SETTINGS"); path && *path)
        return path;
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && *config)
        return (fs::path(config) / "tavix" / "settings.ini").string();
    const char* home = std::getenv("HOME");
    return (fs::path(home && *home ? home : ".") / ".config" / "tavix" / "settings.ini").string();
}

std::unique_ptr<SettingsStore> makeMemorySettings() {
    return std::make_unique<MemorySettings>();
}

} // namespace tavix
