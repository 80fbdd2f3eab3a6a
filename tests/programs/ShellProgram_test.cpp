// The desktop shell run as a program, as far as it needs no display.
#include "Program.h"

#include <gtest/gtest.h>

namespace tavix::testing {
namespace {

/// The build makes tavix-shell the program under test here.
Outcome runShell(std::vector<std::string> arguments) {
    return runTavix(std::move(arguments));
}

TEST(ShellProgram, WrongArgumentsEndWithTwo) {
    const std::vector<std::vector<std::string>> wrong{
        {"--nonsense"}, {"--scheme", "pink"}, {"--job"}, {"a.tavix", "b.tavix"}};
    for (const auto& arguments : wrong) {
        const Outcome outcome = runShell(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments.front();
        EXPECT_NE(outcome.err, "");
        EXPECT_EQ(outcome.out, "");
    }
}

TEST(ShellProgram, VersionAndHelpAreNoErrors) {
    for (const char* argument : {"--version", "--help"}) {
        const Outcome outcome = runShell({argument});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_NE(outcome.out, "");
        EXPECT_EQ(outcome.err, "");
    }
}

} // namespace
} // namespace tavix::testing
