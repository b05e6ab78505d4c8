// Operations on the host as a whole, through the real console on simulated hosts: shut down and
// restart behind F12, lockdown mode and the reset of the configuration from the menu. Each case
// checks what the operator sees, the keys that do nothing, the host state the tools leave and the
// records.
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "harness/Session.hpp"

using namespace LanyxE2E;
using nlohmann::json;
using Strings = std::vector<std::string>;

namespace {

constexpr const char* kShutdownFooter = "<F2> Shut Down  <F11> Restart";
constexpr const char* kForceOff = "[ ] Forcefully terminate running VMs, if any ...";
constexpr const char* kForceOn = "[X] Forcefully terminate running VMs, if any ...";
constexpr const char* kResetQuestion = "Reset System Configuration now?";

class SystemOps : public ::testing::Test {
protected:
    // The shutdown dialog after a login as root by F12, ready for keys; on a fresh host unless
    // `again`.
    ::testing::AssertionResult OpenShutdown(bool again = false) {
        if (!again)
            s = std::make_unique<Session>("default");
        host = &s->Host();
        if (auto welcome = s->AwaitWelcome(); !welcome)
            return welcome;
        if (auto box = s->OpenShutdown(); !box)
            return box;
        if (!s->Screen().Find(kForceOff))
            return ::testing::AssertionFailure() << s->Screen().Describe();
        return ::testing::AssertionSuccess();
    }

    // The menu after a login by F2 on a host with `settings`, `title` selected.
    ::testing::AssertionResult
    OpenMenuAt(const std::string& title,
               std::vector<std::pair<std::string, std::string>> settings = {}) {
        s = std::make_unique<Session>("default", SessionOptions{.settings = std::move(settings)});
        host = &s->Host();
        return s->Walk({"@login", "=" + title});
    }

    // One key to a screen that reads keys, then `shown`.
    ::testing::AssertionResult Press(std::string_view key, std::string_view shown) {
        if (!s->Key(key))
            return ::testing::AssertionFailure() << "key not sent";
        return s->Screen().WaitForText(shown);
    }

    ::testing::AssertionResult PowerState(const std::string& state) {
        return s->Screen().WaitFor([&] { return State()["power"].value("state", "") == state; },
                                   10s, "power state " + state);
    }

    json State() const { return host->State(); }

    size_t Count(Record record, std::string_view text) const {
        return host->Matching(record, text).size();
    }

    std::unique_ptr<Session> s;
    HostRoot* host = nullptr;
};

// ---------------------------------------------------------------- shut down and restart

// The restart runs with an agent that refuses the operator: the autostop then runs as the
// console's own user.
TEST_F(SystemOps, ShutdownAndRestartStopTheGuestsThenRunThePowerCommand) {
    struct Case {
        std::string_view key;
        bool force; // the forced runs of both keys are in the fault test below
        std::string title, message, logLine, event, action, powerState, agentUser;
    };
    const std::vector<Case> cases = {
        {Keys::F(2), false, "Shut Down Host", "Shutdown in progress...", "]: Shutting down host",
         "@&!*@*@(nota.user.lanyx.shutdown.host)Shutting down host", "poweroff", "off", "root"},
        {Keys::F(11), true, "Restart Host", "Restart in progress...", "]: Rebooting host",
         "@&!*@*@(nota.user.lanyx.reboot.host)Rebooting host", "reboot", "rebooting", "lanyx"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.action);
        ASSERT_TRUE(OpenShutdown());
        Console& console = s->Screen();
        if (c.agentUser != "root")
            host->Set("helmq-users", "");
        // Enter accepts nothing here.
        ASSERT_TRUE(s->Key(Keys::Enter));
        if (c.force) {
            ASSERT_TRUE(Press(" ", kForceOn));
        }
        ASSERT_TRUE(s->Settle());
        EXPECT_TRUE(host->Matching(Record::Syslog, c.logLine).empty()) << "Enter ran nothing";

        ASSERT_TRUE(s->Key(c.key));
        ASSERT_TRUE(console.WaitForText(c.message)) << console.Describe();
        EXPECT_TRUE(console.Find(c.title));
        ASSERT_TRUE(PowerState(c.powerState));
        const json power = State()["power"];
        ASSERT_EQ(power["history"].size(), 1u) << power.dump();
        EXPECT_EQ(power["history"][0]["action"], c.action);
        EXPECT_TRUE(power["history"][0]["args"].empty());
        EXPECT_EQ(host->ToolRuns("haltGuests"), Strings{c.force ? "--terminate" : ""});
        EXPECT_EQ(host->ToolRuns("helmq"),
                  Strings{"-U " + c.agentUser + " helmnode/autostartmanager/autostop"});
        EXPECT_EQ(Count(Record::Syslog, "]: Unable to execute command helmq "
                                        "helmnode/autostartmanager/autostop using user root. "
                                        "Using user lanyx"),
                  c.agentUser == "root" ? 0u : 1u);
        EXPECT_FALSE(State()["autostartManager"].value("running", true));
        const json guests = State()["guests"];
        for (const json& guest : guests)
            EXPECT_FALSE(guest.value("running", true)) << guest.dump();
        EXPECT_EQ(Count(Record::Syslog, c.logLine), 1u);
        EXPECT_EQ(Count(Record::Notad, c.event), 1u);
        EXPECT_EQ(host->Lines(Record::Audit).size(), 1u) << "the login's record alone";

        // The host goes down around the console: no key leads anywhere.
        for (std::string_view key : {Keys::Escape, Keys::Enter, Keys::F(2), Keys::F(11)})
            ASSERT_TRUE(s->Key(key));
        ASSERT_TRUE(s->Settle());
        EXPECT_TRUE(console.Find(c.message)) << console.Describe();
        EXPECT_EQ(State()["power"]["history"].size(), 1u);
        EXPECT_TRUE(console.Running());
    }
}

TEST_F(SystemOps, EscapeLeavesWithoutARecordAndAnAbsentPowerCommandStillEndsInTheWait) {
    ASSERT_TRUE(OpenShutdown());
    ASSERT_TRUE(Press(" ", kForceOn));
    ASSERT_TRUE(Press(" ", kForceOff));
    ASSERT_TRUE(s->Key(Keys::Escape));
    ASSERT_TRUE(s->AwaitWelcome());
    EXPECT_TRUE(host->Matching(Record::Syslog, "]: Shutting down host").empty());
    EXPECT_TRUE(host->Matching(Record::Syslog, "]: Rebooting host").empty());
    EXPECT_TRUE(host->Lines(Record::Notad).empty());
    EXPECT_EQ(State()["power"].value("state", ""), "on");
    EXPECT_TRUE(host->ToolRuns("haltGuests").empty());
    // No session was opened behind F12: no logout either.
    EXPECT_TRUE(host->Matching(Record::Syslog, "logged out").empty());

    // Only a shell that cannot start brings the operator back (below); a missing command does
    // not.
    ASSERT_TRUE(OpenShutdown(true));
    host->Fault({"tool", "poweroff", "absent"});
    ASSERT_TRUE(Press(Keys::F(2), "Shutdown in progress..."));
    ASSERT_TRUE(s->Screen().WaitFor([&] { return host->ToolRuns("haltGuests").size() == 1u; }, 10s,
                                    "the guests halted"));
    ASSERT_TRUE(s->Press({Keys::Escape}));
    EXPECT_TRUE(s->Screen().Find("Shutdown in progress...")) << s->Screen().Describe();
    EXPECT_EQ(State()["power"].value("state", ""), "on");
}

TEST_F(SystemOps, PowerCommandThatCannotStartReturnsToTheDialogWithItsTick) {
    for (const auto& [key, tool, logLine, progress] :
         {std::tuple{Keys::F(2), "poweroff", "]: Shutting down host", "Shutdown in progress..."},
          std::tuple{Keys::F(11), "reboot", "]: Rebooting host", "Restart in progress..."}}) {
        SCOPED_TRACE(tool);
        ASSERT_TRUE(OpenShutdown());
        Console& console = s->Screen();
        host->Fault({"tool", tool, "signal"});
        ASSERT_TRUE(Press(" ", kForceOn));
        ASSERT_TRUE(s->Key(key));
        ASSERT_TRUE(host->WaitForLine(Record::Syslog, "]: Run Command did not terminate normally"));
        ASSERT_TRUE(
            console.WaitFor([&] { return console.Find(kShutdownFooter) && console.Find(kForceOn); },
                            10s, "the shutdown dialog again"))
            << console.Describe();
        // The records and the stopped guests stay: nothing is undone.
        EXPECT_EQ(Count(Record::Syslog, logLine), 1u);
        EXPECT_EQ(host->Lines(Record::Notad).size(), 1u);
        EXPECT_EQ(host->ToolRuns("haltGuests"), Strings{"--terminate"});
        EXPECT_EQ(State()["power"].value("state", ""), "on");
        EXPECT_TRUE(State()["power"]["history"].empty());

        // Once the tool works again the same dialog carries the operation out.
        host->Fault({"clear", tool});
        ASSERT_TRUE(Press(key, progress));
        EXPECT_TRUE(console.WaitFor([&] { return State()["power"]["history"].size() == 1u; }, 10s,
                                    "the power record"));
    }
}

// ---------------------------------------------------------------- lockdown mode

TEST_F(SystemOps, LockdownDialogSwitchesTheModeAndTheMenuAsksAgain) {
    struct Case {
        std::string name;
        bool enabledBefore;
        Strings setAfterMenu; // a hostsim setting pair, applied once the menu stands
        Strings faultAfterMenu;
        bool tickedAtOpen;
        std::vector<std::string_view> keys;
        bool shownAfter;     // what the menu says afterwards
        bool enabledAfter;   // what the host has
        std::string logLine; // "" for none
        Strings lockdownRuns;
    };
    const std::string enterRun = "-U lanyx helmsvc/auth/lockdown_mode_enter";
    const std::string failed = "]: Enabling lockdown mode failed with error: ";
    // clang-format off
    const std::vector<Case> cases = {
        {"enable", false, {}, {}, false, {" ", Keys::Enter}, true, true, "]: Lockdown mode enabled", {enterRun}},
        {"disable", true, {}, {}, true, {" ", Keys::Enter}, false, false, "]: Lockdown mode disabled",
         {"-U lanyx helmsvc/auth/lockdown_mode_exit"}},
        {"no change", false, {}, {}, false, {Keys::Down, Keys::Up, Keys::Enter}, false, false, "", {}},
        {"escape", false, {}, {}, false, {" ", Keys::Escape}, false, false, "", {}},
        {"refused by the agent", false, {"lockdown-possible", "false"}, {}, false, {" ", Keys::Enter},
         false, false, failed + "helmq: lockdown mode is not possible on this host", {}},
        // The query fails too: the box opens unticked although the mode is on, and the menu's
        // query after it says "Disabled" for a host that still has it.
        {"helmq absent", true, {}, {"tool", "helmq", "absent"}, false, {" ", Keys::Enter}, false, true, failed, {}},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(OpenMenuAt("Configure Lockdown Mode",
                               {{"lockdown-enabled", c.enabledBefore ? "true" : "false"}}));
        Console& console = s->Screen();
        ASSERT_TRUE(console.WaitForText(c.enabledBefore ? "Enabled" : "Disabled"));
        if (!c.setAfterMenu.empty())
            host->Set(c.setAfterMenu[0], c.setAfterMenu[1]);
        if (!c.faultAfterMenu.empty())
            host->Fault(c.faultAfterMenu);

        ASSERT_TRUE(Press(Keys::Enter, "<Space> Toggle Selected"));
        EXPECT_TRUE(
            console.Find(c.tickedAtOpen ? "[X] Enable lockdown mode" : "[ ] Enable lockdown mode"))
            << console.Describe();
        for (std::string_view key : c.keys) {
            ASSERT_TRUE(s->Key(key));
            if (key == " ") {
                ASSERT_TRUE(console.WaitForText(c.tickedAtOpen ? "[ ] Enable" : "[X] Enable"));
            }
        }
        ASSERT_TRUE(console.WaitForTextGone("<Space> Toggle Selected"));
        // The menu shows what the host now reports, whatever the dialog did.
        ASSERT_TRUE(console.WaitFor(
            [&] { return console.Find(c.shownAfter ? "Enabled" : "Disabled").has_value(); }, 5s,
            "the menu's state"))
            << console.Describe();
        EXPECT_EQ(State()["lockdown"].value("enabled", !c.enabledAfter), c.enabledAfter);
        Strings runs;
        for (const std::string& run : host->ToolRuns("helmq"))
            if (run.find("lockdown_mode") != std::string::npos)
                runs.push_back(run);
        EXPECT_EQ(runs, c.lockdownRuns);
        // One line of the dialog at most, and only the expected one.
        EXPECT_EQ(Count(Record::Syslog, "]: Lockdown mode ") +
                      Count(Record::Syslog, " lockdown mode failed"),
                  c.logLine.empty() ? 0u : 1u);
        if (!c.logLine.empty()) {
            EXPECT_EQ(Count(Record::Syslog, c.logLine), 1u);
        }
    }
}

// ---------------------------------------------------------------- reset of the configuration

TEST_F(SystemOps, ResetPutsTheFactoryConfigurationBackThenRestartsOnEnter) {
    ASSERT_TRUE(OpenMenuAt(
        "Reset System Configuration",
        {{"hostname", "changed-host"}, {"lockdown-enabled", "true"}, {"ssh-running", "true"}}));
    Console& console = s->Screen();
    ASSERT_TRUE(Press(Keys::Enter, kResetQuestion));
    // Enter is no answer here.
    ASSERT_TRUE(s->Press({Keys::Enter}));
    EXPECT_TRUE(host->Matching(Record::Syslog, "Restoring factory defaults").empty());

    ASSERT_TRUE(Press(Keys::F(11), "Default settings are restored. Press <Enter> to"));
    EXPECT_FALSE(console.Find(kResetQuestion));
    EXPECT_EQ(Count(Record::Syslog, "]: Restoring factory defaults"), 1u);
    EXPECT_EQ(Count(Record::Notad,
                    "@&!*@*@(nota.user.lanyx.restore.factory.defaults)Restoring factory defaults"),
              1u);
    const json state = State();
    EXPECT_EQ(state["host"].value("hostname", ""), "lanyx-lab01");
    EXPECT_FALSE(state["lockdown"].value("enabled", true));
    EXPECT_FALSE(state["services"]["SSH"].value("running", true));
    EXPECT_TRUE(state["guests"].empty());
    EXPECT_EQ(host->ToolRuns("factoryState.py"), Strings{"--reset-only"});
    EXPECT_EQ(state["power"].value("state", ""), "on") << "not restarted before Enter";

    ASSERT_TRUE(s->Press({Keys::Escape, Keys::F(11), " "}));
    EXPECT_EQ(State()["power"].value("state", ""), "on");
    ASSERT_TRUE(s->Key(Keys::Enter));
    ASSERT_TRUE(PowerState("rebooting"));
    const json history = State()["power"]["history"];
    ASSERT_EQ(history.size(), 1u);
    EXPECT_EQ(history[0]["action"], "reboot");
    EXPECT_EQ(history[0]["args"], json::array({"-f"}));
    console.Send(Keys::Enter);
    console.Send(Keys::Escape);
    console.Pump(500ms);
    EXPECT_TRUE(console.Find("Default settings are restored.")) << "waits for the host to go down";
    EXPECT_EQ(State()["power"]["history"].size(), 1u);
}

TEST_F(SystemOps, ResetThatDoesNotHappen) {
    // Esc, and a script that fails after its records.
    for (const auto& [fault, key, records] :
         {std::tuple{Strings{}, Keys::Escape, 0u},
          std::tuple{Strings{"tool", "factoryState.py", "exit", "3"}, Keys::F(11), 1u}}) {
        SCOPED_TRACE(records);
        ASSERT_TRUE(OpenMenuAt("Reset System Configuration", {{"hostname", "changed-host"}}));
        Console& console = s->Screen();
        if (!fault.empty())
            host->Fault(fault);
        ASSERT_TRUE(Press(Keys::Enter, kResetQuestion));
        ASSERT_TRUE(s->Key(key));
        ASSERT_TRUE(console.WaitForTextGone(kResetQuestion));
        // Back in the menu, with no message of its own.
        ASSERT_TRUE(console.WaitFor([&] { return s->RightTitle() == "Reset System Configuration"; },
                                    5s, "menu"));
        ASSERT_TRUE(s->Settle());
        EXPECT_FALSE(console.Find("Default settings are restored.")) << console.Describe();
        EXPECT_EQ(Count(Record::Syslog, "]: Restoring factory defaults"), records);
        EXPECT_EQ(host->Lines(Record::Notad).size(), records);
        EXPECT_EQ(State()["host"].value("hostname", ""), "changed-host");
        EXPECT_TRUE(State()["power"]["history"].empty());
    }
}

} // namespace
