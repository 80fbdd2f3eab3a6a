#pragma once

#include "CsvText.h"
#include "Program.h"
#include "base/tests/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace tavix::testing {

inline constexpr const char* kPeople = "id,name,city,note.text\n"
                                       "1,Ann,Bern,\n"
                                       "2,Bob,Bern,\"\"\n"
                                       "3,\"Cid, the \"\"old\"\"\",\"Rio\",=1+1\n"
                                       "4,日本,,\"two\nlines\"\n";

/// A folder with people.csv and a repository with one run of the job "people" over it.
class OverPeople : public ::testing::Test {
  protected:
    void SetUp() override {
        write("people.csv", kPeople);
        const Outcome first = profile();
        ASSERT_EQ(first.exitCode, 0) << first.err;
    }

    void write(const std::string& name, const std::string& text) {
        std::ofstream(m_folder.file(name), std::ios::binary) << text;
    }
    Outcome profile() { return runTavix({"profile", m_folder.file("people.csv"), "-R", m_repository}); }
    /// With the repository named.
    Outcome run(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"-R", m_repository});
        return runTavix(std::move(arguments));
    }
    nlohmann::json asJson(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--format", "json"});
        const Outcome outcome = run(std::move(arguments));
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        return nlohmann::json::parse(outcome.out);
    }
    std::vector<CsvRow> asCsv(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--format", "csv"});
        const Outcome outcome = run(std::move(arguments));
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        return readCsv(outcome.out);
    }
    std::size_t runCount() { return asJson({"runs", "--job", "people"}).size(); }
    void expectFailure(int exitCode, const std::vector<std::string>& arguments, const std::string& words) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err;
        EXPECT_THAT(outcome.err, ::testing::AllOf(::testing::StartsWith("tavix: "), ::testing::HasSubstr(words)));
        EXPECT_EQ(outcome.out, "");
    }

    TempFolder m_folder;
    std::string m_repository = m_folder.file("r.tavix");
};

} // namespace tavix::testing
