// The restart's address lines, the test's default targets, and its two workers against the
// simulated host: exit status of the ping, the hosts file taken out and put back.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <sstream>

#include "NetworkWorld.hpp"
#include "network/DoRestartNetworkDialog.hpp"
#include "network/RunTestDialog.hpp"
#include "network/TestDialog.hpp"

namespace Lanyx {
namespace {

using namespace Testing;
using Keelson::Network::Ipv6Network;

Ipv6Network Net(const std::string& text, int type = 0) {
    Ipv6Network network(text);
    network.SetIpv6AddressType(type);
    return network;
}

// A static and a DHCP host without global IPv6 addresses are checked end to end.
TEST(RestartAddressLines, StaticFirstThenCountedIpv6) {
    const std::string is = "IP address is ";
    const std::string v4 = "   " + is + " 10.0.0.5\n";
    auto line = [&](const std::string& a) { return "   " + is + " " + a + "\n"; };
    struct Row {
        const char* name;
        bool dhcp;
        std::vector<Ipv6Network> networks;
        std::string lines;
    };
    const std::vector<Row> rows = {
        {"dhcp with IPv6", true, {Net("2001:db8::1/64")}, "\n" + line("2001:db8::1/64")},
        {"three, one link-local",
         false,
         {Net("fe80::1/64"), Net("2001:db8::1/64"), Net("2001:db8::2/64")},
         "\n" + v4 + line("2001:db8::1/64") + line("2001:db8::2/64")},
        {"three eligible shown whole",
         false,
         {Net("2001:db8::1/64"), Net("2001:db8::2/64"), Net("2001:db8::3/64")},
         "\n" + v4 + line("2001:db8::1/64") + line("2001:db8::2/64") + line("2001:db8::3/64")},
        {"four eligible",
         false,
         {Net("2001:db8::1/64"), Net("2001:db8::2/64"), Net("2001:db8::3/64"),
          Net("2001:db8::4/64")},
         "\n" + v4 + line("2001:db8::1/64") + line("2001:db8::2/64") + "   ...\n"},
        {"learned ones do not count",
         true,
         {Net("2001:db8::7/64", 7), Net("2001:db8::9/64", 9)},
         "\n"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(RestartedAddressLines(is, row.dhcp, "10.0.0.5", row.networks), row.lines)
            << row.name;
}

std::vector<std::string> Words(const std::string& text) {
    std::vector<std::string> words;
    std::istringstream in(text);
    for (std::string word; in >> word;)
        words.push_back(word);
    return words;
}

// The default host's gateway and two servers are checked end to end.
TEST(TestTargets, GatewaysAndServersInTheirOrder) {
    struct Row {
        const char* name;
        std::string gateway, ipv6Gateway;
        bool ipv6;
        std::string servers, ipv6Servers, targets;
    };
    const Row rows[] = {
        {"v6 gateway second", "10.0.0.1", "2001:db8::1", true, "10.0.0.2 10.0.0.3", "",
         "10.0.0.1 2001:db8::1 10.0.0.2"},
        {"v6 off leaves its gateway", "10.0.0.1", "2001:db8::1", false, "", "2001:db8::53",
         "10.0.0.1 2001:db8::53"},
        {"zero gateways are none", "0.0.0.0", "::", true, "", "", ""},
        {"servers interleave", "", "", true, "10.0.0.2 10.0.0.3", "2001:db8::53",
         "10.0.0.2 2001:db8::53 10.0.0.3"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(DefaultPingTargets(row.gateway, row.ipv6Gateway, row.ipv6, Words(row.servers),
                                     Words(row.ipv6Servers)),
                  Words(row.targets))
            << row.name;
}

class Workers : public NetworkForm {
protected:
    static int32_t Await(const TestStatus& status) {
        EXPECT_TRUE(LanyxTest::PollUntil([&] { return status->load() != kTestRunning; },
                                         std::chrono::seconds(20)));
        return status->load();
    }
    int32_t Resolve(const std::string& name) {
        auto status = std::make_shared<std::atomic<int32_t>>(kTestRunning);
        ResolveWorker(name, status);
        return status->load();
    }
};

TEST_F(Workers, PingAnswersFromTheReachableList) {
    Host().Edit([](nlohmann::json& state) { state["ping"]["intervalMs"] = 10; });
    struct Row {
        std::string interface, address;
        int32_t outcome;
    };
    // Answers and silence through the management interface are checked end to end.
    const std::vector<Row> rows = {{"", "192.168.10.2", 0}, {"tnic9", "192.168.10.1", 1}};
    for (const Row& row : rows) {
        auto status = std::make_shared<std::atomic<int32_t>>(kTestRunning);
        PingWorker(row.interface, row.address, status);
        EXPECT_EQ(Await(status), row.outcome) << row.interface << " " << row.address;
    }
}

TEST_F(Workers, ResolveTakesTheHostsEntryOutAndPutsTheFileBack) {
    const std::string hosts = Host().Read("/etc/hosts");
    // Known to the name servers: resolves although the hosts file's entry is out meanwhile.
    EXPECT_EQ(Resolve("lanyx-lab01.lab.example.test"), 0);
    EXPECT_EQ(Host().Read("/etc/hosts"), hosts);
    EXPECT_FALSE(std::filesystem::exists(Host().File("/etc/hosts.backup")));
    // Only the hosts file knows it: its entry is taken out for the lookup.
    Host().Write("/etc/hosts", hosts + "10.9.9.9\tonly-local\n");
    EXPECT_EQ(Resolve("only-local"), 1);
    EXPECT_NE(Host().Read("/etc/hosts").find("only-local"), std::string::npos);
    // No name server answers: nothing resolves by DNS.
    Host().Set("ping-reachable", "192.168.10.1");
    EXPECT_EQ(Resolve("lanyx-lab01.lab.example.test"), 1);
}

TEST_F(Workers, LeftOverBackupOrBrokenHostsFileFailTheStep) {
    const std::string hosts = Host().Read("/etc/hosts");
    Host().Write("/etc/hosts.backup", "stale\n");
    EXPECT_EQ(Resolve("lanyx-lab01.lab.example.test"), 1);
    EXPECT_EQ(Host().Read("/etc/hosts"), hosts);
    EXPECT_EQ(Host().Read("/etc/hosts.backup"), "stale\n");
    EXPECT_FALSE(
        Host().Matching(LanyxTest::Record::Syslog, "failed to backup /etc/hosts: ").empty());
    Host().Remove("/etc/hosts.backup");

    // The hosts library fails on this thread: the step fails and the file still comes back.
    Host().LibFault("HostsFile::RemoveEntryByHostName", "hosts file locked");
    EXPECT_EQ(Resolve("lanyx-lab01.lab.example.test"), 1);
    EXPECT_EQ(Host().Read("/etc/hosts"), hosts);
    EXPECT_FALSE(std::filesystem::exists(Host().File("/etc/hosts.backup")));
}

} // namespace
} // namespace Lanyx
