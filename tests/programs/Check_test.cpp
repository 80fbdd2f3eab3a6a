// `tavix check` on damaged repositories.
#include "Program.h"
#include "base/tests/TempFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace tavix::testing {
namespace {

using ::testing::HasSubstr;

class Check : public ::testing::Test {
  protected:
    void SetUp() override {
        std::ofstream(m_folder.file("t.csv")) << "id,city\n1,Bern\n2,Ulm\n3,Bern\n";
        for (int run = 0; run < 2; ++run)
            ASSERT_EQ(runTavix({"profile", m_folder.file("t.csv"), "-R", m_path, "--job", "j"}).exitCode, 0);
    }

    Outcome check() { return runTavix({"check", "-R", m_path, "--format", "json"}); }

    void change(const std::string& sql) {
        sqlite3* handle = nullptr;
        ASSERT_EQ(sqlite3_open(m_path.c_str(), &handle), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(handle);
        sqlite3_close(handle);
    }

    TempFolder m_folder;
    std::string m_path = m_folder.file("r.tavix");
};

TEST_F(Check, SaysWhichRunAndTableIsDamaged) {
    const Outcome whole = check();
    EXPECT_EQ(whole.exitCode, 0) << whole.err;
    const auto rows = nlohmann::json::parse(whole.out);
    ASSERT_EQ(rows.size(), 1U + 2 * 2) << "the file, two runs, a table of each";
    for (const auto& row : rows)
        EXPECT_EQ(row["state"], "sound");

    change("UPDATE run_field SET null_count = 7 WHERE run = 2");
    const Outcome damaged = check();
    EXPECT_EQ(damaged.exitCode, 3);
    EXPECT_THAT(damaged.err, HasSubstr("the repository is damaged: 1 problem"));
    const auto found = nlohmann::json::parse(damaged.out);
    EXPECT_EQ(found[4], (nlohmann::json{{"job", "j"},
                                        {"run", 2},
                                        {"table", "t"},
                                        {"state", "damaged"},
                                        {"problem", "metrics of fields: not what was stored"}}));
    const Outcome shown = runTavix({"show", "-R", m_path, "--field", "t.city", "--metrics"});
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_THAT(shown.err, HasSubstr("Run 2 is damaged"));
    EXPECT_EQ(runTavix({"show", "-R", m_path, "--run", "1", "--field", "t.city", "--metrics"}).err, "");

    change("DELETE FROM run_checksum");
    EXPECT_EQ(check().exitCode, 0) << "runs of an earlier version have none";
    EXPECT_THAT(check().out, HasSubstr("no checksum"));
}

TEST_F(Check, AFileThatWasCutIsRefusedWhereverItWasCut) {
    const auto size = std::filesystem::file_size(m_path);
    for (const std::uintmax_t lost : {1U, 100U, 511U, 4096U, 8191U, 8192U, 20000U}) {
        const std::string cut = m_folder.file("cut.tavix");
        std::filesystem::copy_file(m_path, cut, std::filesystem::copy_options::overwrite_existing);
        std::filesystem::resize_file(cut, size - lost);
        for (const char* command : {"check", "jobs"}) {
            const Outcome outcome = runTavix({command, "-R", cut});
            EXPECT_EQ(outcome.exitCode, 3) << command << " without the last " << lost << " bytes";
            EXPECT_THAT(outcome.err, HasSubstr("is damaged")) << lost;
        }
    }
}

TEST_F(Check, ARepositoryIsNeitherSourceNorFilterNorOutput) {
    const auto before = std::filesystem::last_write_time(m_path);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"profile", m_path, "-R", m_path},
          {"inspect", m_path, "-R", m_path},
          {"jobs", "-R", m_path, "-o", m_path},
          {"jobs", "-R", m_path, "-o", m_path + "-shm"},
          {"show", "-R", m_path, "--field", "t.city", "--filter", m_path},
          {"profile", m_folder.file("t.csv"), "-R", m_folder.file("n.tavix"), "-o", m_folder.file("n.tavix")}}) {
        const Outcome outcome = runTavix(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments.front();
        EXPECT_THAT(outcome.err, HasSubstr("belongs to the repository")) << arguments.front();
    }
    EXPECT_EQ(std::filesystem::last_write_time(m_path), before);
    EXPECT_EQ(check().exitCode, 0);
}

} // namespace
} // namespace tavix::testing
