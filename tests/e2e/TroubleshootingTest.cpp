// The troubleshooting menu after a login on simulated hosts: its lines and panes, the shell and
// SSH toggles through the host agent and their ways round a failing agent, the time-out dialogs.
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "harness/Session.hpp"

using namespace LanyxE2E;
using nlohmann::json;

namespace {

constexpr int kTop = 4, kListColumn = 3;
constexpr const char* kMenuTitle = "Troubleshooting Mode Options";

// Logged in as root, in the troubleshooting menu.
::testing::AssertionResult OpenMenu(Session& s) {
    if (auto in = s.LogIn(); !in)
        return in;
    if (auto opened = s.OpenEntry("Troubleshooting Options"); !opened)
        return opened;
    return s.Screen().WaitForText(kMenuTitle);
}

json Service(const HostRoot& host, const char* name) {
    return host.State()["services"][name];
}
bool SshPortsOpen(const HostRoot& host) {
    return host.State()["firewall"]["sshServer"]["enabled"].get<bool>();
}

// ---------------------------------------------------------------- lines and panes

// The lines with their panes and footers, then the toggles, which grey and free the time-outs.
TEST(Troubleshooting, LinesPanesFootersAndTheToggles) {
    Session s;
    Console& console = s.Screen();
    HostRoot& host = s.Host();
    ASSERT_TRUE(OpenMenu(s));
    EXPECT_EQ(s.List(5), "Enable Ostra Shell\nEnable SSH\nModify Ostra Shell and SSH timeouts\n"
                         "Modify LANYX idle timeout\nRestart Management Agents")
        << console.Describe();
    EXPECT_EQ(Trimmed(console.Text(22, 2, 37)), "<Up/Down> Select");
    // The menu's own footer stands until the selection first moves.
    EXPECT_EQ(s.RightFooter(), "<Enter> Change             <Esc> Exit");
    for (int line = 0; line < 5; ++line)
        EXPECT_FALSE(s.Greyed(line)) << line;

    EXPECT_TRUE(s.Detail().starts_with("Ostra Shell is Disabled")) << s.Detail();
    // Each line's pane; the agents' line alone restarts rather than changes.
    const std::vector<std::string> titles = {
        "Ostra Shell", "SSH Support", "Modify Ostra Shell and SSH", "Modify LANYX idle timeout",
        "Restart Management Agents"};
    for (size_t line = 0; line < titles.size(); ++line) {
        SCOPED_TRACE(titles[line]);
        if (line > 0) {
            ASSERT_TRUE(s.Press({Keys::Down}));
        }
        EXPECT_EQ(s.RightTitle(), titles[line]);
        EXPECT_EQ(s.RightFooter().starts_with("<Enter> Restart"), line == 4) << s.RightFooter();
    }
    EXPECT_TRUE(s.Detail().starts_with("The management agents are the")) << s.Detail();
    // Down on the last line and letters change nothing; Esc goes back to the main menu.
    ASSERT_TRUE(s.Press({Keys::Down, "x", Keys::Tab}));
    EXPECT_EQ(s.RightTitle(), "Restart Management Agents");
    ASSERT_TRUE(s.Press({Keys::Escape}));
    EXPECT_TRUE(console.WaitForText("System Customization"));
    EXPECT_EQ(s.RightTitle(), "Troubleshooting Options");
    EXPECT_TRUE(host.ToolRuns("helmq").empty());

    // Shell on: its label, its pane, the host, and the time-outs greyed and skipped.
    ASSERT_TRUE(s.Walk({"Troubleshooting Options", "Ostra Shell"}));
    EXPECT_EQ(console.Text(kTop, kListColumn, 36), "Disable Ostra Shell");
    EXPECT_TRUE(s.Detail().starts_with("Ostra Shell is Enabled")) << s.Detail();
    EXPECT_EQ(Service(host, "OstraShell"), json({{"running", true}, {"enabled", true}}));
    EXPECT_TRUE(s.Greyed(2));
    ASSERT_TRUE(s.Press({Keys::Down, Keys::Down}));
    EXPECT_EQ(s.RightTitle(), "Modify LANYX idle timeout") << "the greyed line is passed over";

    // SSH on as well: the agent opens its ports with it.
    ASSERT_TRUE(s.Press({Keys::Up, Keys::Enter}));
    EXPECT_EQ(console.Text(kTop + 1, kListColumn, 36), "Disable SSH");
    EXPECT_EQ(Service(host, "SSH"), json({{"running", true}, {"enabled", true}}));
    EXPECT_TRUE(SshPortsOpen(host));

    // Shell off while SSH runs: still greyed. SSH off too: the line comes back and can be reached.
    ASSERT_TRUE(s.Press({Keys::Up, Keys::Enter}));
    EXPECT_EQ(console.Text(kTop, kListColumn, 36), "Enable Ostra Shell");
    EXPECT_TRUE(s.Greyed(2));
    ASSERT_TRUE(s.Press({Keys::Down, Keys::Enter}));
    EXPECT_EQ(console.Text(kTop + 1, kListColumn, 36), "Enable SSH");
    EXPECT_FALSE(s.Greyed(2));
    EXPECT_FALSE(SshPortsOpen(host));
    ASSERT_TRUE(s.Press({Keys::Down}));
    EXPECT_TRUE(s.RightTitle().starts_with("Modify Ostra Shell and SSH"));

    EXPECT_EQ(host.ToolRuns("helmq"),
              (std::vector<std::string>{
                  "-U root helmnode/start_ostra_shell", "-U root helmnode/enable_ostra_shell",
                  "-U root helmnode/start_ssh", "-U root helmnode/enable_ssh",
                  "-U root helmnode/stop_ostra_shell", "-U root helmnode/disable_ostra_shell",
                  "-U root helmnode/stop_ssh", "-U root helmnode/disable_ssh"}));
    EXPECT_TRUE(host.Messages("user.warning").empty());
    const std::vector<std::string> toggles = {
        "User root enabled Ostra Shell", "User root enabled SSH", "User root disabled Ostra Shell",
        "User root disabled SSH"};
    std::vector<std::string> logged;
    for (const std::string& line : host.Messages("user.info"))
        if (line.starts_with("User root ") && !line.ends_with("logged in"))
            logged.push_back(line);
    EXPECT_EQ(logged, toggles);

    // A service that runs when the menu opens is shown on, and the time-outs greyed.
    host.Set("ssh-running", "true");
    ASSERT_TRUE(s.Press({Keys::Escape}) && s.OpenEntry("Troubleshooting Options"));
    EXPECT_EQ(s.List(2), "Enable Ostra Shell\nDisable SSH");
    EXPECT_TRUE(s.Greyed(2));
    ASSERT_TRUE(s.Press({Keys::Down}));
    EXPECT_TRUE(s.Detail().starts_with("SSH is Enabled")) << s.Detail();
}

// ---------------------------------------------------------------- a failing agent

TEST(Troubleshooting, TogglesGetRoundAFailingAgent) {
    struct Case {
        const char* name;
        SessionOptions options;
        std::vector<std::string> logs; // warnings and notes besides the toggles' own lines
        bool shellEnabled, sshEnabled; // the agent's "enabled" afterwards; both run in every case
        bool portsOpen;
        std::vector<std::string> agentRuns;
    };
    const std::string unable = "warning Unable to run helmq to ";
    const auto refusedRoot = [](HostRoot& h) {
        h.Edit([](json& st) { st["hostAgent"]["users"] = json::array({"ops"}); });
    };
    // clang-format off
    const std::vector<Case> cases = {
        {"the operator refused: the console's own account, for both commands", {.prepare = refusedRoot},
         {"info Unable to execute command helmq helmnode/start_ostra_shell using user root. Using user lanyx",
          "info Unable to execute command helmq helmnode/start_ssh using user root. Using user lanyx"},
         true, true, true,
         {"-U lanyx helmnode/start_ostra_shell", "-U lanyx helmnode/enable_ostra_shell",
          "-U lanyx helmnode/start_ssh", "-U lanyx helmnode/enable_ssh"}},
        {"no agent tool: the init scripts, and the firewall by hand", {.faults = {{"tool", "helmq", "absent"}}},
         {unable + "start/stop Ostra Shell", unable + "enable/disable Ostra Shell", unable + "start/stop ssh",
          unable + "enable/disable ssh"},
         false, false, true, {}},
        {"a failing agent and a locked firewall",
         {.faults = {{"tool", "helmq", "exit", "1"}, {"lib", "FirewallRuleset::Enable", "ruleset locked"}}},
         {unable + "start/stop Ostra Shell", unable + "enable/disable Ostra Shell", unable + "start/stop ssh",
          "warning Failed to update firewall sshServer ruleset status: ruleset locked", unable + "enable/disable ssh"},
         false, false, false, {}},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Session s("default", c.options);
        HostRoot& host = s.Host();
        ASSERT_TRUE(OpenMenu(s));
        host.Mark();
        ASSERT_TRUE(s.Press({Keys::Enter, Keys::Down, Keys::Enter}));
        // Nothing on the screen tells of the failure: the labels flip.
        EXPECT_EQ(s.List(5),
                  "Disable Ostra Shell\nDisable SSH\nModify Ostra Shell and SSH timeouts\n"
                  "Modify LANYX idle timeout\nRestart Management Agents");
        std::vector<std::string> logs;
        for (const std::string& line : host.Messages()) {
            if (!line.starts_with("user.info User root"))
                logs.push_back(line.substr(line.find('.') + 1));
        }
        EXPECT_EQ(logs, c.logs);
        EXPECT_EQ(host.Messages("user.info").back(), "User root enabled SSH");
        EXPECT_EQ(Service(host, "OstraShell"),
                  json({{"running", true}, {"enabled", c.shellEnabled}}));
        EXPECT_EQ(Service(host, "SSH"), json({{"running", true}, {"enabled", c.sshEnabled}}));
        EXPECT_EQ(SshPortsOpen(host), c.portsOpen);
        EXPECT_EQ(host.ToolRuns("helmq"), c.agentRuns);
    }
}

} // namespace
