#include "alert/AlertCommands.h"
#include "alert/AlertEditor.h"
#include "alert/FieldChoice.h"
#include "alert/tests/AlertHistorySample.h"
#include "base/tests/ScriptedMessages.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// As a user reads the history: "Note by ada: text".
std::vector<std::string> read(PrViewer& viewer, const AlertState& alert) {
    const Result<AlertHistory> history = AlertHistory::Read(viewer, alert, std::locale::classic());
    if (!history)
        return {history.error().text};
    std::vector<std::string> lines;
    for (const AlertHistory::Entry& entry : history->GetEntries())
        lines.push_back(fmt::format("{} by {}: {}", AlertHistory::WordOf(entry.kind), entry.who, entry.text));
    return lines;
}

class AlertEditors : public testing::AlertHistorySample {
  protected:
    AlertState make() {
        AlertDefinition alert = nullsOfName();
        alert.rule.value1 = 230;
        int id = -1;
        EXPECT_TRUE(editor().Store(id, alert));
        return stateOf(id);
    }
    AlertEditor editor() { return {*m_viewer, m_messages, "ada"}; }
    std::vector<std::string> sentences() {
        std::vector<std::string> lines;
        for (const AlertState& state : readAlertStates(*m_viewer, m_sample.salesJob))
            lines.push_back(fmt::format("{}: {}", state.description, alertShownWord(state.shown())));
        return lines;
    }

    testing::ScriptedMessages m_messages;
};

TEST_F(AlertEditors, AnAlertIsMadeChangedMutedAndRemoved) {
    AlertState alert = make();
    EXPECT_THAT(sentences(), ElementsAre("Null Count for field name is greater than 230: raised"));
    EXPECT_TRUE(alert.isOfUser);
    AlertDefinition changed = alert.definition();
    changed.rule.value1 = 231;
    changed.rule.level = AlertLevel::Error;
    int id = alert.id;
    ASSERT_TRUE(editor().Store(id, changed));
    EXPECT_EQ(alert.id, id);
    ASSERT_TRUE(editor().AddNote(id, "Ask the shop.\nTwice. \n"));
    m_messages.expectWarn("Enter the text of the note.", "Missing Value");
    EXPECT_FALSE(editor().AddNote(id, " \n"));

    const std::vector<AlertState> alerts{stateOf(id)};
    ASSERT_TRUE(editor().Mute(alerts, {"Known import", 2, {}}));
    EXPECT_THAT(sentences(), ElementsAre("Null Count for field name is greater than 231: muted"));
    const std::vector<std::string> history = read(*m_viewer, stateOf(id));
    ASSERT_EQ(4U, history.size());
    EXPECT_THAT(history,
                ::testing::IsSupersetOf(
                    {"Note by ada: Ask the shop.\nTwice.", "Made by ada: Null Count for field name is greater than 231",
                     "Changed by ada: Null Count for field name is greater than 231 (error)\nbefore: Null Count "
                     "for field name is greater than 230 (warning)"}));
    EXPECT_THAT(history, ::testing::Contains(::testing::EndsWith(" for 2 runs: Known import")));
    ASSERT_TRUE(editor().Unmute(std::vector{stateOf(id)}));
    EXPECT_THAT(sentences(), ElementsAre("Null Count for field name is greater than 231: raised"));

    const Result<AlertHistory> read = AlertHistory::Read(*m_viewer, stateOf(id), std::locale::classic());
    const auto note = std::ranges::find(read->GetEntries(), AlertHistory::Kind::Note, &AlertHistory::Entry::kind);
    m_messages.expectAsk("Delete this note?\n\n\"Ask the shop.…\"", "Delete Note", Messages::Answer::Yes);
    ASSERT_TRUE(editor().DeleteNote(*note));
    const std::string question =
        "Remove this alert, with its notes and history?\n\n\"Null Count for field name is greater than 231\"";
    m_messages.expectAsk(question, "Remove Alert", Messages::Answer::No);
    EXPECT_FALSE(editor().Remove(alerts));
    m_messages.expectAsk(question, "Remove Alert", Messages::Answer::Yes);
    EXPECT_TRUE(editor().Remove(alerts));
    EXPECT_THAT(sentences(), IsEmpty());
    m_messages.expectWarn("Error occurred while storing the alert:\n\n" + [&] {
        int gone = id;
        EXPECT_FALSE(m_viewer->createEditAlert(gone, changed, "ada"));
        return m_viewer->getErrorString().str();
    }());
    EXPECT_FALSE(editor().Store(id, changed));
}

TEST_F(AlertEditors, ItIsCopiedToFieldsThatDoNotHaveIt) {
    AlertDefinition described = nullsOfName();
    described.rule.value1 = 5;
    described.description = "Nameless customers";
    const AlertState alert = store(described);
    const auto lines = [&] {
        std::vector<std::string> found;
        const Result<FieldChoice> choice = FieldChoice::Read(*m_viewer, alert);
        for (const FieldChoice::Field& field : choice->GetFields())
            found.push_back(fmt::format("{}{}: {}", field.canHave ? "" : "no ", field.name, field.remark));
        return found;
    };
    EXPECT_THAT(lines(), ElementsAre("id: 0", "no name: the field of the alert", "balance: 0", "since: 1", "active: 0",
                                     "remark: 1,000", "city: 7"));
    Result<FieldChoice> choice = FieldChoice::Read(*m_viewer, alert);
    ASSERT_TRUE(choice);
    EXPECT_EQ("0 of 6 fields chosen", choice->GetSummary());
    choice->ChooseAll(true);
    EXPECT_EQ("6 of 6 fields chosen", choice->GetSummary());
    choice->ChooseAll(false);
    choice->Choose(1, true);
    choice->Choose(5, true);
    choice->Choose(6, true);
    EXPECT_EQ("2 of 6 fields chosen", choice->GetSummary()) << "the alert's own field cannot be chosen";
    ASSERT_TRUE(editor().StoreCopies(choice->GetCopies()));
    EXPECT_THAT(sentences(),
                ElementsAre("Nameless customers: raised", "Null Count for field remark is greater than 5: raised",
                            "Null Count for field city is greater than 5: raised"));
    EXPECT_THAT(lines(), ::testing::IsSupersetOf({"no remark: has the same alert", "no city: has the same alert"}));

    std::vector<AlertDefinition> wrong = choice->GetCopies();
    wrong.back().field = 4711;
    m_messages.expectWarn("Error occurred while copying the alert:\n\n" + [&] {
        int id = -1;
        EXPECT_FALSE(m_viewer->createEditAlert(id, wrong.back(), "ada"));
        return m_viewer->getErrorString().str();
    }());
    EXPECT_FALSE(editor().StoreCopies(wrong));
    EXPECT_EQ(3U, sentences().size()) << "none is stored when one fails";
}

TEST_F(AlertEditors, CommandsSayWhyTheyAreDisabled) {
    const int job = m_sample.salesJob;
    const auto of = [&](AlertCommand command, const AlertTarget& target) {
        const AlertCommandInfo info = alertCommand(command, target, job);
        return (info.isEnabled ? "" : "off ") + info.text + " - " + info.toolTip;
    };
    AlertState own = make();
    AlertState ofJob = own;
    ofJob.isOfUser = false;
    EXPECT_EQ("off &Add Alert... - Select a figure that a run computes", of(AlertCommand::Add, {{}, {own}}));
    EXPECT_EQ("&Add Alert... - Warn when a run's figure crosses a limit", of(AlertCommand::Add, {nullsOfName(), {}}));
    EXPECT_EQ("&Edit... - Change the limit, the level or the description", of(AlertCommand::Edit, {{}, {own}}));
    EXPECT_EQ("&Edit as Own Alert... - The job file defines the alert: your changes are stored as an alert of your own",
              of(AlertCommand::Edit, {{}, {ofJob}}));
    EXPECT_EQ("off &Remove... - The job file defines the alert: each run would restore it",
              of(AlertCommand::Remove, {{}, {own, ofJob}}));
    EXPECT_EQ("off &Edit... - Select one alert", of(AlertCommand::Edit, {{}, {own, own}}));
    EXPECT_EQ("off &Notes and History... - No alert is selected", of(AlertCommand::Notes, {}));
    EXPECT_EQ("off &Unmute - The alert is not muted in this run", of(AlertCommand::Unmute, {{}, {own}}));
    EXPECT_EQ("&Mute... - Do not warn for some runs, or until a date", of(AlertCommand::Mute, {{}, {ofJob}}));
    own.mute.emplace();
    EXPECT_EQ("Change &Mute... - Change why and for how long the alert does not warn",
              of(AlertCommand::Mute, {{}, {own}}));
    EXPECT_EQ("&Unmute - Warn again", of(AlertCommand::Unmute, {{}, {own, ofJob}}));
    AlertState records = own;
    records.isOfRecords = true;
    EXPECT_EQ("off Copy to &Other Fields... - The alert does not watch the metric of a field",
              of(AlertCommand::CopyToFields, {{}, {records}}));
    AlertState broken = own;
    broken.rule.reset();
    EXPECT_EQ("off &Edit... - The rule of the alert cannot be read", of(AlertCommand::Edit, {{}, {broken}}));
    own.job = m_sample.inventoryJob;
    for (const AlertCommand command : {AlertCommand::Edit, AlertCommand::Mute, AlertCommand::CopyToFields})
        EXPECT_EQ("The alert belongs to another report: open that report first",
                  alertCommand(command, {{}, {own}}, job).toolTip);
    EXPECT_EQ("No report is open", alertCommand(AlertCommand::Notes, {{}, {own}}, -1).toolTip);
}

TEST(MuteDraft, SaysForHowLong) {
    const auto until = [](int days) { return testing::SampleRepository::runTime(2) + std::chrono::days(days); };
    EXPECT_EQ("In the run that is shown.", muteExtent({"x", 1, {}}));
    EXPECT_EQ("In the run that is shown and the next run.", muteExtent({"x", 2, {}}));
    EXPECT_EQ("In the run that is shown and the next 9 runs, but not in runs that start on 2026-03-17 or later.",
              muteExtent({"x", 10, until(2)}));
    EXPECT_EQ("From the run that is shown on, in runs that start before 2026-03-17.", muteExtent({"x", {}, until(2)}));
    EXPECT_EQ("From the run that is shown on, until it is unmuted.", muteExtent({"x", {}, {}}));
    const LibraryDate start = toLibraryDate(until(0));
    EXPECT_TRUE(checkMute({" because ", 1, until(1)}, start));
    EXPECT_EQ("Say why the alert is muted.", checkMute({" \n", 1, {}}, start).error().text);
    EXPECT_EQ("The run that is shown starts on that date or later, so no run would be muted.",
              checkMute({"x", 1, until(0)}, start).error().text);
    EXPECT_FALSE(checkMute({std::string(20'001, 'x'), 1, {}}, start)) << "longer than a note";
}

} // namespace
} // namespace tavix
