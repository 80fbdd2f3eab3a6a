#include "base/LibraryDate.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>

namespace tavix {
namespace {

class LibraryDateTest : public ::testing::Test {
  protected:
    void zone(const char* name) {
        ::setenv("TZ", name, 1);
        ::tzset();
    }
    void TearDown() override {
        ::unsetenv("TZ");
        ::tzset();
    }
};

UtcTime utc(int year, unsigned month, unsigned day, int hour, int minute, int second) {
    using namespace std::chrono;
    return sys_days{std::chrono::year{year} / month / day} + hours{hour} + minutes{minute} + seconds{second};
}

TEST_F(LibraryDateTest, CountsLocalDaysFromTheEndOf1899) {
    zone("UTC0");
    EXPECT_DOUBLE_EQ(toLibraryDate(utc(1899, 12, 30, 0, 0, 0)), 0.0);
    EXPECT_DOUBLE_EQ(toLibraryDate(utc(2000, 1, 1, 12, 0, 0)), 36526.5);
    zone("XXX-2");
    EXPECT_DOUBLE_EQ(toLibraryDate(utc(2000, 1, 1, 10, 0, 0)), 36526.5);
}

TEST_F(LibraryDateTest, DecompositionRoundsToSeconds) {
    zone("UTC0");
    const auto time = utc(2026, 11, 21, 23, 59, 59);
    EXPECT_EQ(decompose(toLibraryDate(time)), (DateParts{2026, 11, 21, 23, 59, 59}));
    EXPECT_EQ(decompose(-0.25), (DateParts{1899, 12, 29, 18, 0, 0}));
    EXPECT_EQ(decompose(1e30), DateParts{});
    EXPECT_EQ(decompose(std::numeric_limits<double>::quiet_NaN()), DateParts{});
    EXPECT_EQ(decompose(-693593), (DateParts{1, 1, 1, 0, 0, 0}));
    EXPECT_EQ(decompose(-693593.5), DateParts{});
    EXPECT_EQ(decompose(2958465.5), (DateParts{9999, 12, 31, 12, 0, 0}));
    EXPECT_EQ(decompose(2958466), DateParts{});
}

TEST_F(LibraryDateTest, TextOfADate) {
    EXPECT_EQ(formatDateTime({2026, 11, 21, 8, 5, 9}, std::locale::classic()), "Sat Nov 21 08:05:09 2026");
}

} // namespace
} // namespace tavix
