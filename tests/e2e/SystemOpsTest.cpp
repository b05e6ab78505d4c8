// Operations on the host as a whole, through the real console on simulated hosts: shut down and
// restart behind F12, lockdown mode and the reset of the configuration from the menu. Each case
// checks what the operator sees, the keys that do nothing, the host state the tools leave and the
// records.
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "harness/Session.hpp"

using namespace LanyxE2E;
using nlohmann::json;

namespace {

constexpr const char* kShutdownFooter = "<F2> Shut Down  <F11> Restart";
constexpr const char* kForceOff = "[ ] Forcefully terminate running VMs, if any ...";
constexpr const char* kForceOn = "[X] Forcefully terminate running VMs, if any ...";

class SystemOps : public ::testing::Test {
protected:
    Console* Start() {
        session = std::make_unique<Session>("default");
        root = &session->Host();
        EXPECT_TRUE(session->AwaitWelcome());
        return &session->Screen();
    }

    // The shutdown dialog after a login as root by F12, ready for keys.
    Console* OpenShutdown() {
        Console* console = Start();
        EXPECT_TRUE(session->Key(Keys::F(12)));
        EXPECT_TRUE(console->WaitForText("Authentication Required"));
        EXPECT_TRUE(session->Settle());
        EXPECT_TRUE(session->Type("root") && session->Key(Keys::Enter) &&
                    session->Type(kRootPassword) && session->Key(Keys::Enter));
        EXPECT_TRUE(console->WaitForText(kShutdownFooter)) << console->Describe();
        EXPECT_TRUE(session->Settle());
        EXPECT_TRUE(console->Find(kForceOff)) << console->Describe();
        return console;
    }

    // The menu after a login by F2, with `title` selected.
    Console* OpenMenuAt(const std::string& title) {
        Console* console = Start();
        EXPECT_TRUE(session->LogIn());
        EXPECT_TRUE(session->SelectEntry(title));
        return console;
    }

    // One key to a screen that reads keys, then `shown`.
    ::testing::AssertionResult Press(std::string_view key, std::string_view shown) {
        if (!session->Key(key))
            return ::testing::AssertionFailure() << "key not sent";
        return session->Screen().WaitForText(shown);
    }

    std::string RightTitle() const { return session->RightTitle(); }

    json State() const { return root->State(); }

    size_t Count(Record record, std::string_view text) const {
        return root->Matching(record, text).size();
    }

    std::unique_ptr<Session> session;
    HostRoot* root = nullptr;
};

// ---------------------------------------------------------------- shut down and restart

TEST_F(SystemOps, ShutdownAndRestartStopTheGuestsThenRunThePowerCommand) {
    struct Case {
        std::string_view key;
        bool force; // the forced runs of both keys are in the fault test below
        std::string title, message, logLine, event, action, powerState;
    };
    const std::vector<Case> cases = {
        {Keys::F(2), false, "Shut Down Host", "Shutdown in progress...", "]: Shutting down host",
         "@&!*@*@(nota.user.lanyx.shutdown.host)Shutting down host", "poweroff", "off"},
        {Keys::F(11), true, "Restart Host", "Restart in progress...", "]: Rebooting host",
         "@&!*@*@(nota.user.lanyx.reboot.host)Rebooting host", "reboot", "rebooting"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.action);
        Console* console = OpenShutdown();
        // Enter accepts nothing here.
        ASSERT_TRUE(session->Key(Keys::Enter));
        if (c.force) {
            ASSERT_TRUE(Press(" ", kForceOn));
        }
        ASSERT_TRUE(session->Settle());
        EXPECT_TRUE(root->Matching(Record::Syslog, c.logLine).empty()) << "Enter ran nothing";

        ASSERT_TRUE(session->Key(c.key));
        ASSERT_TRUE(console->WaitForText(c.message)) << console->Describe();
        EXPECT_TRUE(console->Find(c.title));
        ASSERT_TRUE(
            console->WaitFor([&] { return State()["power"].value("state", "") == c.powerState; },
                             10s, "power state " + c.powerState));
        const json power = State()["power"];
        ASSERT_EQ(power["history"].size(), 1u) << power.dump();
        EXPECT_EQ(power["history"][0]["action"], c.action);
        EXPECT_TRUE(power["history"][0]["args"].empty());
        EXPECT_EQ(root->ToolRuns("haltGuests"),
                  std::vector<std::string>{c.force ? "--terminate" : ""});
        EXPECT_EQ(root->ToolRuns("helmq"),
                  std::vector<std::string>{"-U root helmnode/autostartmanager/autostop"});
        EXPECT_FALSE(State()["autostartManager"].value("running", true));
        const json guests = State()["guests"];
        for (const json& guest : guests)
            EXPECT_FALSE(guest.value("running", true)) << guest.dump();
        EXPECT_EQ(Count(Record::Syslog, c.logLine), 1u);
        EXPECT_EQ(Count(Record::Notad, c.event), 1u);
        EXPECT_TRUE(root->Lines(Record::Audit).size() == 1u) << "the login's record alone";

        // The host goes down around the console: no key leads anywhere.
        for (std::string_view key : {Keys::Escape, Keys::Enter, Keys::F(2), Keys::F(11)})
            ASSERT_TRUE(session->Key(key));
        ASSERT_TRUE(session->Settle());
        EXPECT_TRUE(console->Find(c.message)) << console->Describe();
        EXPECT_EQ(State()["power"]["history"].size(), 1u);
        EXPECT_TRUE(console->Running());
    }
}

TEST_F(SystemOps, EscapeLeavesTheShutdownDialogWithoutARecord) {
    Console* console = OpenShutdown();
    ASSERT_TRUE(Press(" ", kForceOn));
    ASSERT_TRUE(session->Key(" "));
    ASSERT_TRUE(console->WaitForText(kForceOff));
    ASSERT_TRUE(session->Key(Keys::Escape));
    ASSERT_TRUE(session->AwaitWelcome());
    EXPECT_TRUE(root->Matching(Record::Syslog, "]: Shutting down host").empty());
    EXPECT_TRUE(root->Matching(Record::Syslog, "]: Rebooting host").empty());
    EXPECT_TRUE(root->Lines(Record::Notad).empty());
    EXPECT_EQ(State()["power"].value("state", ""), "on");
    EXPECT_TRUE(root->ToolRuns("haltGuests").empty());
    // No session was opened behind F12: no logout either.
    EXPECT_TRUE(root->Matching(Record::Syslog, "logged out").empty());
}

TEST_F(SystemOps, PowerCommandThatCannotStartReturnsToTheDialogWithItsTick) {
    struct Case {
        std::string_view key;
        std::string tool, logLine;
    };
    const std::vector<Case> cases = {
        {Keys::F(2), "poweroff", "]: Shutting down host"},
        {Keys::F(11), "reboot", "]: Rebooting host"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.tool);
        Console* console = OpenShutdown();
        root->Fault({"tool", c.tool, "signal"});
        ASSERT_TRUE(Press(" ", kForceOn));
        ASSERT_TRUE(session->Key(c.key));
        ASSERT_TRUE(root->WaitForLine(Record::Syslog, "]: Run Command did not terminate normally"));
        ASSERT_TRUE(console->WaitFor(
            [&] { return console->Find(kShutdownFooter) && console->Find(kForceOn); }, 10s,
            "the shutdown dialog again"))
            << console->Describe();
        // The records and the stopped guests stay: nothing is undone.
        EXPECT_EQ(Count(Record::Syslog, c.logLine), 1u);
        EXPECT_EQ(root->Lines(Record::Notad).size(), 1u);
        EXPECT_EQ(root->ToolRuns("haltGuests"), std::vector<std::string>{"--terminate"});
        EXPECT_EQ(State()["power"].value("state", ""), "on");
        EXPECT_TRUE(State()["power"]["history"].empty());

        // Once the tool works again the same dialog carries the operation out.
        root->Fault({"clear", c.tool});
        const std::string progress =
            c.tool == "poweroff" ? "Shutdown in progress..." : "Restart in progress...";
        ASSERT_TRUE(Press(c.key, progress));
        EXPECT_TRUE(console->WaitFor([&] { return State()["power"]["history"].size() == 1u; }, 10s,
                                     "the power record"));
    }
}

TEST_F(SystemOps, AbsentPowerCommandStillEndsInTheEndlessWait) {
    // Only a shell that cannot start brings the operator back; a missing command does not.
    Console* console = OpenShutdown();
    root->Fault({"tool", "poweroff", "absent"});
    ASSERT_TRUE(session->Key(Keys::F(2)));
    ASSERT_TRUE(console->WaitForText("Shutdown in progress..."));
    ASSERT_TRUE(console->WaitFor([&] { return root->ToolRuns("haltGuests").size() == 1u; }, 10s,
                                 "the guests halted"));
    ASSERT_TRUE(session->Key(Keys::Escape));
    ASSERT_TRUE(session->Settle());
    EXPECT_TRUE(console->Find("Shutdown in progress...")) << console->Describe();
    EXPECT_EQ(State()["power"].value("state", ""), "on");
}

TEST_F(SystemOps, AutostopRefusedForTheOperatorRunsAsTheConsolesOwnUser) {
    Console* console = OpenShutdown();
    root->Set("helmq-users", "");
    ASSERT_TRUE(session->Key(Keys::F(11)));
    ASSERT_TRUE(console->WaitFor([&] { return State()["power"].value("state", "") == "rebooting"; },
                                 10s, "the reboot"));
    EXPECT_EQ(Count(Record::Syslog,
                    "]: Unable to execute command helmq helmnode/autostartmanager/autostop using "
                    "user root. Using user lanyx"),
              1u);
    EXPECT_EQ(root->ToolRuns("helmq"),
              std::vector<std::string>{"-U lanyx helmnode/autostartmanager/autostop"});
    EXPECT_FALSE(State()["autostartManager"].value("running", true));
}

// ---------------------------------------------------------------- lockdown mode

TEST_F(SystemOps, LockdownDialogSwitchesTheModeAndTheMenuAsksAgain) {
    struct Case {
        std::string name;
        bool enabledBefore;
        std::vector<std::string>
            setAfterMenu; // a hostsim setting pair, applied once the menu stands
        std::vector<std::string> faultAfterMenu;
        bool tickedAtOpen;
        std::vector<std::string_view> keys;
        bool shownAfter;     // what the menu says afterwards
        bool enabledAfter;   // what the host has
        std::string logLine; // "" for none
        std::vector<std::string> lockdownRuns;
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
        Console* console = Start();
        root->Set("lockdown-enabled", c.enabledBefore ? "true" : "false");
        ASSERT_TRUE(session->LogIn());
        ASSERT_TRUE(session->SelectEntry("Configure Lockdown Mode"));
        ASSERT_TRUE(console->WaitForText(c.enabledBefore ? "Enabled" : "Disabled"));
        if (!c.setAfterMenu.empty())
            root->Set(c.setAfterMenu[0], c.setAfterMenu[1]);
        if (!c.faultAfterMenu.empty())
            root->Fault(c.faultAfterMenu);

        ASSERT_TRUE(Press(Keys::Enter, "<Space> Toggle Selected"));
        EXPECT_TRUE(
            console->Find(c.tickedAtOpen ? "[X] Enable lockdown mode" : "[ ] Enable lockdown mode"))
            << console->Describe();
        for (std::string_view key : c.keys) {
            const bool toggles = key == " ";
            ASSERT_TRUE(session->Key(key));
            if (toggles) {
                ASSERT_TRUE(console->WaitForText(c.tickedAtOpen ? "[ ] Enable" : "[X] Enable"));
            }
        }
        ASSERT_TRUE(console->WaitForTextGone("<Space> Toggle Selected"));
        // The menu shows what the host now reports, whatever the dialog did.
        ASSERT_TRUE(console->WaitFor(
            [&] { return console->Find(c.shownAfter ? "Enabled" : "Disabled").has_value(); }, 5s,
            "the menu's state"))
            << console->Describe();
        EXPECT_EQ(State()["lockdown"].value("enabled", !c.enabledAfter), c.enabledAfter);
        std::vector<std::string> runs;
        for (const std::string& run : root->ToolRuns("helmq"))
            if (run.find("lockdown_mode") != std::string::npos)
                runs.push_back(run);
        EXPECT_EQ(runs, c.lockdownRuns);
        // One line of the dialog at most, and only the expected one.
        const size_t lines = Count(Record::Syslog, "]: Lockdown mode ") +
                             Count(Record::Syslog, " lockdown mode failed");
        EXPECT_EQ(lines, c.logLine.empty() ? 0u : 1u);
        if (!c.logLine.empty()) {
            EXPECT_EQ(Count(Record::Syslog, c.logLine), 1u);
        }
    }
}

// ---------------------------------------------------------------- reset of the configuration

TEST_F(SystemOps, ResetPutsTheFactoryConfigurationBackThenRestartsOnEnter) {
    Console* console = OpenMenuAt("Reset System Configuration");
    root->Set("hostname", "changed-host");
    root->Set("lockdown-enabled", "true");
    root->Set("ssh-running", "true");
    ASSERT_TRUE(Press(Keys::Enter, "Reset System Configuration now?"));
    // Enter is no answer here.
    ASSERT_TRUE(session->Key(Keys::Enter));
    ASSERT_TRUE(session->Settle());
    EXPECT_TRUE(root->Matching(Record::Syslog, "Restoring factory defaults").empty());

    ASSERT_TRUE(session->Key(Keys::F(11)));
    ASSERT_TRUE(console->WaitForText("Default settings are restored. Press <Enter> to"));
    EXPECT_FALSE(console->Find("Reset System Configuration now?"));
    EXPECT_EQ(Count(Record::Syslog, "]: Restoring factory defaults"), 1u);
    EXPECT_EQ(Count(Record::Notad,
                    "@&!*@*@(nota.user.lanyx.restore.factory.defaults)Restoring factory defaults"),
              1u);
    const json state = State();
    EXPECT_EQ(state["host"].value("hostname", ""), "lanyx-lab01");
    EXPECT_FALSE(state["lockdown"].value("enabled", true));
    EXPECT_FALSE(state["services"]["SSH"].value("running", true));
    EXPECT_TRUE(state["guests"].empty());
    EXPECT_EQ(root->ToolRuns("factoryState.py"), std::vector<std::string>{"--reset-only"});
    EXPECT_EQ(state["power"].value("state", ""), "on") << "not restarted before Enter";

    for (std::string_view key : {Keys::Escape, Keys::F(11), std::string_view(" ")})
        ASSERT_TRUE(session->Key(key));
    ASSERT_TRUE(session->Settle());
    EXPECT_EQ(State()["power"].value("state", ""), "on");
    ASSERT_TRUE(session->Key(Keys::Enter));
    ASSERT_TRUE(console->WaitFor([&] { return State()["power"].value("state", "") == "rebooting"; },
                                 10s, "reboot"));
    const json history = State()["power"]["history"];
    ASSERT_EQ(history.size(), 1u);
    EXPECT_EQ(history[0]["action"], "reboot");
    EXPECT_EQ(history[0]["args"], json::array({"-f"}));
    console->Send(Keys::Enter);
    console->Send(Keys::Escape);
    console->Pump(500ms);
    EXPECT_TRUE(console->Find("Default settings are restored.")) << "waits for the host to go down";
    EXPECT_EQ(State()["power"]["history"].size(), 1u);
}

TEST_F(SystemOps, ResetThatDoesNotHappen) {
    struct Case {
        std::string name;
        std::vector<std::string> fault;
        std::string_view key;
        size_t records; // log lines and events
    };
    const std::vector<Case> cases = {
        {"escape", {}, Keys::Escape, 0},
        {"script fails", {"tool", "factoryState.py", "exit", "3"}, Keys::F(11), 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Console* console = OpenMenuAt("Reset System Configuration");
        root->Set("hostname", "changed-host");
        if (!c.fault.empty())
            root->Fault(c.fault);
        ASSERT_TRUE(Press(Keys::Enter, "Reset System Configuration now?"));
        ASSERT_TRUE(session->Key(c.key));
        ASSERT_TRUE(console->WaitForTextGone("Reset System Configuration now?"));
        // Back in the menu, with no message of its own.
        ASSERT_TRUE(console->WaitFor([&] { return RightTitle() == "Reset System Configuration"; },
                                     5s, "menu"));
        ASSERT_TRUE(session->Settle());
        EXPECT_FALSE(console->Find("Default settings are restored.")) << console->Describe();
        EXPECT_EQ(Count(Record::Syslog, "]: Restoring factory defaults"), c.records);
        EXPECT_EQ(root->Lines(Record::Notad).size(), c.records);
        EXPECT_EQ(State()["host"].value("hostname", ""), "changed-host");
        EXPECT_TRUE(State()["power"]["history"].empty());
    }
}

} // namespace
