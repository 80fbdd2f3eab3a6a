#include "access/tests/DrilledRuns.h"
#include "sql/tests/StoredRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

/// Drill-downs to files that were moved after the run.
namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::storedRows;

namespace fs = std::filesystem;

class MovedFiles : public testing::DrilledRuns {
  protected:
    void SetUp() override {
        write("id,city\n1,Bern\n2,Ulm\n");
        profile();
        fs::create_directory(m_elsewhere);
    }
    /// "ok" and the remark if the path is accepted, else the error.
    std::string relocate(const std::string& from, const std::string& to) {
        KvbString remark;
        return m_viewer->relocateFile(from, to, remark) ? "ok " + remark.str() : error();
    }
    void openAgain() {
        m_viewer = PrViewer::create();
        ASSERT_TRUE(m_viewer->init(m_repository) && m_viewer->setCurrentJobSetup(1)) << error();
    }

    std::string m_elsewhere = m_folder.file("elsewhere");
    std::string m_moved = m_folder.file("elsewhere/orders.csv");
};

TEST_F(MovedFiles, AreReadWhereTheUserLocatesThemAndTheRepositoryRemembersIt) {
    EXPECT_THAT(rows("city", "Ulm"), ElementsAre("2"));
    EXPECT_FALSE(m_viewer->getMissingFile());
    fs::rename(m_file, m_moved);
    EXPECT_FALSE(open("city", "Ulm"));
    EXPECT_THAT(error(), HasSubstr("No such file or directory"));
    ASSERT_TRUE(m_viewer->getMissingFile());
    EXPECT_EQ(m_viewer->getMissingFile()->path, m_file);
    EXPECT_EQ(m_viewer->getMissingFile()->suggestion, "") << "it is not beside the repository";

    EXPECT_EQ(relocate(m_file, m_folder.file("nowhere")), "\"" + m_folder.file("nowhere") + "\" is not a file.");
    EXPECT_EQ(relocate("/no/such", m_moved), "No run has read \"/no/such\".");
    EXPECT_EQ(relocate(m_file, m_repository), "\"" + m_repository + "\" is the repository.");
    EXPECT_EQ(relocate(m_file, m_elsewhere), "ok ") << "a folder stands for the file in it";
    EXPECT_THAT(rows("city", "Ulm"), ElementsAre("2"));
    EXPECT_EQ(open("city", "Ulm")->getWarning().str(), "Read from \"" + m_moved + "\".");
    EXPECT_FALSE(m_viewer->getMissingFile());
    openAgain();
    EXPECT_THAT(rows("city", "Ulm"), ElementsAre("2"));

    // Another file at the old path does not replace the rows of this run.
    write("id,city\n7,Ulm\n");
    EXPECT_THAT(rows("city", "Ulm"), ElementsAre("2"));
    // The file itself does.
    fs::copy_file(m_moved, m_file, fs::copy_options::overwrite_existing);
    fs::last_write_time(m_file, fs::last_write_time(m_moved));
    EXPECT_TRUE(open("city", "Ulm")->getWarning().isNull());
    // A path whose file vanished, too, is not used.
    fs::remove(m_moved);
    EXPECT_TRUE(open("city", "Ulm")->getWarning().isNull());
    fs::remove(m_file);
    EXPECT_FALSE(open("city", "Ulm"));
    EXPECT_EQ(m_viewer->getMissingFile()->path, m_file);
}

TEST_F(MovedFiles, OfAnotherSizeOrTimeAreReadWithAWordAndOnlyTheSizeDecidesWhatIsKept) {
    fs::remove(m_file);
    std::ofstream(m_moved) << "id,city\n5,Ulm\n6,Ulm\n7,Bern\n";
    EXPECT_EQ(relocate(m_file, m_moved),
              "ok \"" + m_moved + "\" has 27 bytes where the run read 21. Its place is not kept.");
    EXPECT_THAT(rows("city", "Ulm"), ElementsAre("5", "6"));
    EXPECT_EQ(open("city", "Ulm")->getWarning().str(), "Read from \"" + m_moved + "\". \"" + m_moved +
                                                           "\" changed since the run: it had 21 bytes and has 27 now.");
    openAgain();
    EXPECT_FALSE(open("city", "Ulm"));
    std::ofstream(m_moved) << "id,city\n8,Bern\n9,Ulm\n";
    fs::last_write_time(m_moved, fs::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_EQ(relocate(m_file, m_moved), "ok ");
    EXPECT_THAT(open("city", "Ulm")->getWarning().str(),
                HasSubstr("was written anew since the run; its size is the same"));
    openAgain();
    EXPECT_THAT(rows("city", "Ulm"), ElementsAre("9"));
}

TEST_F(MovedFiles, AreSuggestedWhenTheyLieBesideTheRepository) {
    const std::string folder = m_folder.file("project");
    fs::create_directories(folder + "/data");
    m_repository = folder + "/r.tavix";
    profile();
    fs::rename(m_file, m_moved);
    // Only a file of the same size counts.
    std::ofstream(folder + "/orders.csv") << "id,city\n";
    EXPECT_FALSE(open("city", "Ulm"));
    EXPECT_EQ(m_viewer->getMissingFile()->suggestion, "");
    fs::copy_file(m_moved, folder + "/orders.csv", fs::copy_options::overwrite_existing);
    EXPECT_FALSE(open("city", "Ulm")) << "it is not taken unasked";
    EXPECT_EQ(m_viewer->getMissingFile()->suggestion, folder + "/orders.csv");
}

TEST_F(MovedFiles, TakeTheirNeighboursAlong) {
    const std::vector<std::string> files{m_folder.file("1.csv"), m_folder.file("2.csv")};
    std::ofstream(files[0]) << "id;city\n1;Ulm\n";
    std::ofstream(files[1]) << "id,city\n2,Ulm\n";
    m_repository = m_folder.file("set.tavix");
    profileFiles(files);
    for (const char* name : {"1.csv", "2.csv"})
        fs::rename(m_folder.file(name), m_elsewhere + "/" + name);
    EXPECT_FALSE(open("city", "Ulm"));
    EXPECT_EQ(m_viewer->getMissingFile()->path, files[0]);
    EXPECT_EQ(relocate(files[0], m_elsewhere), "ok ");
    EXPECT_THAT(rows("city", "Ulm"), ElementsAre("1", "2"));
    EXPECT_EQ(storedRows(m_repository, "SELECT path, size, new_path FROM moved_file"),
              files[0] + "|14|" + m_elsewhere + "/1.csv\n");
    openAgain();
    EXPECT_THAT(rows("city", "Ulm"), ElementsAre("1", "2"));
}

TEST_F(MovedFiles, AFileThatWasReplacedByItsUtf16VersionIsReadAsOne) {
    std::string wide = "\xFF\xFE";
    for (const char c : std::string("id,city\n3,Ulm\n"))
        wide += std::string{c, '\0'};
    write(wide);
    EXPECT_THAT(rows("city", "Ulm"), ElementsAre("3"));
    EXPECT_THAT(open("city", "Ulm")->getWarning().str(), HasSubstr("changed since the run"));
    write(std::string("\0\1\2,\x1b[31m,\n1,2,3\n", 18) + std::string(500, 'x'));
    EXPECT_FALSE(open("city", "Ulm"));
    for (const char c : error())
        EXPECT_TRUE(c < 0 || c >= ' ') << error();
}

} // namespace
} // namespace tavix
