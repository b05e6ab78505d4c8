// The two time-out forms against a simulated host, on an off-screen screen: what each typed
// value does to the host's options, which tools run and what the log says.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CursesScreen.hpp"
#include "HostRoot.hpp"
#include "core/Globals.hpp"
#include "core/StringFactory.hpp"
#include "system/LanyxTimeoutDialog.hpp"
#include "system/ShellTimeoutDialog.hpp"
#include "text/en_US_Factory.hpp"

namespace Lanyx {
namespace {

using nlohmann::json;

auto* const program = LanyxTest::AddProgramHost("default");
const auto* const screen = Testing::AddCursesScreen(25, 80, "xterm");

constexpr char kDown[] = "\x1bOB";
constexpr char kDelete[] = "\x1b[3~";
constexpr char kEscape[] = "\x1b";
constexpr char kShellOption[] = "/UserVars/OstraShellTimeOut";
constexpr char kIdleOption[] = "/UserVars/OstraShellInteractiveTimeOut";
constexpr char kLanyxOption[] = "/UserVars/LanyxTimeOut";

json& Option(json& state, const char* name) {
    return state["advancedOptions"][name];
}

int64_t OptionValue(const char* name) {
    json state = program->Host().State();
    return Option(state, name)["value"].get<int64_t>();
}

class TimeoutDialogs : public ::testing::Test {
protected:
    void SetUp() override {
        SetStringFactorySource(&GetStringFactory);
        keypad(stdscr, TRUE);
        set_escdelay(25);
        idleTimeoutSeconds = 0;
    }
};

// ---------------------------------------------------------------- shell time-outs

TEST_F(TimeoutDialogs, ShellValuesAppliedSkippedOrRefused) {
    struct Case {
        const char* name;
        std::string keys;
        bool servicesRunning;
        std::vector<const char*> failingTools;
        bool result;
        int64_t availabilitySeconds, idleSeconds;
        std::vector<std::string> logs;
        std::vector<std::string> tools;
    };
    const std::string setShell =
        std::string("ostraq system settings advanced set -o ") + kShellOption + " -i ";
    const std::string setIdle =
        std::string("ostraq system settings advanced set -o ") + kIdleOption + " -i ";
    // The host starts at 10 minutes of availability and 20 of idle time.
    // clang-format off
    const std::vector<Case> cases = {
        {"letters are not let in", "a5b\n", false, {}, true, 300, 1200,
         {"Modified Shell timeout to 5 minutes"}, {setShell + "300"}},
        {"1440 is the largest value", "1440\n", false, {}, true, 86400, 1200,
         {"Modified Shell timeout to 1440 minutes"}, {setShell + "86400"}},
        {"1441 is refused and the idle value still applies", std::string("1441") + kDown + "0\n\n",
         false, {}, true, 600, 0, {"Disabled shell interactive timeout"}, {setIdle + "0"}},
        {"0 disables", std::string("0") + kDown + "7\n", false, {}, true, 0, 420,
         {"Disabled Shell timeout", "Modified shell interactive timeout to 7 minutes"},
         {setShell + "0", setIdle + "420"}},
        {"an emptied field is left alone", std::string(kDelete) + "\n", false, {}, true, 600, 1200, {}, {}},
        {"unchanged values run nothing", std::string("10") + kDown + "20\n", true, {}, true, 600, 1200, {}, {}},
        {"Escape leaves without a change", std::string("5") + kEscape, false, {}, false, 600, 1200, {}, {}},
        {"running services restart for the availability value", "3\n", true, {}, true, 180, 1200,
         {"Modified Shell timeout to 3 minutes"}, {setShell + "180", "OstraShell restart", "SSH restart"}},
        {"the idle value alone restarts nothing", std::string(kDown) + "3\n", true, {}, true, 600, 180,
         {"Modified shell interactive timeout to 3 minutes"}, {setIdle + "180"}},
        {"benchq writes when ostraq fails", "4\n", false, {"ostraq"}, true, 240, 1200,
         {"Modified Shell timeout to 4 minutes"},
         {"benchq system settings advanced set -o /UserVars/OstraShellTimeOut -i 240"}},
        {"both failing is only logged as done", "4\n", false, {"ostraq", "benchq"}, true, 600, 1200,
         {"Modified Shell timeout to 4 minutes"}, {}},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        program->Reset([&](json& state) {
            Option(state, kShellOption)["value"] = 600;
            Option(state, kIdleOption)["value"] = 1200;
            for (const char* service : {"OstraShell", "SSH"})
                state["services"][service]["running"] = c.servicesRunning;
            for (const char* tool : c.failingTools)
                state["faults"]["tool"][tool] = {{"exit", 1}};
        });
        ShellTimeoutDialog dialog(nullptr);
        EXPECT_EQ(dialog.GetAvailabilityItem()->GetValue(), "10");
        EXPECT_EQ(dialog.GetIdleItem()->GetValue(), "20");
        Testing::Type(c.keys);
        EXPECT_EQ(dialog.RunModal(), c.result);
        EXPECT_TRUE(Testing::InputDrained()) << "the dialog ended before its last key";
        EXPECT_EQ(OptionValue(kShellOption), c.availabilitySeconds);
        EXPECT_EQ(OptionValue(kIdleOption), c.idleSeconds);
        EXPECT_EQ(program->Host().Messages("user.info"), c.logs);
        EXPECT_EQ(program->Host().ToolRuns(), c.tools);
    }
}

TEST_F(TimeoutDialogs, ShellValuesThatAreNoNumberReadAsZero) {
    struct Case {
        json value;
        const char* shown;
    };
    const std::vector<Case> cases = {{"soon", "0"}, {119, "1"}, {86400, "1440"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value.dump());
        program->Reset([&](json& state) { Option(state, kShellOption)["value"] = c.value; });
        ShellTimeoutDialog dialog(nullptr);
        EXPECT_EQ(dialog.GetAvailabilityItem()->GetValue(), c.shown);
    }
    // A tool that cannot be asked gives nothing to read either.
    program->Reset([](json& state) { state["faults"]["tool"]["ostra-tune"] = {{"exit", 1}}; });
    EXPECT_EQ(ShellTimeoutDialog(nullptr).GetIdleMinutes(), 0u);
}

// ---------------------------------------------------------------- the console's own limit

TEST_F(TimeoutDialogs, ConsoleLimitWrittenAndTakenUpAtOnce) {
    struct Case {
        const char* name;
        std::string keys;
        bool optionExists;
        int64_t seconds; // the option afterwards
        uint32_t limit;  // idleTimeoutSeconds afterwards
        std::vector<std::string> logs;
    };
    // clang-format off
    const std::vector<Case> cases = {
        {"letters are not let in", "x2y\n", true, 120, 120, {"Modified Lanyx timeout to 2 minutes"}},
        {"0 disables", "0\n", true, 0, 0, {"Disabled Lanyx timeout"}},
        {"1440 is the largest value", "1440\n", true, 86400, 86400, {"Modified Lanyx timeout to 1440 minutes"}},
        {"1441 is refused", "1441\n\n", true, 600, 0, {}},
        {"unchanged writes nothing", "10\n", true, 600, 0, {}},
        {"empty writes nothing", std::string(kDelete) + "\n", true, 600, 0, {}},
        // Without the option nothing is stored; the limit read again is the default.
        {"no option", "5\n", false, -1, 600, {"Modified Lanyx timeout to 5 minutes"}},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        program->Reset([&](json& state) {
            if (c.optionExists)
                Option(state, kLanyxOption)["value"] = 600;
            else
                state["advancedOptions"].erase(kLanyxOption);
        });
        idleTimeoutSeconds = 0;
        LanyxTimeoutDialog dialog(nullptr);
        EXPECT_EQ(dialog.GetTimeoutSeconds(), 600u);
        EXPECT_EQ(dialog.GetTimeoutItem()->GetValue(), "10");
        Testing::Type(c.keys);
        EXPECT_TRUE(dialog.RunModal());
        EXPECT_TRUE(Testing::InputDrained());
        if (c.optionExists)
            EXPECT_EQ(OptionValue(kLanyxOption), c.seconds);
        else
            EXPECT_FALSE(program->Host().State()["advancedOptions"].contains(kLanyxOption));
        EXPECT_EQ(idleTimeoutSeconds, c.limit);
        EXPECT_EQ(program->Host().Messages("user.info"), c.logs);
    }
}

} // namespace
} // namespace Lanyx
