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

// Names are unique, every reference points at something that exists, and a NIC has one holder.
TEST(HostsimCommand, LargeProfileIsAConsistentHostOf256NicsAnd1000PortGroups) {
    HostRoot root("large");
    const nlohmann::json state = root.State();
    std::set<std::string> nics;
    std::set<std::string> macs;
    int withoutLink = 0;
    for (const auto& nic : state["pnics"]) {
        nics.insert(nic["name"].get<std::string>());
        macs.insert(nic["mac"].get<std::string>());
        withoutLink += nic["link"] ? 0 : 1;
        EXPECT_EQ(nic["speedMbps"] == 0, !nic["link"]) << nic;
    }
    EXPECT_EQ(state["pnics"].size(), 256u);
    EXPECT_EQ(nics.size(), 256u);
    EXPECT_EQ(macs.size(), 256u);
    EXPECT_GT(withoutLink, 0);

    std::map<std::string, std::string> holder;           // NIC -> switch or fabric
    std::map<std::string, std::set<std::string>> listed; // switch -> its port groups
    const auto hold = [&](const std::string& nic, const std::string& by) {
        EXPECT_TRUE(nics.count(nic)) << nic;
        EXPECT_TRUE(holder.emplace(nic, by).second)
            << nic << " on " << by << " and " << holder[nic];
    };
    for (const auto& sw : state["switches"]) {
        const std::string name = sw["name"];
        for (const auto& uplink : sw["uplinks"])
            hold(uplink.get<std::string>(), name);
        for (const auto& group : sw["portGroups"])
            EXPECT_TRUE(listed[name].insert(group.get<std::string>()).second) << group;
    }
    for (const auto& fabric : state["fabrics"])
        for (const auto& uplink : fabric["uplinks"].items())
            hold(uplink.key(), fabric["name"].get<std::string>());
    EXPECT_GT(state["switches"].size(), 2u);
    EXPECT_EQ(holder.at("hwport0"), "switch0");
    EXPECT_LT(holder.size(), nics.size()); // some NICs are free

    std::set<std::string> groups;
    for (const auto& group : state["portGroups"]) {
        const std::string name = group["name"];
        const std::string sw = group["switch"];
        EXPECT_TRUE(groups.insert(name).second) << name;
        EXPECT_TRUE(listed[sw].count(name)) << name;
        for (const auto& uplink : group["teaming"]["uplinkOrder"])
            EXPECT_EQ(holder[uplink.get<std::string>()], sw) << name << " teams over " << uplink;
    }
    EXPECT_EQ(groups.size(), 1000u);
    size_t listedCount = 0;
    for (const auto& [sw, names] : listed)
        listedCount += names.size();
    EXPECT_EQ(listedCount, 1000u);
    EXPECT_EQ(state["network"]["interfaces"][0]["connection"]["portGroup"], "Management Network");
}

TEST(HostsimCommand, DefaultRootHasTheRealCertificateAndIsNotReplacedUnasked) {
    HostRoot root("");
    ASSERT_TRUE(root.Hostsim("create", {"--force"}).Succeeded());
    // The root's shell sees the root's commands first.
    EXPECT_NE(root.Read("/bin/sh").find("PATH=" + root.Path() + "/bin:" + root.Path() + "/sbin:"),
              std::string::npos);
    const std::string check = "openssl x509 -in " + root.File("/etc/zephora/ssl/node.crt") +
                              " -noout -fingerprint -SHA1 >/dev/null 2>&1";
    EXPECT_EQ(std::system(check.c_str()), 0);
    const auto again = root.Hostsim("create");
    EXPECT_FALSE(again.Succeeded());
    EXPECT_NE(again.output.find("already"), std::string::npos);
}

TEST(HostsimCommand, SetAndFaultChangeTheStateAndRefuseUnknownNames) {
    HostRoot root;
    root.Set("lanyx-timeout", "300");
    root.Fault({"lib", "SmartCardInfoImpl::GetToken", "reader gone"});
    root.Fault({"tool", "helmq", "exit", "255"});
    root.Fault({"tool", "helmq", "output", "true"});
    auto state = root.State();
    EXPECT_EQ(state["advancedOptions"]["/UserVars/LanyxTimeOut"]["value"], 300);
    EXPECT_EQ(state["faults"]["tool"]["helmq"],
              (nlohmann::json{{"exit", 255}, {"output", "true"}}));

    const std::string before = root.Read("/var/lib/hostsim/state.json");
    const std::string bin = LanyxTest::HostsimBinary();
    for (const auto& bad : std::vector<std::vector<std::string>>{
             {bin, "set", root.Path(), "no-such-setting", "1"},
             {bin, "set", root.Path(), "lockdown-enabled", "maybe"},
             {bin, "fault", root.Path(), "lib", "NoSuch::Operation", "x"},
             {bin, "fault", root.Path(), "tool", "helmq", "exit", "256"},
             {bin, "fault", root.Path(), "tool", "helmq", "output", "\xff"},
             {bin, "fault", root.Path(), "trace"},
             {bin, "fault", root.Path(), "trace", "yes"},
             {bin, "fault", root.Path(), "trace", "on", "off"},
             {bin, "set", root.Path() + "/missing", "hostname", "x"}}) {
        const auto result = LanyxTest::RunProcess(bad);
        EXPECT_EQ(result.exit.Code(), 2) << LanyxTest::JoinCommand(bad) << ": " << result.output;
        EXPECT_FALSE(result.output.empty());
    }
    EXPECT_EQ(root.Read("/var/lib/hostsim/state.json"), before);

    root.Set("lanyx-timeout", "none");
    root.Fault({"clear", "helmq"});
    state = root.State();
    EXPECT_FALSE(state["advancedOptions"].contains("/UserVars/LanyxTimeOut"));
    EXPECT_FALSE(state["faults"]["tool"].contains("helmq"));
    EXPECT_TRUE(state["faults"]["lib"].contains("SmartCardInfoImpl::GetToken"));

    // The reset script's factory copy is the configuration as made.
    EXPECT_EQ(state["factory"]["host"], state["host"]);
    EXPECT_EQ(state["factory"]["accounts"][0]["hash"], "");
}

TEST(HostsimCommand, AbsentToolLeavesTheRootUntilItsFaultIsCleared) {
    HostRoot root;
    const std::string script = root.Read("/sbin/ostraq");
    ASSERT_FALSE(script.empty());
    // Every path of the tool goes; other tools stay.
    for (const auto& clear :
         std::vector<std::vector<std::string>>{{"clear", "ostraq"}, {"clear"}}) {
        root.Fault({"tool", "ostraq", "absent"});
        EXPECT_FALSE(Exists(root, "/sbin/ostraq"));
        EXPECT_FALSE(Exists(root, "/bin/ostraq"));
        EXPECT_TRUE(Exists(root, "/sbin/benchq"));
        EXPECT_EQ(root.State()["faults"]["tool"]["ostraq"], (nlohmann::json{{"absent", true}}));
        root.Fault(clear);
        EXPECT_EQ(root.Read("/sbin/ostraq"), script);
        EXPECT_TRUE(Exists(root, "/bin/ostraq"));
    }
}

TEST(HostsimCommand, TraceListsToolRunsAndOutlivesAClear) {
    HostRoot root;
    const auto helmq = [&] {
        return LanyxTest::RunProcess(
            {root.File("/bin/helmq"), "-U", "lanyx", "helmsvc/auth/lockdown_is_enabled"});
    };
    EXPECT_TRUE(helmq().Succeeded());
    root.Fault({"trace", "on"});
    root.Fault({"tool", "helmq", "exit", "3"});
    EXPECT_EQ(helmq().exit.Code(), 3);
    root.Fault({"clear"});
    EXPECT_TRUE(root.State()["faults"]["trace"]);
    EXPECT_TRUE(helmq().Succeeded());
    root.Fault({"trace", "off"});
    EXPECT_TRUE(helmq().Succeeded());
    const std::string run = "tool helmq -U lanyx helmsvc/auth/lockdown_is_enabled\n";
    EXPECT_EQ(root.Read("/var/lib/hostsim/calls.log"), run + run) << "the faulted run counts";
}
