#include "base/tests/TempFolder.h"
#include "cli/ChildProgram.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace tavix::cli {
namespace {

using namespace std::chrono_literals;

class ChildProgramTest : public ::testing::Test {
  protected:
    /// The error of a shell that runs this script; empty for success.
    std::string run(const std::string& script, std::chrono::milliseconds limit = 60s, std::string input = {}) {
        ChildProgram child{{"sh", "-c", script, "sh", m_told}, environmentWithout("HIDDEN_"), std::move(input), limit};
        const Status ended = runChild(child);
        return ended ? "" : ended.error().text;
    }
    std::string told() const {
        std::ifstream file(m_told);
        std::stringstream text;
        text << file.rdbuf();
        return text.str();
    }

    tavix::testing::TempFolder m_folder;
    std::string m_told = m_folder.file("told");
};

TEST_F(ChildProgramTest, ReadsItsInputAndEnvironment) {
    // More than a pipe holds.
    const std::string input(1 << 20, 'x');
    EXPECT_EQ(run("cat > $1", 60s, input), "");
    EXPECT_EQ(told(), input);
    EXPECT_EQ(run("true", 60s, input), "");
    ::setenv("HIDDEN_WORD", "secret", 1);
    ::setenv("SHOWN_WORD", "public", 1);
    EXPECT_EQ(run("echo \"<$HIDDEN_WORD> <$SHOWN_WORD>\" > $1"), "");
    EXPECT_EQ(told(), "<> <public>\n");
}

TEST_F(ChildProgramTest, SaysHowItFailed) {
    EXPECT_EQ(run("exit 7"), "it ended with exit code 7");
    EXPECT_EQ(run("kill -KILL $$"), "it was ended by signal 9");
    // We ignore this signal; others rely on it.
    EXPECT_EQ(run("kill -PIPE $$"), "it was ended by signal 13");
    const Status missing = runChild({{"./no such program", "x"}, {}, {}, 60s});
    EXPECT_EQ(missing.error().text, "it cannot be started: No such file or directory");
    const Status folder = runChild({{"/tmp"}, {}, {}, 60s});
    EXPECT_EQ(folder.error().text, "it cannot be started: Permission denied");
}

TEST_F(ChildProgramTest, EndsWithAllThatItStartedAfterItsTime) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(run("sleep 60", 100ms), "it took longer than 0.1 seconds");
    // A program that does not want to end, with a child that would write later.
    EXPECT_EQ(run("trap '' TERM; (sleep 4; echo late > $1) & sleep 60; wait", 100ms),
              "it took longer than 0.1 seconds");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 30s);
    EXPECT_EQ(run("sleep 3"), "");
    EXPECT_EQ(told(), "");
}

TEST_F(ChildProgramTest, IsFoundAsItWouldBeStarted) {
    EXPECT_TRUE(isProgram("sh"));
    EXPECT_TRUE(isProgram("/bin/sh"));
    EXPECT_FALSE(isProgram("no such program"));
    EXPECT_FALSE(isProgram("/tmp"));
    EXPECT_FALSE(isProgram(""));
    std::ofstream(m_told) << "#!/bin/sh\n";
    EXPECT_FALSE(isProgram(m_told)); // it must not be executed
}

} // namespace
} // namespace tavix::cli
