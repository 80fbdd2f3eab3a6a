// The program that draws the windows of the shell into files: its pictures and exit codes.
#include "Program.h"
#include "base/tests/TempFolder.h"
#include "support/SampleRepository.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace tavix::testing {
namespace {

using ::testing::HasSubstr;

struct Picture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uintmax_t bytes = 0;
};

/// Size and bytes of a PNG file; zeros for any other file.
Picture readPicture(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string head(24, '\0');
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    if (!file || head.compare(1, 3, "PNG") != 0)
        return {};
    const auto number = [&head](std::size_t at) {
        std::uint32_t value = 0;
        for (std::size_t i = at; i < at + 4; ++i)
            value = value << 8 | static_cast<unsigned char>(head[i]);
        return value;
    };
    return {number(16), number(20), std::filesystem::file_size(path)};
}

/// The build makes tavix-pictures the program under test here.
Outcome runPictures(std::vector<std::string> arguments) {
    return runTavix(std::move(arguments));
}

class PicturesProgram : public ::testing::Test {
  protected:
    /// The pictures in the folder, by file name.
    std::map<std::string, Picture> pictures() const {
        std::map<std::string, Picture> found;
        for (const auto& entry : std::filesystem::directory_iterator(m_pictures))
            found[entry.path().filename().string()] = readPicture(entry.path());
        return found;
    }

    TempFolder m_folder;
    std::string m_pictures = m_folder.file("pictures");
};

TEST_F(PicturesProgram, DrawsItsWindowsIntoFiles) {
    const SampleRepository sample = SampleRepository::build(m_folder.file("sample.tavix"));
    const Outcome outcome = runPictures({m_pictures, sample.path, "--job", "Sales", "--scheme", "light"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    const std::map<std::string, Picture> found = pictures();
    for (const char* name : {"welcome", "reports", "table-1-standard-metrics", "collection", "analyses",
                             "field-2-frequency-distribution"}) {
        const auto picture = found.find(std::string(name) + ".png");
        ASSERT_NE(picture, found.end()) << name;
        EXPECT_EQ(picture->second.width, 1280U) << name;
        EXPECT_EQ(picture->second.height, 800U) << name;
        // An empty window of that size takes about 5 kB.
        EXPECT_GT(picture->second.bytes, 10'000U) << name;
    }
    std::istringstream lines(outcome.out);
    std::size_t told = 0;
    for (std::string line; std::getline(lines, line); ++told)
        EXPECT_TRUE(std::filesystem::exists(line)) << line;
    EXPECT_EQ(told, found.size());
    for (const auto& [name, picture] : found)
        EXPECT_GT(picture.width, 60U) << name; // the list of completions is the smallest
}

TEST_F(PicturesProgram, WithoutARepositoryThereIsTheWelcomePage) {
    const Outcome outcome = runPictures({m_pictures});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    ASSERT_EQ(pictures().size(), 1U);
    EXPECT_EQ(pictures().begin()->first, "welcome.png");
}

TEST_F(PicturesProgram, WrongArgumentsEndWithTwo) {
    const std::vector<std::vector<std::string>> wrong{
        {}, {m_pictures, "--nonsense"}, {m_pictures, "--scheme", "pink"}, {m_pictures, "a.tavix", "b.tavix"}};
    for (const auto& arguments : wrong) {
        const Outcome outcome = runPictures(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments.size();
        EXPECT_NE(outcome.err, "");
        EXPECT_EQ(outcome.out, "");
    }
}

TEST_F(PicturesProgram, AFailureToReadOrWriteEndsWithThree) {
    std::ofstream(m_folder.file("garbage.tavix")) << "this is no repository";
    std::ofstream(m_folder.file("occupied")) << "this is no folder";
    const SampleRepository sample = SampleRepository::build(m_folder.file("sample.tavix"));
    const std::vector<std::vector<std::string>> failing{
        {m_pictures, m_folder.file("missing.tavix")},
        {m_pictures, m_folder.file("garbage.tavix")},
        {m_pictures, sample.path, "--job", "Nothing"},
        {m_folder.file("occupied"), sample.path},
    };
    for (const auto& arguments : failing) {
        const Outcome outcome = runPictures(arguments);
        EXPECT_EQ(outcome.exitCode, 3) << arguments.back();
        EXPECT_THAT(outcome.err, HasSubstr("tavix-pictures: "));
    }
}

} // namespace
} // namespace tavix::testing
