// The restart of the management agents against a simulated host, on a curses screen that writes
// to nowhere: keys, the progress text, the agent script's runs, the live core and the records.
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CursesScreen.hpp"
#include "HostRoot.hpp"
#include "core/StringFactory.hpp"
#include "system/RestartAgentsDialog.hpp"

namespace Lanyx {
namespace {

using LanyxTest::Record;
using nlohmann::json;

const auto* const screen = Testing::AddCursesScreen(25, 80, "xterm");
LanyxTest::ProgramHost* const host = LanyxTest::AddProgramHost("default");

constexpr char kF11[] = "\x1b[23~";
std::string CorePath() {
    return host->Host().File("/var/log/helmd-restart1.core");
}

json State() {
    return host->Host().State();
}

size_t Count(Record record, const std::string& text) {
    return host->Host().Matching(record, text).size();
}

size_t EventCount() {
    return Count(Record::Notad,
                 "@&!*@*@(nota.user.lanyx.restarting.hostagents)Restarting host agents");
}

std::vector<std::string> ToolRuns(const std::string& tool) {
    return host->Host().ToolRuns(tool);
}

// The thread is never waited for by the console; a test waits for its last trace, bounded.
bool Eventually(const std::function<bool()>& condition) {
    return LanyxTest::PollUntil(condition, std::chrono::seconds(20));
}

class RestartAgentsDialogTest : public ::testing::Test {
protected:
    void SetUp() override {
        host->Reset();
        std::filesystem::remove(CorePath());
        SetStringFactorySource(&GetStringFactory);
        keypad(stdscr, TRUE);
        set_escdelay(25);
    }
};

constexpr char kDone[] = "{color:dark-grey}Stopping management agents. Done.\n"
                         "Starting management agents. Done.{/color}";
constexpr char kDoneWithCore[] =
    "{color:dark-grey}Collecting host agent live core information. Done.\n"
    "Stopping management agents. Done.\n"
    "Starting management agents. Done.{/color}";

TEST_F(RestartAgentsDialogTest, RestartWithAndWithoutTheLiveCore) {
    struct Case {
        std::string name;
        std::string keys;      // typed before the run; Enter ends the wait at the end
        std::string toolFault; // "" none, else the tool made to exit 1
        std::string progress;
        std::vector<std::string> traces; // tesseltrace runs recorded
        std::string threadLine;          // the thread's last log line, "" when none starts
        bool alert;
    };
    const std::string trace = "-w -n helmd -o helmd-restart% -d /var/log/";
    const std::vector<Case> cases = {
        // Enter and other keys do nothing before F11; Space twice leaves it unticked.
        {"unticked", std::string("\n x ") + kF11 + "\n", "", kDone, {}, "", false},
        {"live core fails",
         std::string(" ") + kF11 + "\n",
         "tesseltrace",
         kDoneWithCore,
         {},
         "]: tesseltrace failed, probably helmd was down",
         false},
        // The agent script's result is not looked at.
        {"agents script fails", std::string(kF11) + "\n", "agents.sh", kDone, {}, "", false},
        // Last: its detached thread may still be at work when the table ends.
        {"live core",
         std::string(" ") + kF11 + "x\t\n",
         "",
         kDoneWithCore,
         {trace},
         "]: Executing tesseltrace -c against helmd",
         true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        host->Reset([&](json& state) {
            if (!c.toolFault.empty())
                state["faults"]["tool"][c.toolFault] = {{"exit", 1}};
        });
        const size_t eventsBefore = EventCount();
        RestartAgentsDialog dialog(nullptr);
        Testing::Type(c.keys);
        EXPECT_TRUE(dialog.RunModal());
        EXPECT_TRUE(Testing::InputDrained()) << "the last Enter ends it";
        EXPECT_EQ(dialog.GetProgressText()->GetText(), c.progress);
        EXPECT_EQ(Count(Record::Syslog, "]: Restarting host agents"), 1u);
        EXPECT_EQ(EventCount(), eventsBefore + 1);
        if (c.toolFault != "agents.sh") {
            EXPECT_EQ(ToolRuns("agents.sh"), (std::vector<std::string>{"stop", "start"}));
            EXPECT_TRUE(State()["hostAgent"].value("running", false));
        }
        if (!c.threadLine.empty()) {
            EXPECT_TRUE(Eventually([&] { return Count(Record::Syslog, c.threadLine) > 0; }))
                << c.threadLine;
            EXPECT_TRUE(Eventually([&] { return ToolRuns("tesseltrace") == c.traces; }));
        } else {
            EXPECT_EQ(Count(Record::Syslog, "tesseltrace"), 0u);
        }
        if (c.alert) {
            EXPECT_TRUE(Eventually([&] { return !State()["systemAlerts"].empty(); }));
            EXPECT_TRUE(std::filesystem::exists(CorePath()));
        } else {
            EXPECT_TRUE(State()["systemAlerts"].empty());
        }
    }
}

TEST_F(RestartAgentsDialogTest, EscapeBeforeF11ChangesNothing) {
    const size_t eventsBefore = EventCount();
    RestartAgentsDialog dialog(nullptr);
    Testing::Type(std::string(" \n") + "\x1b");
    EXPECT_FALSE(dialog.RunModal());
    EXPECT_EQ(dialog.GetProgressText()->GetText(), "Restart management agents now?");
    EXPECT_TRUE(dialog.GetCollectItem()->IsChecked());
    EXPECT_TRUE(ToolRuns("agents.sh").empty());
    EXPECT_EQ(Count(Record::Syslog, "Restarting host agents"), 0u);
    EXPECT_EQ(EventCount(), eventsBefore);
}

} // namespace
} // namespace Lanyx
