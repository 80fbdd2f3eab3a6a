#include "base/HeldRepositories.h"
#include "base/tests/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace tavix {
namespace {

using tavix::testing::TempFolder;
using ::testing::HasSubstr;

TEST(HeldRepositories, TheirFilesAreRefusedByWhateverName) {
    namespace fs = std::filesystem;
    TempFolder folder;
    const std::string path = folder.file("r.tavix");
    const std::string other = folder.file("other");
    std::ofstream(path) << "x";
    std::ofstream(other) << "x";
    fs::create_symlink(path, folder.file("link"));
    fs::create_hard_link(path, folder.file("hard"));
    {
        const HeldRepository held(path);
        const HeldRepository again(path);
        for (const char* name :
             {"r.tavix", "link", "hard", "./r.tavix", "r.tavix-shm", "r.tavix-wal", "r.tavix-journal"})
            EXPECT_FALSE(requireNotHeld(folder.path().string() + "/" + name)) << name;
        EXPECT_THAT(requireNotHeld(path).error().text, HasSubstr("belongs to the repository"));
        EXPECT_TRUE(requireNotHeld(other));
        EXPECT_TRUE(requireNotHeld(folder.file("new")));
        EXPECT_TRUE(requireNotHeld("/dev/null"));
    }
    EXPECT_TRUE(requireNotHeld(path)) << "nobody uses it any more";
    const HeldRepository toBeMade(folder.file("new.tavix"));
    EXPECT_FALSE(requireNotHeld(folder.path().string() + "/../" + folder.path().filename().string() + "/new.tavix"));
}

} // namespace
} // namespace tavix
