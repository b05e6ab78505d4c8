// Restart and test of the management network through the console: the screens, the records,
// the interface's state on the host, and pings that answer, fail or take long.
#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;
using LanyxTest::Record;
using nlohmann::json;

namespace {

// Each ping packet waits this long for an answer.
std::function<void(HostRoot&)> PingInterval(int milliseconds) {
    return [milliseconds](HostRoot& host) {
        host.Edit([&](json& state) { state["ping"]["intervalMs"] = milliseconds; });
    };
}

TEST(NetworkTools, RestartStopsAndStartsTheInterface) {
    // A DHCP host shows no IPv4 address, and its lease is renewed.
    for (const auto& [profile, renewals] : {std::pair{"default", 0}, std::pair{"dhcp", 1}}) {
        SCOPED_TRACE(profile);
        Session s(profile);
        Console& console = s.Screen();
        ASSERT_TRUE(s.Walk({"@login", "Restart Management Network"}));
        ASSERT_TRUE(console.WaitForText("Restart Management Network: Confirm"));
        ASSERT_TRUE(s.Press({Keys::Enter}));
        EXPECT_TRUE(console.Find("Restart management network now?")) << "only F11 restarts";
        EXPECT_TRUE(s.Host().Matching(Record::Syslog, "Restarting").empty());

        ASSERT_TRUE(s.Key(Keys::F(11)));
        ASSERT_TRUE(console.WaitForText("<Enter> OK"));
        EXPECT_TRUE(console.Find("Stopping management network. Done.")) << console.Describe();
        EXPECT_TRUE(console.Find("Starting management network.")) << console.Describe();
        EXPECT_EQ(console.Find("   IP address is  192.168.10.21").has_value(),
                  std::string(profile) == "default")
            << console.Describe();
        EXPECT_TRUE(s.Host().WaitForLine(Record::Syslog, "]: Restarting tnic0"));
        EXPECT_TRUE(s.Host().WaitForLine(Record::Notad, "Restarting tnic0"));
        const json nic = s.Host().State()["network"]["interfaces"][0];
        EXPECT_EQ(nic["linkChanges"], json::array({"disable", "enable"}));
        EXPECT_TRUE(nic["enabled"].get<bool>());
        EXPECT_EQ(nic["ipv4"].value("renewals", 0), renewals);

        ASSERT_TRUE(s.Press({Keys::Escape}));
        EXPECT_TRUE(console.Find("<Enter> OK")) << "only Enter ends it";
        ASSERT_TRUE(s.Key(Keys::Enter));
        EXPECT_TRUE(console.WaitForTextGone("Restart Management Network: Confirm"));
    }
}

TEST(NetworkTools, RestartWithoutInterfaceOrWithAFailingOne) {
    const auto noInterface = [](HostRoot& host) {
        host.Edit([](json& state) { state["network"]["managementInterface"] = ""; });
    };
    const auto busyLink = [](HostRoot& host) {
        host.LibFault("TesselNicImpl::Disable", "link busy");
    };
    // The failure after F11, or before the question. The menu was built with the interface
    // present; it goes afterwards.
    Session s("default");
    ASSERT_TRUE(s.LogIn());
    for (const auto& [change, confirm, message] :
         {std::tuple{std::function<void(HostRoot&)>(busyLink), true,
                     "Operation on the management network interface failed."},
          std::tuple{std::function<void(HostRoot&)>(noInterface), false,
                     "Management network interface cannot be found."}}) {
        SCOPED_TRACE(message);
        s.Host().Fault({"clear"});
        change(s.Host());
        ASSERT_TRUE(s.OpenEntry("Restart Management Network"));
        if (confirm) {
            ASSERT_TRUE(s.Key(Keys::F(11)));
        }
        ASSERT_TRUE(s.Screen().WaitForText(message));
        EXPECT_TRUE(s.Screen().Find("Restart Management Network: Error"));
        ASSERT_TRUE(s.Key(Keys::Enter));
        EXPECT_TRUE(s.Screen().WaitForTextGone(message));
    }
}

// Esc leaves a slow ping at once; then, with pings that answer, each step with its outcome.
TEST(NetworkTools, TestPingsAndResolves) {
    // Unanswered, a ping of three packets takes five intervals: 20 seconds here.
    Session s("default", {.settings = {{"ping-reachable", ""}}, .prepare = PingInterval(4000)});
    Console& console = s.Screen();
    ASSERT_TRUE(s.Walk({"@login", "Test Management Network"}));
    ASSERT_TRUE(console.WaitForText("Ping Address #3:"));
    EXPECT_TRUE(console.Find("192.168.10.3")) << console.Describe();
    EXPECT_TRUE(console.Find("lanyx-lab01.lab.example.test")) << console.Describe();
    ASSERT_TRUE(s.Key(Keys::Enter));
    ASSERT_TRUE(console.WaitForText("Pinging address #1 (192.168.10.1)."));
    const auto start = std::chrono::steady_clock::now();
    console.Send(Keys::Escape);
    ASSERT_TRUE(console.WaitForTextGone("Testing Management Network", 5s));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    ASSERT_TRUE(s.Settle());
    EXPECT_FALSE(console.Find("Pinging address #2"));
    EXPECT_EQ(s.RightTitle(), "Test Management Network") << console.Describe();

    // The second name server is down.
    s.Host().Set("ping-reachable", "192.168.10.1,192.168.10.2");
    PingInterval(200)(s.Host());
    ASSERT_TRUE(s.OpenEntry("Test Management Network"));
    ASSERT_TRUE(console.WaitForText("Ping Address #3:"));
    ASSERT_TRUE(s.Key(Keys::Enter));
    ASSERT_TRUE(console.WaitForText("Pinging address #1 (192.168.10.1)."));
    // Keys during a step are dropped: this Enter must not close the finished screen. Sent at
    // once, not when the console next waits for a key.
    console.Send(Keys::Enter);
    ASSERT_TRUE(console.WaitForText("<Enter> OK", 30s));
    ASSERT_TRUE(s.Settle());
    EXPECT_TRUE(console.Find("Testing Management Network")) << console.Describe();
    for (const char* line : {"#1 (192.168.10.1).", "#2 (192.168.10.2).", "#3 (192.168.10.3).",
                             "Resolving hostname (lanyx-lab01.lab.example.test)."}) {
        const auto at = console.Find(line);
        ASSERT_TRUE(at.has_value()) << line << "\n" << console.Describe();
        const std::string row = console.Row(at->first);
        const bool down = std::string(line).find("192.168.10.3") != std::string::npos;
        EXPECT_NE(row.find(down ? "Failed." : "OK."), std::string::npos) << row;
    }
    ASSERT_TRUE(s.Key(Keys::Enter));
    EXPECT_TRUE(console.WaitForTextGone("Testing Management Network"));
}

} // namespace
