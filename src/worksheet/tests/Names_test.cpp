#include "worksheet/CellName.h"
#include "worksheet/SheetNames.h"

#include <gtest/gtest.h>

#include <string>

namespace tavix::worksheet {
namespace {

TEST(CellName, NamesAndCellsFitEachOther) {
    struct Case {
        const char* name;
        Cell cell;
    };
    for (const Case& c :
         {Case{"A1", {0, 0}}, Case{"B2", {1, 1}}, Case{"Z10", {9, 25}}, Case{"AA1", {0, 26}}, Case{"AB12", {11, 27}},
          Case{"IV65536", {65535, 255}}, Case{"IW1", {0, 256}}, Case{"ZZZ999999999999", {999'999'999'998, 18277}}}) {
        const auto parsed = parseCellName(c.name);
        ASSERT_TRUE(parsed) << c.name;
        EXPECT_EQ(*parsed, c.cell) << c.name;
        EXPECT_EQ(cellName(c.cell), c.name);
    }
    EXPECT_EQ(*parseCellName("iv007"), (Cell{6, 255}));
}

TEST(CellName, WhatIsNoNameIsAnError) {
    for (const char* name : {"", "A", "1", "A0", "A-1", "A+1", " A1", "A1 ", "A1B", "AAAA1", "$A$1", "A1.0", "A1:B2",
                             "A1000000000000", "\u00C41"})
        EXPECT_FALSE(parseCellName(name)) << name;
    EXPECT_EQ(parseCellName(std::string(5000, 'A')).error().text.size(),
              40 + std::string("\"\" is not the name of a cell").size());
}

TEST(SheetNames, InvalidNamesAreRefusedAndCanBeMadeValid) {
    const std::string longest(31, 'n');
    const std::string pairs = "012345678901234567890123456789\U0001F600"; // 32 units
    struct Case {
        std::string name;
        std::string valid;
    };
    for (const Case& c :
         {Case{"Orders", "Orders"}, Case{longest, longest}, Case{longest + "n", longest},
          Case{pairs, "012345678901234567890123456789"}, Case{"", "Sheet"}, Case{"a[b]:c*d?e/f\\g", "a_b__c_d_e_f_g"},
          Case{"'quoted'", "_quoted_"}, Case{"it's", "it's"}, Case{"line\nbreak", "line_break"},
          Case{"HISTORY", "HISTORY_"}, Case{"'", "_"}, Case{"\u6771\u4EAC", "\u6771\u4EAC"},
          Case{std::string(100'000, '/'), std::string(31, '_')}}) {
        EXPECT_EQ(toSheetName(c.name), c.valid);
        EXPECT_TRUE(checkSheetName(c.valid)) << c.valid;
        EXPECT_EQ(checkSheetName(c.name).ok(), c.name == c.valid) << c.name;
    }
}

TEST(SheetNames, CaseMakesNoDifferenceAndFurtherNamesAreFree) {
    SheetNames names;
    ASSERT_TRUE(names.add("\u00C4pfel"));
    EXPECT_FALSE(names.add("\u00E4PFEL"));
    ASSERT_TRUE(names.add("\u00C4pfel (2)"));
    EXPECT_EQ(*names.addFurther("\u00C4pfel", 2), "\u00C4pfel (3)");
    EXPECT_EQ(*names.addFurther(std::string(31, 'n'), 10), std::string(26, 'n') + " (10)");
    names.remove("\u00E4pfel");
    EXPECT_TRUE(names.add("\u00E4PFEL"));
}

} // namespace
} // namespace tavix::worksheet
