#include "frame/PaneChain.h"

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

namespace tavix {
namespace {

using ::testing::ElementsAre;

using Log = std::vector<std::string>;

class RecordingPane final : public CRefreshItem, public CommandTarget {
  public:
    RecordingPane(std::string name, Log& log, CommandState state = {})
        : m_name(std::move(name)), m_log(log), m_state(state) {}
    void Refresh(CRefreshItem*, RefreshHint hint, int parameter) override {
        m_log.push_back(m_name + " " + std::to_string(static_cast<int>(hint)) + " " + std::to_string(parameter));
    }
    bool ExecuteCommand(int commandId) override {
        m_log.push_back(m_name + " " + std::to_string(commandId));
        return m_state.handled;
    }
    CommandState UpdateCommand(int) const override { return m_state; }

  private:
    std::string m_name;
    Log& m_log;
    CommandState m_state;
};

TEST(PaneChain, TheFirstWhoHandlesACommandEndsItsWay) {
    Log log;
    RecordingPane a("a", log);
    RecordingPane b("b", log, {true, false, true});
    RecordingPane c("c", log, {true, true, false});
    EXPECT_TRUE(offerCommand(std::array<CommandTarget*, 4>{&a, nullptr, &b, &c}, 7));
    EXPECT_THAT(log, ElementsAre("a 7", "b 7"));
    EXPECT_EQ((CommandState{true, false, true}), askCommand(std::array<CommandTarget*, 3>{&a, &b, &c}, 7));
    EXPECT_EQ((CommandState{true, true, false}), askCommand(std::array<CommandTarget*, 3>{&c, &b, &a}, 7));
    EXPECT_FALSE(offerCommand(std::array<CommandTarget*, 2>{nullptr, &a}, 7));
    EXPECT_EQ(CommandState(), askCommand(std::array<CommandTarget*, 2>{nullptr, &a}, 7));
}

TEST(PaneChain, HintsGoToAllButTheSenderInOrder) {
    Log log;
    RecordingPane a("a", log);
    RecordingPane b("b", log);
    RecordingPane c("c", log);
    const std::array<CRefreshItem*, 4> panes = {&a, &b, nullptr, &c};
    refreshPanes(panes, nullptr, RefreshHint::RunLoaded, 0, true);
    EXPECT_THAT(log, ElementsAre("a 4 0", "b 4 0", "c 4 0"));
    log.clear();
    refreshPanes(panes, &b, RefreshHint::OptionsChanged, 9, false);
    EXPECT_THAT(log, ElementsAre("a 5 9", "c 5 9"));
    log.clear();
    refreshPanes(panes, nullptr, RefreshHint::TaskListLost, 0, true);
    EXPECT_TRUE(log.empty());
    refreshPanes(panes, &a, RefreshHint::TaskListLost, 0, false);
    EXPECT_THAT(log, ElementsAre("b 6 0", "c 6 0"));
}

struct Lamp {
    bool lit = false;
    bool broken = false;
    void Toggle() { lit = !lit; }
    void Break() { broken = true; }
    [[nodiscard]] bool Works() const { return !broken; }
    [[nodiscard]] bool IsLit() const { return lit; }
};

TEST(CommandTable, ARowSaysWhoHandlesItAndWhenItIsEnabled) {
    const std::array<CommandRow<Lamp>, 2> table = {{
        {CommandId::New, &Lamp::Toggle, &Lamp::Works, &Lamp::IsLit},
        {CommandId::Options, &Lamp::Break},
    }};
    const std::span<const CommandRow<Lamp>> rows(table);
    Lamp lamp;
    EXPECT_EQ((CommandState{true, true, false}), stateOf(rows, lamp, 57600));
    EXPECT_TRUE(execute(rows, lamp, 57600));
    EXPECT_EQ((CommandState{true, true, true}), stateOf(rows, lamp, 57600));
    EXPECT_EQ((CommandState{true, true, false}), stateOf(rows, lamp, 40001)) << "no rule: enabled and unchecked";
    EXPECT_TRUE(execute(rows, lamp, 40001));
    EXPECT_EQ((CommandState{true, false, true}), stateOf(rows, lamp, 57600));
    EXPECT_TRUE(execute(rows, lamp, 57600));
    EXPECT_TRUE(lamp.lit) << "a disabled command did something";
    EXPECT_FALSE(execute(rows, lamp, 57607));
    EXPECT_EQ(CommandState(), stateOf(rows, lamp, 57607));
}

} // namespace
} // namespace tavix
