#include "tabs/PictureWidth.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

TEST(PictureWidth, GivesTheListWhatItNeeds) {
    EXPECT_EQ(pictureWidth(980, 450, 0), 530);
    EXPECT_EQ(pictureWidth(980, 700, 0), 280);
    EXPECT_EQ(pictureWidth(980, 741, 0), 0) << "too little is left";
    EXPECT_EQ(pictureWidth(519, 100, 0), 0);
    EXPECT_EQ(pictureWidth(2000, 360, 0), 1240) << "not all of a wide tab";
}

TEST(PictureWidth, IsTheUsersWithinTheTab) {
    EXPECT_EQ(pictureWidth(980, 900, 400), 400) << "although the list has less than it needs";
    EXPECT_EQ(pictureWidth(980, 300, 100), 240);
    EXPECT_EQ(pictureWidth(600, 300, 900), 360);
    EXPECT_EQ(pictureWidth(519, 300, 300), 0);
}

} // namespace
} // namespace tavix
