#include "base/SettingsStore.h"

#include "base/FileWriter.h"

#define SI_CONVERT_ICU 1
#include <SimpleIni.h>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <utility>

namespace tavix {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kMaxFileSize = 4u << 20;

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return result;
}

class MemorySettings final : public SettingsStore {
  public:
    std::string read(std::string_view section, std::string_view key) const override {
        const auto found = m_values.find({lowered(section), lowered(key)});
        return found == m_values.end() ? std::string() : found->second;
    }
    Status write(std::string_view section, std::string_view key, std::string_view value) override {
        m_values.insert_or_assign({lowered(section), lowered(key)}, std::string(value));
        return {};
    }

  private:
    std::map<std::pair<std::string, std::string>, std::string> m_values;
};

class FileSettings final : public SettingsStore {
  public:
    explicit FileSettings(std::string path) : m_path(std::move(path)) {
        m_ini.SetUnicode(true);
        m_ini.SetQuotes(true);
        m_ini.SetSpaces(false);
    }

    Status load() {
        std::error_code code;
        if (!fs::exists(m_path, code))
            return {};
        if (!fs::is_regular_file(m_path, code))
            return Error{fmt::format("The settings file {} is not a file.", m_path)};
        if (fs::file_size(m_path, code) > kMaxFileSize)
            return Error{fmt::format("The settings file {} is larger than 4 MiB.", m_path)};
        std::ifstream in(m_path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        if (!in)
            return Error{fmt::format("The settings file {} cannot be read: {}.", m_path, std::strerror(errno))};
        if (bytes.find('\0') != std::string::npos || m_ini.LoadData(bytes) < 0)
            return Error{fmt::format("The settings file {} is not a text file of settings.", m_path)};
        return {};
    }

    std::string read(std::string_view section, std::string_view key) const override {
        return m_ini.GetValue(std::string(section).c_str(), std::string(key).c_str(), "");
    }

    Status write(std::string_view section, std::string_view key, std::string_view value) override {
        if (value.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos)
            return Error{fmt::format("The setting {} cannot hold a line break.", key)};
        m_ini.SetValue(std::string(section).c_str(), std::string(key).c_str(), std::string(value).c_str());
        return save();
    }

  private:
    Status save() {
        std::error_code code;
        if (const auto folder = fs::path(m_path).parent_path(); !folder.empty())
            fs::create_directories(folder, code);
        std::string bytes;
        m_ini.Save(bytes);
        const auto file = FileWriter::open(m_path);
        Status written = file ? (*file)->write(bytes) : Status(file.error());
        if (written)
            written = (*file)->commit();
        if (!written)
            return Error{fmt::format("The settings file {} cannot be written: {}.", m_path, written.error().text)};
        return {};
    }

    std::string m_path;
    CSimpleIniA m_ini;
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
