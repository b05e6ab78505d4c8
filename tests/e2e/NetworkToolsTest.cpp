// Restart and test of the management network through the console: the screens, the records,
// the interface's state on the host, pings that answer, fail or take long, and the hosts file.
#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;
using LanyxTest::Record;

namespace {

TEST(NetworkTools, RestartStopsAndStartsTheInterface) {
    struct Case {
        std::string profile;
        int renewals;
    };
    // A DHCP host shows no IPv4 address; its link-local IPv6 address is not shown either.
    for (const Case& c : {Case{"default", 0}, Case{"dhcp", 1}}) {
        SCOPED_TRACE(c.profile);
        Session s(c.profile);
        ASSERT_TRUE(s.LogIn());
        ASSERT_TRUE(s.OpenEntry("Restart Management Network"));
        ASSERT_TRUE(s.Screen().WaitForText("Restart Management Network: Confirm"));
        // Only F11 restarts.
        s.Key(Keys::Enter);
        ASSERT_TRUE(s.Settle());
        EXPECT_TRUE(s.Screen().Find("Restart management network now?").has_value());
        EXPECT_TRUE(s.Host().Matching(Record::Syslog, "Restarting").empty());

        s.Key(Keys::F(11));
        ASSERT_TRUE(s.Screen().WaitForText("<Enter> OK"));
        EXPECT_TRUE(s.Screen().Find("Stopping management network. Done.").has_value())
            << s.Screen().Describe();
        EXPECT_TRUE(s.Screen().Find("Starting management network.").has_value())
            << s.Screen().Describe();
        EXPECT_EQ(s.Screen().Find("   IP address is  192.168.10.21").has_value(),
                  c.profile == "default")
            << s.Screen().Describe();
        EXPECT_TRUE(s.Host().WaitForLine(Record::Syslog, "]: Restarting tnic0"));
        EXPECT_TRUE(s.Host().WaitForLine(Record::Notad, "Restarting tnic0"));
        const nlohmann::json nic = s.Host().State()["network"]["interfaces"][0];
        EXPECT_EQ(nic["linkChanges"], nlohmann::json::array({"disable", "enable"}));
        EXPECT_TRUE(nic["enabled"].get<bool>());
        EXPECT_EQ(nic["ipv4"].value("renewals", 0), c.renewals);

        s.Key(Keys::Escape);
        ASSERT_TRUE(s.Settle());
        EXPECT_TRUE(s.Screen().Find("<Enter> OK").has_value()) << "only Enter ends it";
        s.Key(Keys::Enter);
        EXPECT_TRUE(s.Screen().WaitForTextGone("Restart Management Network: Confirm"));
    }
}

TEST(NetworkTools, RestartWithoutInterfaceOrWithAFailingOne) {
    struct Case {
        const char* name;
        std::function<void(LanyxTest::HostRoot&)> change;
        std::string message;
    };
    const std::vector<Case> cases = {
        {"interface gone",
         [](LanyxTest::HostRoot& host) {
             host.Edit([](nlohmann::json& state) { state["network"]["managementInterface"] = ""; });
         },
         "Management network interface cannot be found."},
        {"stop fails",
         [](LanyxTest::HostRoot& host) { host.LibFault("TesselNicImpl::Disable", "link busy"); },
         "Operation on the management network interface failed."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Session s("default");
        ASSERT_TRUE(s.LogIn());
        // The menu was built with the interface present; it goes afterwards.
        c.change(s.Host());
        ASSERT_TRUE(s.OpenEntry("Restart Management Network"));
        if (std::string(c.name) == "stop fails")
            s.Key(Keys::F(11));
        ASSERT_TRUE(s.Screen().WaitForText(c.message));
        EXPECT_TRUE(s.Screen().Find("Restart Management Network: Error").has_value());
        s.Key(Keys::Enter);
        EXPECT_TRUE(s.Screen().WaitForTextGone(c.message));
    }
}

TEST(NetworkTools, TestPingsResolvesAndRestoresTheHostsFile) {
    SessionOptions options;
    // The second name server is down.
    options.settings = {{"ping-reachable", "192.168.10.1,192.168.10.2"}};
    options.prepare = [](LanyxTest::HostRoot& host) {
        host.Edit([](nlohmann::json& state) { state["ping"]["intervalMs"] = 200; });
    };
    Session s("default", options);
    const std::string hosts = s.Host().Read("/etc/hosts");
    ASSERT_TRUE(s.LogIn());
    ASSERT_TRUE(s.OpenEntry("Test Management Network"));
    ASSERT_TRUE(s.Screen().WaitForText("Ping Address #3:"));
    EXPECT_TRUE(s.Screen().Find("192.168.10.3").has_value()) << s.Screen().Describe();
    EXPECT_TRUE(s.Screen().Find("lanyx-lab01.lab.example.test").has_value())
        << s.Screen().Describe();

    s.Key(Keys::Enter);
    ASSERT_TRUE(s.Screen().WaitForText("Pinging address #1 (192.168.10.1)."));
    // Keys during a step are dropped: this Enter must not close the finished screen. Sent at
    // once, not when the console next waits for a key.
    s.Screen().Send(Keys::Enter);
    ASSERT_TRUE(s.Screen().WaitForText("<Enter> OK", 30s));
    ASSERT_TRUE(s.Settle());
    const std::string screen = s.Screen().ScreenText();
    EXPECT_NE(screen.find("Testing Management Network"), std::string::npos)
        << s.Screen().Describe();
    for (const char* line : {"#1 (192.168.10.1).", "#2 (192.168.10.2).", "#3 (192.168.10.3).",
                             "Resolving hostname (lanyx-lab01.lab.example.test)."}) {
        const auto at = s.Screen().Find(line);
        ASSERT_TRUE(at.has_value()) << line << "\n" << s.Screen().Describe();
        const std::string row = s.Screen().Row(at->first);
        const bool down = std::string(line).find("192.168.10.3") != std::string::npos;
        EXPECT_NE(row.find(down ? "Failed." : "OK."), std::string::npos) << row;
    }
    EXPECT_EQ(s.Host().Read("/etc/hosts"), hosts);
    EXPECT_FALSE(std::filesystem::exists(s.Host().File("/etc/hosts.backup")));
    s.Key(Keys::Enter);
    EXPECT_TRUE(s.Screen().WaitForTextGone("Testing Management Network"));
}

TEST(NetworkTools, EscapeLeavesASlowPingAtOnce) {
    SessionOptions options;
    // Unanswered, a ping of three packets takes five intervals: 20 seconds here.
    options.settings = {{"ping-reachable", ""}};
    options.prepare = [](LanyxTest::HostRoot& host) {
        host.Edit([](nlohmann::json& state) { state["ping"]["intervalMs"] = 4000; });
    };
    Session s("default", options);
    ASSERT_TRUE(s.LogIn());
    ASSERT_TRUE(s.OpenEntry("Test Management Network"));
    ASSERT_TRUE(s.Screen().WaitForText("Ping Address #1:"));
    s.Key(Keys::Enter);
    ASSERT_TRUE(s.Screen().WaitForText("Pinging address #1 (192.168.10.1)."));
    const auto start = std::chrono::steady_clock::now();
    s.Screen().Send(Keys::Escape);
    ASSERT_TRUE(s.Screen().WaitForTextGone("Testing Management Network", 5s));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    ASSERT_TRUE(s.Settle());
    EXPECT_FALSE(s.Screen().Find("Pinging address #2").has_value());
    EXPECT_TRUE(s.Screen().Find("Test Management Network").has_value()) << s.Screen().Describe();
}

} // namespace
