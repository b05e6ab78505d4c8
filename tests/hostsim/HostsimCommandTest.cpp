// The hostsim program, run as a child on temporary folders.
#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "HostRoot.hpp"

using LanyxTest::HostRoot;

namespace {

std::vector<std::string> ProfileNames() {
    std::vector<std::string> names;
    std::istringstream listing(
        LanyxTest::RunProcess({LanyxTest::HostsimBinary(), "profiles"}).output);
    for (std::string row; std::getline(listing, row);)
        names.push_back(row.substr(0, row.find(' ')));
    return names;
}

bool Exists(const HostRoot& root, const std::string& hostPath) {
    return std::filesystem::exists(root.File(hostPath));
}

} // namespace

TEST(HostsimCommand, EveryProfileGivesACompleteRoot) {
    auto names = ProfileNames();
    for (const char* required : {"default", "dhcp", "fabric", "large", "no-login"})
        EXPECT_NE(std::find(names.begin(), names.end(), required), names.end()) << required;
    for (const std::string& profile : names) {
        SCOPED_TRACE(profile);
        const HostRoot root(profile);
        const nlohmann::json state = root.State();
        EXPECT_EQ(state["profile"], profile);
        EXPECT_TRUE(state["accounts"].is_array());
        for (const char* path :
             {"/bin/sh", "/bin/helmq", "/sbin/ostraq", "/etc/init.d/SSH", "/etc/zephora/support",
              "/etc/zephora/ssl/node.crt", "/var/log/syslog.log", "/bin/openssl", "/bin/less"})
            EXPECT_TRUE(Exists(root, path)) << path;
        EXPECT_EQ(Exists(root, "/var/run/zephora/show-lanyx-login"), profile != "no-login");
        EXPECT_NE(root.Read("/etc/pam.d/lanyx").find("pam_hostsim.so root=" + root.Path()),
                  std::string::npos);
    }
}

// The restore and adapter tests on this host rely on it being whole: one holder per NIC, and every
// port group on the switch that lists it and teamed over that switch's uplinks.
TEST(HostsimCommand, LargeProfileIsAConsistentHostOf256NicsAnd1000PortGroups) {
    const nlohmann::json state = HostRoot("large").State();
    EXPECT_EQ(state["pnics"].size(), 256u);
    std::map<std::string, std::string> holder; // NIC -> switch or fabric
    std::set<std::string> listed;              // "switch/port group"
    for (const auto& sw : state["switches"]) {
        for (const auto& uplink : sw["uplinks"])
            EXPECT_TRUE(holder.emplace(uplink, sw["name"]).second) << uplink;
        for (const auto& group : sw["portGroups"])
            listed.insert(sw["name"].get<std::string>() + "/" + group.get<std::string>());
    }
    for (const auto& fabric : state["fabrics"])
        for (const auto& uplink : fabric["uplinks"].items())
            EXPECT_TRUE(holder.emplace(uplink.key(), fabric["name"]).second) << uplink.key();
    std::set<std::string> groups;
    for (const auto& group : state["portGroups"]) {
        const std::string name = group["name"], sw = group["switch"];
        EXPECT_TRUE(groups.insert(name).second) << name;
        EXPECT_TRUE(listed.count(sw + "/" + name)) << name;
        for (const auto& uplink : group["teaming"]["uplinkOrder"])
            EXPECT_EQ(holder[uplink.get<std::string>()], sw) << name << " teams over " << uplink;
    }
    EXPECT_EQ(groups.size(), 1000u);
    EXPECT_EQ(listed.size(), 1000u);
}

// What settings and faults do is seen through every test that sets them; here, that a wrong one
// is refused, leaving the state as it was, so that no test runs on a host it did not describe.
TEST(HostsimCommand, SetAndFaultRefuseUnknownNamesAndValues) {
    HostRoot root;
    const std::string before = root.Read("/var/lib/hostsim/state.json");
    const std::string bin = LanyxTest::HostsimBinary();
    for (const auto& bad : std::vector<std::vector<std::string>>{
             {bin, "set", root.Path(), "no-such-setting", "1"},
             {bin, "set", root.Path(), "lockdown-enabled", "maybe"},
             {bin, "fault", root.Path(), "lib", "NoSuch::Operation", "x"},
             {bin, "fault", root.Path(), "tool", "helmq", "exit", "256"},
             {bin, "fault", root.Path(), "trace", "yes"},
             {bin, "set", root.Path() + "/missing", "hostname", "x"}}) {
        const auto result = LanyxTest::RunProcess(bad);
        EXPECT_EQ(result.exit.Code(), 2) << LanyxTest::JoinCommand(bad) << ": " << result.output;
        EXPECT_FALSE(result.output.empty());
    }
    EXPECT_EQ(root.Read("/var/lib/hostsim/state.json"), before);

    // The reset script's factory copy is the configuration as made.
    const nlohmann::json state = root.State();
    EXPECT_EQ(state["factory"]["host"], state["host"]);
    EXPECT_EQ(state["factory"]["accounts"][0]["hash"], "");
}
