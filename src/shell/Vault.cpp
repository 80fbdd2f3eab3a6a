#include "shell/Vault.h"

#include "base/ui/QtText.h"

#include <QDir>

namespace tavix::shell {

namespace {

constexpr std::size_t kMostOffered = 20;

} // namespace

std::vector<std::string> repositoriesIn(const std::string& folder) {
    std::vector<std::string> paths;
    if (folder.empty())
        return paths;
    const QDir vault(toQString(folder));
    for (const QFileInfo& file :
         vault.entryInfoList({QStringLiteral("*.tavix")}, QDir::Files | QDir::Readable, QDir::Time)) {
        if (paths.size() == kMostOffered)
            break;
        paths.push_back(toUtf8(file.absoluteFilePath()));
    }
    return paths;
}

} // namespace tavix::shell
