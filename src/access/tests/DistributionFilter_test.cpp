// Filtered distributions, compared with a plain evaluation of every row.
#include "access/CacheCursor.h"
#include "access/Layouts.h"
#include "access/PrViewDisplayMessage.h"
#include "access/PrViewer.h"
#include "access/tests/CursorText.h"
#include "base/GenException.h"
#include "base/NumberText.h"
#include "base/tests/TempFolder.h"
#include "expression/tests/RowJudge.h"
#include "repository/RunWriter.h"
#include "sql/Connection.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace tavix {
namespace {

using tavix::testing::rowsOf;
using tavix::testing::TempFolder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using Values = std::vector<std::pair<KvbString, std::uint64_t>>;

/// Three blocks: counts from 20,000 down to 9,999, then many alike; with null, the empty value and all kinds of text.
Values longDistribution() {
    Values values;
    for (std::size_t number = 0; number < 10'002; ++number) {
        const std::uint64_t count = number < 8'000 ? 20'000 - 2 * number : 3;
        switch (number % 5) {
        case 0:
            values.emplace_back(std::to_string(number * 13), count);
            break;
        case 1:
            values.emplace_back(fmt::format("Abc {}", number), count);
            break;
        case 2:
            values.emplace_back(fmt::format("Zürich-{} 日本", number), count);
            break;
        case 3:
            values.emplace_back(fmt::format("K{:05X}", number), count);
            break;
        default:
            values.emplace_back(fmt::format("{}\t*/ 'x'", number), count);
        }
    }
    values[4'100].first = KvbString();
    values[4'101].first = "";
    values[9'000].first = "aBc";
    return values;
}

/// A repository with one field that has these values, and the same rows as patterns.
class Filtered {
  public:
    explicit Filtered(const Values& values) {
        std::vector<repository::ValueCount> rows;
        for (const auto& [value, count] : values)
            rows.push_back({value.view(), count, value.isNull()});
        repository::FieldFacts facts;
        facts.name = "f";
        facts.values = rows;
        facts.patterns = rows;
        auto writer = repository::RunWriter::begin(path, {"Job", "", "", {}});
        repository::TableFacts table;
        table.name = "t";
        auto id = (*writer)->addTable(table);
        EXPECT_TRUE((*writer)->addField(*id, facts));
        EXPECT_TRUE((*writer)->commit({}));
        EXPECT_TRUE(viewer->init(path) && viewer->setCurrentJobSetup(1));
    }

    ProfileCursorHandle values(const KvbString& filter) { return viewer->getFreqDist(1, filter); }
    ProfileCursorHandle patterns(const KvbString& filter) { return viewer->getPatternDist(1, filter); }
    std::string error() const { return viewer->getErrorString().str(); }
    /// All rows of a valid filter.
    std::vector<std::string> rows(ProfileCursorHandle cursor) const {
        if (cursor)
            return rowsOf(*cursor);
        ADD_FAILURE() << error();
        return {};
    }
    void change(const std::string& sql) const {
        auto connection = sql::Connection::openFile(path, sql::OpenMode::Write);
        ASSERT_TRUE(connection && (*connection)->execute(sql));
    }

    TempFolder folder;
    std::string path = folder.file("r.tavix");
    PrViewer::Handle viewer = PrViewer::create();
};

/// The rows of all that pass, computed without blocks.
std::vector<std::string> naive(ProfileCursor& all, int valueColumn, const std::string& code) {
    const std::vector<expression::Field> fields{{"Value", expression::Type::Text},
                                                {"Count", expression::Type::Integer}};
    const expression::Compiled compiled = expression::compile(code, fields, expression::Wanted::Condition);
    EXPECT_TRUE(compiled.ok()) << code << ": " << describe(compiled.error);
    std::vector<std::string> rows;
    if (!compiled.ok())
        return rows;
    expression::RowJudge evaluator(*compiled.program);
    while (all.next()) {
        const KvbString value = all.getColumnValue(valueColumn);
        const std::array<expression::Value, 2> row{value.isNull() ? expression::Value()
                                                                  : expression::Value::ofText(value.view()),
                                                   expression::Value::ofInteger(all.getColumnInt(valueColumn + 1))};
        if (evaluator.judge(row) != expression::Verdict::Passes)
            continue;
        rows.push_back(value.isNull() ? "<null>" : value.str());
        rows.back() += "|" + all.getColumnValue(valueColumn + 1).str();
        if (valueColumn == 1)
            rows.back().insert(0, all.getColumnValue(0).str() + "|");
    }
    return rows;
}

const std::vector<std::string> kConditions{
    "lower(`Value`) == 'abc'",
    "not instr(`Value`,'5') != 0",
    "match_string(`Value`,'*1*2?')",
    "isnull(`Value`)",
    "`Value` == ''",
    "not isnull(`Value`) and length(`Value`) < 3",
    "isnull(`Value`) or `Value` == '' or `Count` == 19998",
    "`Count` > 10",
    "`Count` < 12000",
    "`Count` >= 9000 and `Count` <= 11900",
    "`Count` > 11700 and `Count` < 11900 and instr(`Value`,'Abc') != 0",
    "`Count` < 11900 and isnull(`Value`)",
    "`Count` == 3 and `Value` > 'K'",
    "`Count` == 11810",
    "`Count` > 1000000",
    "`Count` < 0",
    "not `Count` > 11802",
    "`Count` % 7 == 0",
    "`Count` > 4 and (instr(`Value`,'7') != 0 or `Value` == 'Abc 1')",
    "if has_control_chars(`Value`) then\r\n   return false\r\nelse\r\n   return true\r\n",
    "compare(left(`Value`,2),'Zü',false) == 0",
    "upper(`Value`) == `Value`",
    "isnumber(`Value`)",
    "inlist(`Value`,'13','26','aBc')",
    "tonumber(`Value`) > 50000",
    "true",
    "false",
    "null",
    "/* a remark */ `value` == 'aBc'",
};

TEST(DistributionFilter, RowsAreThoseOfANaiveWalk) {
    Filtered of(longDistribution());
    for (const std::string& code : kConditions) {
        ProfileCursorHandle all = of.values("");
        EXPECT_EQ(of.rows(of.values(code)), naive(*all, 0, code)) << code;
        ProfileCursorHandle allPatterns = of.patterns("");
        EXPECT_EQ(of.rows(of.patterns(code)), naive(*allPatterns, 1, code)) << code;
    }
}

TEST(DistributionFilter, NullAndEmptyAreTold) {
    Filtered of({{"a", 9}, {KvbString(), 8}, {"", 7}, {" ", 7}});
    EXPECT_THAT(of.rows(of.values("isnull(`Value`)")), ElementsAre("<null>|8"));
    EXPECT_THAT(of.rows(of.values("`Value` != 'a'")), ElementsAre("|7", " |7"));
    EXPECT_THAT(of.rows(of.patterns("isblank(`Value`)")), ElementsAre("3||7", "4| |7"));
    EXPECT_THAT(of.rows(of.values("`Value` == null")), IsEmpty());
    Filtered none({});
    EXPECT_THAT(none.rows(none.values("true")), IsEmpty());
    Filtered one({{KvbString(), 1}});
    EXPECT_THAT(one.rows(one.values("true")), ElementsAre("<null>|1"));
}

TEST(DistributionFilter, TheConditionBlockIsPassedOver) {
    Filtered of({{"a*/b", 9}, {"c", 8}});
    const std::string block = "/*{{BEGIN CONDITIONS\r\nOPERATION=0\r\nVALUES=\"a*/b\"\r\n}}END CONDITIONS*/\r\n";
    EXPECT_THAT(of.rows(of.values(block + "`Value` == 'a*/b'")), ElementsAre("a*/b|9"));
    EXPECT_FALSE(of.values(block + "if `Count` > 1 then\r\n  retrun true"));
    EXPECT_THAT(of.error(), HasSubstr("line 2, column 3"));
    // A block without its end is an ordinary comment.
    EXPECT_FALSE(of.values("/*{{BEGIN CONDITIONS\r\nVALUES=\"a*/b\"\r\n`Value` == 'c'"));
    EXPECT_THAT(of.error(), HasSubstr("line 2, column 13"));
}

TEST(DistributionFilter, WhatIsNoConditionFailsWithItsPlace) {
    Filtered of({{"a", 9}});
    const std::vector<std::pair<std::string, std::string>> texts{
        {"`Vlaue` == 'a'", "line 1, column 1: there is no field `Vlaue`"},
        {"`Value` ==\n 'a' and", "line 2, column 9"},
        {"`Count`", "line 1, column 1"},
        {" ", "line 1"},
        {"`Value` == 'C:\\'", "line 1, column"},
        {std::string("\xff\0", 2), "line 1, column 1"},
        {std::string(2'000'000, '('), "line 1"},
    };
    for (const auto& [text, place] : texts) {
        EXPECT_FALSE(of.values(text)) << text.substr(0, 40);
        EXPECT_THAT(of.error(),
                    ::testing::AllOf(::testing::StartsWith("The filter is not understood: "), HasSubstr(place)));
        EXPECT_FALSE(of.patterns(text)) << text.substr(0, 40);
    }
    EXPECT_FALSE(of.values("/*{{BEGIN CONDITIONS\r\n}}END CONDITIONS*/\r\nCannot display expression:\r\n\r\nCondition "
                           "list cannot end with AND or OR"));
    EXPECT_EQ(of.error(), "The filter was saved unfinished: Condition list cannot end with AND or OR.");
    EXPECT_FALSE(of.viewer->getFreqDist(99, "true"));
    EXPECT_EQ(of.error(), "There is no field with the number 99.");
}

/// Records its calls, and stops at one of them.
class Stopper final : public PrViewDisplayMessage {
  public:
    explicit Stopper(std::size_t last) : m_last(last) {}
    bool progress(std::string_view text, std::int64_t done, std::int64_t total) override {
        told.push_back(fmt::format("{} {} of {}", text, done, total));
        return told.size() < m_last;
    }
    std::vector<std::string> told;

  private:
    std::size_t m_last;
};

TEST(DistributionFilter, AWalkThatFindsNothingCanBeStopped) {
    const Values values = longDistribution();
    Filtered of(values);
    for (const bool isPattern : {false, true}) {
        Stopper sink(2);
        const KvbString filter("`Value` == 'none has it'");
        const ProfileCursorHandle cursor =
            isPattern ? of.viewer->getPatternDist(1, filter, &sink) : of.viewer->getFreqDist(1, filter, &sink);
        ASSERT_TRUE(cursor);
        EXPECT_THROW((void)cursor->next(), GenException);
        EXPECT_FALSE(cursor->next()) << "it goes on after it was stopped";
        EXPECT_THAT(sink.told, ElementsAre(fmt::format("Filtering 4096 of {}", values.size()),
                                           fmt::format("Filtering 8192 of {}", values.size())));
    }
    // A filter that is not stopped gives the same rows as without a sink.
    Stopper patient(1000);
    EXPECT_EQ(of.rows(of.viewer->getFreqDist(1, {}, &patient)), of.rows(of.values({})));
    EXPECT_EQ(patient.told.size(), 2U);
}

TEST(DistributionFilter, ABlockOfLongTextsCanBeStoppedWithin) {
    Values values;
    for (int i = 0; i < 4000; ++i)
        values.emplace_back(std::to_string(i), 1);
    Filtered of(values);
    Stopper sink(3);
    const ProfileCursorHandle cursor = of.viewer->getFreqDist(
        1, "length(replace(rpad(`Value`, 65536, 'x'), 'x', '" + std::string(200, 'y') + "')) == 1", &sink);
    ASSERT_TRUE(cursor);
    EXPECT_THROW((void)cursor->next(), GenException);
    EXPECT_EQ(sink.told.size(), 3U);
}

TEST(DistributionFilter, RowsThatCannotBeEvaluatedAreTold) {
    Values values = longDistribution();
    for (const std::size_t row : {4'200, 9'500})
        values[row].first = "9223372036854775807";
    Filtered of(values);
    const std::string code = "tointeger(`Value`) + 1 > 5 or `Value` == 'aBc'";
    ProfileCursorHandle cursor = of.values(code);
    ASSERT_TRUE(cursor);
    EXPECT_TRUE(cursor->getWarning().isNull());
    CacheCursor cached(*cursor);
    EXPECT_GT(cached.getRowCount(), 1000U);
    const char* const kWarning = "The filter could not be evaluated for 2 rows, which are left out. Row 4201: ";
    EXPECT_THAT(cursor->getWarning().str(), ::testing::StartsWith(kWarning));
    EXPECT_THAT(cursor->getWarning().str(), HasSubstr("exceeds 64 bits"));
    EXPECT_EQ(cached.getWarning(), cursor->getWarning());

    // A row excluded by its count is not evaluated, whatever else its block contains.
    for (const auto& [condition, failures] : {std::pair("`Count` > 12000", 0), std::pair("`Count` == 11600", 1),
                                              std::pair("`Count` < 11600", 1), std::pair("`Count` > 4", 1)}) {
        cursor = of.values(fmt::format("tointeger(`Value`) + 1 > 5 and {}", condition));
        ASSERT_TRUE(cursor);
        (void)rowsOf(*cursor);
        const std::string told = failures == 0 ? "" : fmt::format("for {} row", failures);
        EXPECT_THAT(cursor->getWarning().str(), HasSubstr(told)) << condition;
        EXPECT_EQ(cursor->getWarning().isNull(), failures == 0) << condition;
    }
}

TEST(DistributionFilter, OnlyTheBlocksThatAreNeededAreRead) {
    Filtered of(longDistribution());
    // Reading any block but the first one fails from now on.
    of.change("UPDATE distribution_block SET payload = x'00' WHERE block > 0");
    ProfileCursorHandle cursor = of.values("instr(`Value`,'1') != 0");
    ASSERT_TRUE(cursor) << of.error();
    for (int row = 0; row < 100; ++row)
        ASSERT_TRUE(cursor->next());
    EXPECT_THROW(rowsOf(*cursor), GenException);
    EXPECT_FALSE(cursor->next()) << "the end, after a failure";
    // Counts descend: no row after the block can pass.
    EXPECT_EQ(of.rows(of.values("`Count` > 19000 and not isnull(`Value`)")).size(), 500U);
    EXPECT_THAT(of.rows(of.values("false")), IsEmpty());
    cursor = of.values("`Count` > 11800");
    ASSERT_TRUE(cursor);
    EXPECT_THROW(rowsOf(*cursor), GenException);
    of.change("UPDATE distribution_block SET payload = x'00'");
    EXPECT_FALSE(of.values("`Count` > 19000"));
    EXPECT_EQ(of.error(), "A stored distribution is damaged.");
}

TEST(DistributionFilter, CountsThatDoNotFitAreNoSilentNegatives) {
    Filtered of({{"a", ~std::uint64_t{0}}, {"b", 1}});
    EXPECT_EQ(of.rows(of.values("not isnull(`Value`)")).size(), 2U);
    ProfileCursorHandle cursor = of.values("`Count` < 5");
    ASSERT_TRUE(cursor);
    EXPECT_THROW(cursor->next(), GenException);
}

TEST(DistributionFilter, ACursorThatOutlivesItsViewerFails) {
    Filtered of(longDistribution());
    ProfileCursorHandle cursor = of.values("`Count` > 3");
    ASSERT_TRUE(cursor && cursor->next());
    of.viewer.reset();
    EXPECT_THROW(cursor->next(), GenException);
}

} // namespace
} // namespace tavix
