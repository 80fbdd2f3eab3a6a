#include "base/Metrics.h"
#include "settings/MetricDisplay.h"
#include "settings/Settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;

class SettingsTest : public ::testing::Test {
  protected:
    int integer(Setting setting, std::string_view stored) {
        EXPECT_TRUE(m_store->write("TAVIX", settingInfo(setting).key, stored));
        return readInteger(*m_store, setting);
    }
    std::string stored(std::string_view key, std::string_view section = "TAVIX") { return m_store->read(section, key); }

    std::unique_ptr<SettingsStore> m_store = makeMemorySettings();
};

TEST_F(SettingsTest, IntegersHaveDefaultsAndAreBroughtIntoTheirRange) {
    EXPECT_EQ(readInteger(*m_store, Setting::MaxChartVals), 30);
    EXPECT_EQ(integer(Setting::MaxChartVals, "45"), 30);
    EXPECT_EQ(integer(Setting::MaxChartVals, "0"), 1);
    EXPECT_EQ(integer(Setting::MaxChartVals, ""), 30);
    EXPECT_EQ(integer(Setting::MaxChartVals, " 12abc"), 12);
    for (const Setting setting : {Setting::MaxFreqVals, Setting::MaxPkFkOutliers, Setting::MaxRdndntCmnVals}) {
        EXPECT_EQ(readInteger(*m_store, setting), 100);
        EXPECT_EQ(integer(setting, "-5"), 1);
        EXPECT_EQ(integer(setting, "many"), 1);
        EXPECT_EQ(integer(setting, "99999999999999999999"), 2'000'000'000);
    }
    EXPECT_EQ(readInteger(*m_store, Setting::MaxDrillThruRows), 1000);
    EXPECT_EQ(readInteger(*m_store, Setting::StatFontSize), 90);
}

TEST_F(SettingsTest, SecondThresholdIsNeverBelowTheFirst) {
    EXPECT_EQ(readInteger(*m_store, Setting::FirstRDAThreshold), 20);
    EXPECT_EQ(readInteger(*m_store, Setting::SecondRDAThreshold), 50);
    EXPECT_EQ(integer(Setting::SecondRDAThreshold, "10"), 20);
    EXPECT_EQ(integer(Setting::FirstRDAThreshold, "-1"), 0);
    EXPECT_EQ(integer(Setting::FirstRDAThreshold, "101"), 100);
    EXPECT_EQ(readInteger(*m_store, Setting::SecondRDAThreshold), 100);
}

TEST_F(SettingsTest, FlagsAndTexts) {
    for (const auto& [text, set] : {std::pair("1", true), {"0", false}, {"", false}, {"true", false}, {"2", false}}) {
        ASSERT_TRUE(m_store->write("TAVIX", "NotesSortOrder", text));
        EXPECT_EQ(readFlag(*m_store, Setting::NotesSortOrder), set) << text;
    }
    for (const auto& [text, set] : {std::pair("Y", true), {"y", true}, {"N", false}, {"", false}, {"1", false}}) {
        ASSERT_TRUE(m_store->write("TAVIX", "StatFontIsBold", text));
        EXPECT_EQ(readFlag(*m_store, Setting::StatFontIsBold), set) << text;
    }
    ASSERT_TRUE(writeFlag(*m_store, Setting::HideWelcomeDialog, true));
    EXPECT_EQ(stored("HideWelcomeDialog"), "1");
    ASSERT_TRUE(writeInteger(*m_store, Setting::MaxChartVals, 500));
    EXPECT_EQ(stored("MaxChartVals"), "30");
    const DataFont font{"Some Mono", 2, 105, true, false};
    ASSERT_TRUE(writeStatFont(*m_store, font));
    EXPECT_EQ(stored("StatFontIsBold") + stored("StatFontIsItalic"), "YN");
    EXPECT_EQ(readStatFont(*m_store), font);
}

TEST_F(SettingsTest, LocaleOfTheProfileComesFirst) {
    ASSERT_TRUE(writeText(*m_store, Setting::DefaultLocale, "de_DE"));
    EXPECT_EQ(readText(*m_store, Setting::DefaultLocale), "de_DE");
    EXPECT_EQ(stored("DefaultLocale", "PROFILE"), "");
    ASSERT_TRUE(m_store->write("PROFILE", "DefaultLocale", "fr_FR"));
    EXPECT_EQ(readText(*m_store, Setting::DefaultLocale), "fr_FR");
    ASSERT_TRUE(writeText(*m_store, Setting::DefaultLocale, "it_IT"));
    EXPECT_EQ(readText(*m_store, Setting::DefaultLocale), "it_IT");
    ASSERT_TRUE(writeText(*m_store, Setting::DefaultLocale, ""));
    EXPECT_EQ(readText(*m_store, Setting::DefaultLocale), "");
}

TEST(MetricDisplay, ChoiceOfAMetric) {
    const auto choice = [](std::string_view text) {
        const MetricDisplay metric = parseMetricChoice(text);
        return std::pair(metric.shown, metric.position);
    };
    EXPECT_EQ(choice("S7"), std::pair(true, 7));
    EXPECT_EQ(choice("U"), std::pair(false, 0));
    EXPECT_EQ(choice("U12"), std::pair(false, 12));
    EXPECT_EQ(choice(""), std::pair(false, 0));
    EXPECT_EQ(choice("s3"), std::pair(false, 3));
    EXPECT_EQ(choice("S-4x"), std::pair(true, -4));
    EXPECT_EQ(formatMetricChoice({"", true, 7}), "S7");
    EXPECT_EQ(formatMetricChoice({"", false, 0}), "U0");
}

TEST(MetricDisplay, OrderIsByPlaceThenById) {
    const std::vector<MetricDisplay> metrics = {
        {"a", true, 2}, {"b", false, 0}, {"c", true, 0}, {"d", true, 0}, {"e", true, -1}};
    EXPECT_THAT(metricOrder(metrics), ElementsAre(4, 1, 2, 3, 0));
    EXPECT_THAT(shownMetrics(metrics), ElementsAre(4, 2, 3, 0));
}

TEST(MetricDisplay, AFirstStartShowsAllMetricsAndNeverReplacesAChoice) {
    const std::unique_ptr<SettingsStore> store = makeMemorySettings();
    ASSERT_TRUE(store->write("TAVIX", "Metric23", "U5"));
    ASSERT_TRUE(writeFirstStartDefaults(*store));
    EXPECT_EQ(store->read("TAVIX", "Metric23"), "U5");
    EXPECT_EQ(store->read("TAVIX", "Metric0"), "");

    ASSERT_TRUE(store->write("TAVIX", "Metric23", ""));
    ASSERT_TRUE(writeFirstStartDefaults(*store));
    std::string names;
    for (const int id : shownMetrics(standardMetricDisplay(*store)))
        names += std::string(findMetric(id)->name) + (id == 20 ? "" : ", ");
    EXPECT_EQ("Actual Type, Percent Null, Unique Count, Unique Percent, Minimum Value, Maximum Value, Mean, Mode, "
              "Count, Null Count, Non-null Count, Blank Count, Pattern Count, Minimum Length, Maximum Length, Median, "
              "Standard Deviation, Standard Error, Defined Type, Defined Length, Ordinal, Primary Key, Nullable, "
              "Precision",
              names);
    EXPECT_EQ(store->read("TAVIX", "Metric21"), "S0");
    EXPECT_EQ(store->read("TAVIX", "Metric0"), "S8");
    EXPECT_EQ(store->read("TAVIX", "Metric20"), "S23");
}

TEST(SettingFamilies, EveryFamilyHasKeysOfItsOwn) {
    const std::unique_ptr<SettingsStore> store = makeMemorySettings();
    for (const auto& [family, value] : {std::pair(SettingFamily::MetricChoice, "1"),
                                        {SettingFamily::RecentFilters, "2"},
                                        {SettingFamily::NamedFilters, "3"},
                                        {SettingFamily::ColumnWidth, "4"},
                                        {SettingFamily::ColumnShown, "5"}})
        ASSERT_TRUE(writeMember(*store, family, "7", value));
    EXPECT_EQ(store->read("TAVIX", "Metric7") + store->read("FILTERS", "7Recent") + store->read("FILTERS", "7Named") +
                  store->read("COLUMNS", "7") + store->read("COLUMNS", "7.shown"),
              "12345");
    EXPECT_EQ(readMember(*store, SettingFamily::NamedFilters, "7"), "3");
    EXPECT_EQ(readMember(*store, SettingFamily::NamedFilters, "8"), "");
}

} // namespace
} // namespace tavix
