// `tavix findings`.
#include "OverPeople.h"

namespace tavix::testing {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// customers.csv: 60 rows, zip codes with zeros, two names with blanks, a city that is unknown.
class Findings : public OverPeople {
  protected:
    void SetUp() override {
        std::string text = "zip,name,city\n";
        for (int i = 0; i < 60; ++i)
            text += "0" + std::to_string(4000 + i * 7) + ",Ann" + std::string(1, static_cast<char>('a' + i % 26)) +
                    std::string(1, static_cast<char>('a' + i / 26)) + (i % 30 == 1 ? " " : "") + "," +
                    (i % 20 == 0  ? "unknown"
                     : i % 2 == 0 ? "Bern"
                                  : "Rio") +
                    "\n";
        write("customers.csv", text);
        ASSERT_EQ(runTavix({"profile", m_folder.file("customers.csv"), "-R", m_repository}).exitCode, 0);
    }
    std::vector<std::string> codes(const std::vector<std::string>& arguments) {
        std::vector<std::string> codes;
        for (const json& entry : asJson(arguments))
            codes.push_back(entry["code"]);
        return codes;
    }
};

TEST_F(Findings, AreListedWithTheirTextsTheMostCertainFirst) {
    EXPECT_THAT(codes({"findings"}), ElementsAre("zero-padded-numbers", "blanks-at-ends", "placeholder-words"));
    EXPECT_THAT(codes({"findings", "customers.city"}), ElementsAre("placeholder-words"));
    EXPECT_THAT(codes({"findings", "-t", "customers", "-f", "name"}), ElementsAre("blanks-at-ends"));
    const json blanks = asJson({"findings", "customers.name"})[0];
    EXPECT_EQ(blanks["likelihood"], "definite");
    EXPECT_EQ(blanks["table"], "customers");
    EXPECT_EQ(blanks["values"], 2);
    EXPECT_EQ(blanks["rows"], 2);
    EXPECT_EQ(blanks["sentence"], "Blanks at the ends: 2 values in 2 rows (3.33 %)");
    EXPECT_EQ(blanks["condition"], "not isblank(`Value`) and `Value` != trim(`Value`)");
    EXPECT_EQ(blanks["rule"], "not ifnull(not isblank(`name`) and `name` != trim(`name`), false)");
    EXPECT_THAT(blanks["advice"], HasSubstr("Trim the field"));
    EXPECT_THAT(run({"findings"}).out,
                HasSubstr("Words for a missing value: 1 value in 3 rows (5.00 %); \"unknown\" (3)"));
    ASSERT_EQ(asCsv({"findings"}).size(), 4U);
}

/// The door: the condition finds the values, and the rule the rows.
TEST_F(Findings, ConditionAndRuleGiveTheValuesAndRows) {
    for (const json& entry : asJson({"findings"})) {
        const std::string field = "customers." + entry["field"].get<std::string>();
        const json values = asJson({"show", "--job", "customers", "--field", field, "--filter", entry["condition"]});
        std::int64_t rows = 0;
        for (const json& value : values)
            rows += value["count"].get<std::int64_t>();
        EXPECT_EQ(values.size(), entry["values"]) << entry;
        EXPECT_EQ(rows, entry["rows"]) << entry;
        if (entry["rule"].is_null())
            continue;
        const std::string job = "watch " + entry["code"].get<std::string>();
        write("watch.yaml", "job: " + job + "\ntables:\n  - file: customers.csv\n    rules:\n      - name: R\n" +
                                "        condition: >-\n          " + entry["rule"].get<std::string>() + "\n");
        ASSERT_EQ(run({"profile", m_folder.file("watch.yaml")}).exitCode, 0);
        EXPECT_EQ(asJson({"rules", "--job", job})[0]["failed_rows"], entry["rows"]) << entry["rule"];
    }
}

TEST_F(Findings, FailOnWhatIsCertainEnoughAndNotDismissed) {
    EXPECT_EQ(run({"findings", "--fail-at", "definite"}).exitCode, 1);
    EXPECT_THAT(run({"findings", "--fail-at", "likely"}).err, HasSubstr("3 findings are likely or more certain"));
    EXPECT_EQ(run({"findings", "customers.city", "--fail-at", "definite"}).exitCode, 0);
    EXPECT_THAT(codes({"findings", "customers.zip", "--dismiss", "zero-padded-numbers", "--reason", "Postal codes"}),
                IsEmpty());
    EXPECT_EQ(run({"findings", "customers.zip", "--fail-at", "possible"}).exitCode, 0);
    EXPECT_THAT(run({"findings"}).err, HasSubstr("1 dismissed"));
    ASSERT_EQ(runTavix({"profile", m_folder.file("customers.csv"), "-R", m_repository}).exitCode, 0);
    EXPECT_THAT(codes({"findings"}), ElementsAre("blanks-at-ends", "placeholder-words")) << "dismissed over runs";
    const json dismissed = asJson({"findings", "--dismissed"});
    ASSERT_EQ(dismissed.size(), 1U);
    EXPECT_EQ(dismissed[0]["reason"], "Postal codes");
    EXPECT_FALSE(dismissed[0]["dismissed_by"].get<std::string>().empty());
    EXPECT_THAT(codes({"findings", "customers.zip", "--restore", "zero-padded-numbers"}),
                ElementsAre("zero-padded-numbers"));
}

TEST_F(Findings, WrongRequestsAreRefused) {
    expectFailure(2, {"findings", "customers.zip", "--dismiss", "zero-padded-numbers"}, "--dismiss goes with --reason");
    expectFailure(2, {"findings", "--dismiss", "zero-padded-numbers", "--reason", "x"}, "a finding of what?");
    expectFailure(2, {"findings", "customers.zip", "--dismiss", "zero", "--reason", "x"},
                  "no kind of finding \"zero\"");
    expectFailure(2, {"findings", "customers.zip", "--dismiss", "line-breaks", "--reason", "x"},
                  "the field has no finding \"line-breaks\"");
    expectFailure(2, {"findings", "customers.zip", "--restore", "zero-padded-numbers"}, "no dismissed finding");
    expectFailure(2, {"findings", "customers.zip", "--dismiss", "zero-padded-numbers", "--reason", " "},
                  "needs a text");
}

} // namespace
} // namespace tavix::testing
