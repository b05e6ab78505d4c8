// The apply walk against simulated hosts: the record is read as the menu reads it, edited as the
// dialogs would leave it, then written; the log, what the operator was shown and the host after.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string_view>

#include "HostRoot.hpp"
#include "network/ApplyWalk.hpp"
#include "restore/switches/Switches.hpp"

namespace Lanyx {
namespace {

namespace KN = Keelson::Network;
using nlohmann::json;
using Strings = std::vector<std::string>;

class RecordingScreen : public ApplyWalkScreen {
public:
    void ShowFailure(const std::string& message) override { shown.push_back(message); }
    void AddressWritten() override {}
    void RebootHost() override { ++reboots; }
    Strings shown;
    int reboots = 0;
};

Strings Calls(const json& state) {
    Strings calls;
    for (const json& record : state.value("libRecords", json::array()))
        calls.push_back(record["operation"].get<std::string>());
    return calls;
}

// A failure text in the library's own form: the summary is what stands between "=" and ";".
constexpr const char* kFault = "TesselCtl error=Resource busy; errno 16";
const std::string kV6 = "Setting ipv6 configuration";
const std::string kTnic = "/network/interfaces/0";

using P = PendingConfiguration&;

void StaticAddress(P p, const char* address, const char* gateway) {
    p.ipConfig.SetIpv4Address(KN::Ipv4Address(address));
    p.ipConfig.SetIpv4Gateway(KN::Ipv4Address(gateway));
}

// The info lines of a walk on the default host's adapters: `middle` between the adapters and the
// host name, then the name servers and the suffixes.
Strings Walk(const Strings& middle, const std::string& adapters = "hwport0 hwport1",
             const std::string& suffixes = "lab.example.test") {
    Strings all = {"Setting adapters to " + adapters};
    all.insert(all.end(), middle.begin(), middle.end());
    all.insert(all.end(), {"Setting hostname to lanyx-lab01",
                           "Setting nameservers to 192.168.10.2 192.168.10.3",
                           "Setting suffixes to " + suffixes});
    return all;
}

// One walk: how the pending record is edited, what fails on the way, and what is expected.
struct WalkCase {
    std::string name;
    std::function<void(P)> edit;
    std::string profile = "default";
    std::string fault{}; // a library operation that fails during the walk
    std::string shown{}; // the failure message the operator then sees, if any
    bool throws = false;
    Strings info{}; // the walk's info lines, in order
    // The host afterwards: values at JSON pointers into its state; "calls" is the library calls.
    std::vector<std::pair<std::string, json>> after{};

    WalkCase& On(const std::string& p) { return profile = p, *this; }
    WalkCase& Failing(const std::string& operation, const std::string& message = "") {
        fault = operation;
        shown = message;
        return *this;
    }
    WalkCase& Throws() { return throws = true, *this; }
    WalkCase& Logs(Strings lines) { return info = std::move(lines), *this; }
    WalkCase& Then(const std::string& pointer, json value) {
        after.emplace_back(pointer, std::move(value));
        return *this;
    }
};

class ApplyWalk : public LanyxTest::HostTest {};

TEST_F(ApplyWalk, StagesInOrderWithTheirConditionsAndFailures) {
    std::vector<WalkCase> cases;
    const auto walk = [&](const char* name, std::function<void(P)> edit = nullptr) -> WalkCase& {
        return cases.emplace_back(WalkCase{name, std::move(edit)});
    };
    walk("only the suffixes: everything rewritten, the gateway left",
         [](P p) { p.suffixes = "a.test, b.test c.test,,"; })
        .Logs(Walk({kV6}, "hwport0 hwport1", "a.test, b.test c.test,,"))
        .Then("/network/dns/searchDomains", {"lab.example.test", "a.test", "b.test", "c.test"})
        .Then("calls", json::array({"DnsConfigImpl::SaveConfig"}));
    walk("new address, same gateway: the gateway is written too",
         [](P p) { StaticAddress(p, "192.168.10.30", "192.168.10.1"); })
        .Logs(Walk({"Setting ipv4 configuration to 192.168.10.30 255.255.255.0 on tnic0", kV6,
                    "Setting default gateway to 192.168.10.1"}))
        .Then(kTnic + "/ipv4/address", "192.168.10.30");
    walk("same address, new gateway",
         [](P p) { StaticAddress(p, "192.168.10.21", "192.168.10.254"); })
        .Logs(Walk({kV6, "Setting default gateway to 192.168.10.254"}))
        .Then("/network/gateway", "192.168.10.254");
    walk("static to DHCP: no renewal, no gateway, the lease taken",
         [](P p) { p.configuredIpConfig.SetUseDhcp(true); })
        .Logs(Walk({"Switching to DHCP on tnic0", kV6}))
        .Then(kTnic + "/ipv4/mode", "dhcp")
        .Then(kTnic + "/ipv4/address", "192.168.10.57")
        .Then(kTnic + "/ipv4/dhcpServer", "192.168.10.254");
    walk("DHCP to static: the client stops and DHCP DNS goes",
         [](P p) {
             p.configuredIpConfig.SetUseDhcp(false);
             StaticAddress(p, "192.168.10.40", "192.168.10.1");
         })
        .On("dhcp")
        .Logs(Walk({"Setting ipv4 configuration to 192.168.10.40 255.255.255.0 on tnic0", kV6,
                    "Setting default gateway to 192.168.10.1"}))
        .Then(kTnic + "/ipv4/mode", "static")
        .Then(kTnic + "/ipv4/dhcpServer", "0.0.0.0")
        .Then("/network/dns/dhcp", false);
    walk("DHCP host, adapter swapped: removal first, renewal, new MAC",
         [](P p) {
             p.adapters = {"hwport2", "hwport0"};
         })
        .On("dhcp")
        .Logs({"Setting adapters to hwport2 hwport0", kV6, "Renew DHCP lease on tnic0",
               "Setting suffixes to lab.example.test"})
        .Then("/switches/0/uplinks", {"hwport0", "hwport2"})
        .Then(kTnic + "/mac", "b0:26:28:4e:00:a2")
        .Then(kTnic + "/ipv4/renewals", 1);
    walk("same adapters in another order: only the MAC moves",
         [](P p) {
             p.adapters = {"hwport1", "hwport0"};
         })
        .Failing("TesselNicImpl::RenewDhcp")
        .Logs(Walk({kV6}, "hwport1 hwport0"))
        .Then(kTnic + "/mac", "3c:fd:fe:a1:00:11");
    walk("VLAN changed: the interface restarts after the addresses", [](P p) { p.vlanId = 4095; })
        .Logs(Walk({kV6, "Changed vlan, restarting management interface"}))
        .Then("/portGroups/0/vlan", 4095)
        .Then("calls",
              {"TesselNicImpl::Disable", "TesselNicImpl::Enable", "DnsConfigImpl::SaveConfig"});
    walk("VLAN restart fails: enabled again, the walk ends", [](P p) { p.vlanId = 7; })
        .Failing("TesselNicImpl::Disable")
        .Throws()
        .Logs({"Setting adapters to hwport0 hwport1", kV6,
               "Changed vlan, restarting management interface"})
        .Then("calls", json::array({"TesselNicImpl::Enable"}))
        .Then(kTnic + "/enabled", true);
    walk("fabric: adapters and VLAN left alone",
         [](P p) {
             p.adapters = {"hwport0"};
             p.vlanId = 30;
         })
        .On("fabric")
        .Logs({kV6, "Setting hostname to lanyx-lab01",
               "Setting nameservers to 192.168.10.2 192.168.10.3",
               "Setting suffixes to lab.example.test"})
        .Then("/fabrics/0/ports/0/vlan", 10);
    walk("IPv6 turned off: no IPv6 stage, the reboot comes after DNS",
         [](P p) { p.ipv6Enabled = false; })
        .Logs(Walk({}))
        .Then("/network/ipv6Enabled", false);
    walk("dotted host name, unspecified primary dropped",
         [](P p) {
             p.hostname = "node7.corp.test";
             p.primaryDns = std::make_unique<KN::Ipv4Address>("0.0.0.0");
             p.alternateDns = std::make_unique<KN::Ipv6Address>("2001:db8::53");
             p.suffixes = "";
         })
        .Logs({"Setting adapters to hwport0 hwport1", kV6, "Setting hostname to node7.corp.test",
               "Setting nameservers to 0.0.0.0 2001:db8::53", "Setting suffixes to "})
        .Then("/host/hostname", "node7")
        .Then("/host/domain", "corp.test")
        .Then("/network/dns/servers", json::array({"2001:db8::53"}))
        .Then("/network/dns/searchDomains", json::array({"corp.test"}));
    // Each guarded stage failing in turn: named in the message, the walk goes on.
    walk("MAC address fails",
         [](P p) {
             p.adapters = {"hwport1", "hwport0"};
         })
        .Failing("TesselNicImpl::SetMacAddressFromPnic",
                 "Setting mac address of hwport failed: Resource busy")
        .Logs(Walk({kV6}, "hwport1 hwport0"))
        .Then(kTnic + "/mac", "00:50:56:6a:10:01");
    walk("IPv4 decision fails: no address change, so no gateway",
         [](P p) { StaticAddress(p, "192.168.10.30", "192.168.10.1"); })
        .Failing("TesselNicImpl::GetIpConfig", "Setting ip configuration failed: Resource busy")
        .Logs(Walk({kV6}));
    walk("IPv6 stage fails")
        .Failing("NetworkInfoImpl::SetTesselIpv6Enabled",
                 "Setting ipv6 configuration failed: Resource busy")
        .Logs(Walk({}));
    walk("writing the configuration fails, the gateway still goes",
         [](P p) { StaticAddress(p, "192.168.10.30", "192.168.10.9"); })
        .Failing("TesselNicImpl::SetIpConfig",
                 "Setting ip/ipv6 configuration failed: Resource busy")
        .Logs(Walk({"Setting ipv4 configuration to 192.168.10.30 255.255.255.0 on tnic0", kV6,
                    "Setting default gateway to 192.168.10.9"}))
        .Then(kTnic + "/ipv4/address", "192.168.10.21")
        .Then("/network/gateway", "192.168.10.9");
    walk("IPv4 gateway fails with the full text",
         [](P p) { StaticAddress(p, "192.168.10.21", "192.168.10.9"); })
        .Failing("RoutingInfoImpl::SetTesselDefaultGateway",
                 std::string("Setting default gateway failed: ") + kFault)
        .Logs(Walk({kV6, "Setting default gateway to 192.168.10.9"}));
    walk("IPv6 gateway fails",
         [](P p) {
             p.ipConfig.SetIpv6Gateway(KN::Ipv6Address("2001:db8::1"));
             p.ipv6GatewayChanged = true;
         })
        .Failing("RoutingInfoImpl::SetIpv6TesselDefaultGateway",
                 "Setting default ipv6 gateway failed: Resource busy")
        .Logs(Walk({kV6, "Setting default ipv6 gateway to 2001:db8::1"}));
    walk("DNS fails: nothing saved")
        .Failing("DnsConfigImpl::RemoveNameServers", "Setting DNS failed: Resource busy")
        .Logs({"Setting adapters to hwport0 hwport1", kV6, "Setting hostname to lanyx-lab01",
               "Setting nameservers to 192.168.10.2 192.168.10.3"})
        .Then("calls", json::array());

    // One host per profile, its state put back before each case: a fresh root for each costs a
    // second or more.
    std::ranges::stable_sort(cases, {}, &WalkCase::profile);
    std::string profile;
    json initial;
    for (const WalkCase& c : cases) {
        SCOPED_TRACE(c.name);
        if (c.profile != profile) {
            profile = c.profile;
            initial = Create(c.profile).State();
        }
        LanyxTest::HostRoot& host = Host();
        host.Edit([&](json& state) { state = initial; });
        std::unique_ptr<KN::NetworkInterface> nic = FindManagementInterface();
        ASSERT_TRUE(nic);
        TesselCtl::Network::DnsConfigImpl dns("defaultTcpipStack");
        TesselCtl::Network::RoutingInfoImpl routing("defaultTcpipStack");
        PendingConfiguration pending;
        pending.ipv6Enabled = pending.ipv6EnabledAtOpen =
            TesselCtl::Network::NetworkInfoImpl().IsTesselIpv6Enabled();
        ReadAddresses(*nic, pending);
        ASSERT_EQ(ReadPendingConfiguration(*nic, routing, dns, pending), ReadResult::Read);
        if (c.edit)
            c.edit(pending);
        if (!c.fault.empty())
            host.LibFault(c.fault, kFault);
        host.Mark();

        RecordingScreen screen;
        if (c.throws)
            EXPECT_THROW(ApplyPendingConfiguration(*nic, pending, dns, routing, screen),
                         Keelson::Lib::KeelsonException);
        else
            ApplyPendingConfiguration(*nic, pending, dns, routing, screen);
        Strings info = host.Messages("user.info");
        std::erase_if(info, [](const std::string& line) { return line.rfind("helmq", 0) == 0; });
        EXPECT_EQ(info, c.info);
        EXPECT_EQ(screen.shown, c.shown.empty() ? Strings{} : Strings{c.shown});
        EXPECT_EQ(screen.reboots, pending.RebootNeeded() && !c.throws ? 1 : 0);
        const json state = host.State();
        for (const auto& [pointer, value] : c.after)
            EXPECT_EQ(pointer == "calls" ? json(Calls(state))
                                         : state.at(json::json_pointer(pointer)),
                      value)
                << pointer;
    }
}

TEST(ExceptionSummaryTest, TakesTheMiddleOfTheLibraryText) {
    const std::pair<const char*, const char*> rows[] = {
        {"a=b;c", "b"}, {"no marks", "no marks"}, {"x=y", "y"}, {"head; tail", "head"},
        {"p;q=r", "r"}, {"a=b;c;d", "b;c"},       {"=;", ""},
    };
    for (const auto& [text, summary] : rows)
        EXPECT_EQ(ExceptionSummary(Keelson::Lib::KeelsonException(text)), summary) << text;
}

} // namespace
} // namespace Lanyx
