// Ctrl+C in the middle of a run stores nothing of it.
#include "Program.h"
#include "base/tests/TempFolder.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace tavix::testing {
namespace {

using ::testing::HasSubstr;

/// Enough rows that a run is still reading them when the signal arrives.
void writeBigTable(const std::string& path) {
    std::ofstream file(path, std::ios::binary);
    file << "id,name,rest\n";
    std::string line;
    for (unsigned i = 0; i < 3'000'000; ++i) {
        line = std::to_string(i) + ",name " + std::to_string(i * 2654435761U) + "," + std::to_string(i % 977) + "\n";
        file << line;
    }
}

/// Bytes of it that show that the run is under way.
constexpr std::uint64_t kPartOfTheTable = 8'000'000;

std::size_t runsOf(const std::string& repository, const std::string& job) {
    const Outcome outcome = runTavix({"runs", "-R", repository, "--job", job, "--format", "json"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    return nlohmann::json::parse(outcome.out).size();
}

TEST(Interrupt, EndsWithFourAndKeepsNothingOfTheRun) {
    const TempFolder folder;
    const std::string repository = folder.file("r.tavix");
    std::ofstream(folder.file("small.csv")) << "a\n1\n";
    ASSERT_EQ(runTavix({"profile", folder.file("small.csv"), "-R", repository, "--job", "j"}).exitCode, 0);
    writeBigTable(folder.file("big.csv"));
    for (const int signalNumber : {SIGINT, SIGTERM}) {
        Program program(tavixCommand({"profile", folder.file("big.csv"), "-R", repository, "--job", "j"}));
        program.waitUntilRead(kPartOfTheTable);
        program.send(signalNumber);
        const Outcome outcome = program.wait();
        EXPECT_EQ(outcome.exitCode, 4) << outcome.signal << outcome.err;
        EXPECT_THAT(outcome.err, HasSubstr("cancelled; nothing was stored"));
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(runsOf(repository, "j"), 1U);
    }
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        files.push_back(entry.path().filename().string());
    EXPECT_THAT(files, ::testing::UnorderedElementsAre("r.tavix", "small.csv", "big.csv"));
}

TEST(Interrupt, EndsTheWaitForAPipe) {
    const TempFolder folder;
    const std::string pipe = folder.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::vector<std::vector<std::string>> commands{{"profile", pipe, "-R", folder.file("r.tavix")},
                                                         {"inspect", pipe}};
    for (const bool hasWriter : {false, true}) {
        // The writer never writes.
        const int writer = hasWriter ? ::open(pipe.c_str(), O_RDWR | O_CLOEXEC) : -1;
        for (const std::vector<std::string>& command : commands)
            for (const int signalNumber : {SIGINT, SIGTERM}) {
                Program program(tavixCommand(command));
                program.waitForHandler(signalNumber);
                program.send(signalNumber);
                const Outcome outcome = program.wait();
                EXPECT_EQ(outcome.exitCode, 4) << command.front() << hasWriter << outcome.err;
                EXPECT_EQ(outcome.out, "");
            }
        if (hasWriter)
            ::close(writer);
    }
}

TEST(Interrupt, ANewRepositoryHoldsNoJob) {
    const TempFolder folder;
    writeBigTable(folder.file("big.csv"));
    Program program(tavixCommand({"profile", folder.file("big.csv"), "-R", folder.file("new.tavix")}));
    program.waitUntilRead(kPartOfTheTable);
    program.send(SIGINT);
    EXPECT_EQ(program.wait().exitCode, 4);
    // There is either no file yet or a repository without a job.
    if (std::filesystem::exists(folder.file("new.tavix"))) {
        const Outcome jobs = runTavix({"jobs", "-R", folder.file("new.tavix"), "--format", "json"});
        EXPECT_EQ(jobs.out, "[]\n") << jobs.err;
    }
}

} // namespace
} // namespace tavix::testing
