#include "grid/StoredColumns.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

TEST(StoredColumns, AreKeptByGridAndColumn) {
    const auto store = makeMemorySettings();
    StoredColumns widths(*store, "outliers");
    StoredColumns others(*store, "outliers1");
    EXPECT_EQ(std::nullopt, widths.ReadWidth("Count"));
    widths.KeepWidth("Count", 77);
    widths.KeepWidth("1.5/3.0", 33);
    widths.KeepWidth("Null %", 44);
    others.KeepWidth("Count", 99);
    EXPECT_EQ(77, StoredColumns(*store, "outliers").ReadWidth("Count"));
    EXPECT_EQ(33, widths.ReadWidth("1.5/3.0"));
    EXPECT_EQ(44, widths.ReadWidth("Null %"));
    EXPECT_EQ(99, others.ReadWidth("Count"));
    EXPECT_EQ(std::nullopt, others.ReadWidth("Null %"));
    widths.KeepWidth("Count", 78);
    EXPECT_EQ(78, widths.ReadWidth("Count"));
}

// Headings that differ only in special characters, or consist of them, belong to different columns.
TEST(StoredColumns, HeadingsOfSignsOrOfOtherScriptsAreToldApart) {
    const auto store = makeMemorySettings();
    StoredColumns widths(*store, "grid");
    const char* headings[] = {"Percent", "% Percent", "%", "P", "#", "[x]=1", "x 1", "Größe", "Gre", "数", "値", ""};
    int width = 100;
    for (const char* heading : headings)
        widths.KeepWidth(heading, width++);
    width = 100;
    for (const char* heading : headings)
        EXPECT_EQ(width++, widths.ReadWidth(heading)) << heading;
}

TEST(StoredColumns, ShownColumnsAreKeptBesideTheWidths) {
    const auto store = makeMemorySettings();
    StoredColumns columns(*store, "grid");
    EXPECT_EQ(std::nullopt, columns.ReadShown("Share"));
    columns.KeepWidth("Share", 80);
    columns.KeepShown("Share", false);
    columns.KeepShown("Sum", true);
    EXPECT_EQ(false, StoredColumns(*store, "grid").ReadShown("Share"));
    EXPECT_EQ(true, StoredColumns(*store, "grid").ReadShown("Sum"));
    EXPECT_EQ(80, columns.ReadWidth("Share"));
    EXPECT_EQ(std::nullopt, StoredColumns(*store, "other").ReadShown("Share"));
    ASSERT_TRUE(store->write("COLUMNS", "grid.Share.shown", "yes"));
    EXPECT_EQ(std::nullopt, columns.ReadShown("Share"));
}

TEST(StoredColumns, WhatSomebodyWroteIntoTheFileIsNoWidthUnlessItCanBeOne) {
    const auto store = makeMemorySettings();
    StoredColumns widths(*store, "grid");
    widths.KeepWidth("Count", 100);
    const struct {
        const char* written;
        std::optional<int> read;
    } cases[] = {{"20", 20},
                 {"4000", 4000},
                 {"19", {}},
                 {"4001", {}},
                 {"-100", {}},
                 {"", {}},
                 {"wide", {}},
                 {"100px", {}},
                 {"1e2", {}},
                 {"0", {}},
                 {"99999999999999999999", {}}};
    for (const auto& each : cases) {
        ASSERT_TRUE(store->write("COLUMNS", "grid.Count", each.written));
        EXPECT_EQ(each.read, widths.ReadWidth("Count")) << each.written;
    }
}

} // namespace
} // namespace tavix
