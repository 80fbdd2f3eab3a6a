#include "base/Metrics.h"
#include "support/RunScript.h"
#include "support/SampleViewer.h"
#include "tabs/MetricDoor.h"
#include "tabs/MetricText.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

MetricDoor doorAt(MetricId metric, const KvbString& value) {
    const int id = static_cast<int>(metric);
    return doorOf(id, metricCell(id, "S", value));
}

TEST(MetricDoor, OnlyFiguresWithRowsOfTheirOwnOpenThem) {
    EXPECT_EQ(MetricDoor::Nulls, doorAt(MetricId::NullCount, "1234"));
    EXPECT_EQ(MetricDoor::None, doorAt(MetricId::NullCount, "0"));
    EXPECT_EQ(MetricDoor::None, doorAt(MetricId::NullCount, {}));
    EXPECT_EQ(MetricDoor::Blanks, doorAt(MetricId::BlankCount, "1"));
    EXPECT_EQ(MetricDoor::None, doorAt(MetricId::BlankCount, "0"));
    for (const MetricId metric : {MetricId::MinimumValue, MetricId::MaximumValue, MetricId::Mode}) {
        EXPECT_EQ(MetricDoor::Value, doorAt(metric, "0"));
        EXPECT_EQ(MetricDoor::Value, doorAt(metric, "")) << "the empty text is a value";
        EXPECT_EQ(MetricDoor::None, doorAt(metric, {}));
    }
    EXPECT_EQ(MetricDoor::None, doorAt(MetricId::Mean, "7"));
    EXPECT_EQ(MetricDoor::None, doorOf(-1, {}));
}

class Blanks : public testing::SampleViewer {
  protected:
    std::vector<std::string> read(const std::string& field, std::int64_t count, std::size_t most = 2) {
        const auto blanks = readBlanks(*m_viewer, m_sample.fields.at(field), count, most);
        EXPECT_TRUE(blanks) << blanks.error().text;
        std::vector<std::string> texts;
        for (const KvbString& blank : *blanks)
            texts.push_back("'" + blank.str() + "'");
        return texts;
    }
};

TEST_F(Blanks, AreTheValuesOfWhiteSpaceAndNotTheEmptyText) {
    EXPECT_THAT(read("customers/name", 20), ElementsAre("'   '"));
    EXPECT_THAT(read("customers/name", 21), ElementsAre("'   '")) << "a count that does not fit ends with the list";
    EXPECT_THAT(read("customers/id", 1), IsEmpty());
    m_viewer->close();
    EXPECT_FALSE(readBlanks(*m_viewer, m_sample.fields.at("customers/name"), 20, 2));
}

} // namespace
} // namespace tavix
