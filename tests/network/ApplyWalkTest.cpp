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

struct WalkCase {
    const char* name;
    const char* profile;
    std::function<void(P)> edit;
    Strings faults; // library operations that fail during the walk
    Strings info;   // the walk's info lines, in order
    Strings shown;  // failure messages the operator saw
    // The host afterwards: values at JSON pointers into its state; "calls" is the library calls.
    std::vector<std::pair<std::string, json>> after;
    bool throws = false;
};

class ApplyWalk : public LanyxTest::HostTest {};

TEST_F(ApplyWalk, StagesInOrderWithTheirConditionsAndFailures) {
    const WalkCase cases[] = {
        {"only the suffixes: everything rewritten, the gateway left",
         "default",
         [](P p) { p.suffixes = "a.test, b.test c.test,,"; },
         {},
         Walk({kV6}, "hwport0 hwport1", "a.test, b.test c.test,,"),
         {},
         {{"/network/dns/searchDomains", {"lab.example.test", "a.test", "b.test", "c.test"}},
          {"calls", json::array({"DnsConfigImpl::SaveConfig"})}}},
        {"new address, same gateway: the gateway is written too",
         "default",
         [](P p) { StaticAddress(p, "192.168.10.30", "192.168.10.1"); },
         {},
         Walk({"Setting ipv4 configuration to 192.168.10.30 255.255.255.0 on tnic0", kV6,
               "Setting default gateway to 192.168.10.1"}),
         {},
         {{kTnic + "/ipv4/address", "192.168.10.30"}}},
        {"same address, new gateway",
         "default",
         [](P p) { StaticAddress(p, "192.168.10.21", "192.168.10.254"); },
         {},
         Walk({kV6, "Setting default gateway to 192.168.10.254"}),
         {},
         {{"/network/gateway", "192.168.10.254"}}},
        {"static to DHCP: no renewal, no gateway, the lease taken",
         "default",
         [](P p) { p.configuredIpConfig.SetUseDhcp(true); },
         {},
         Walk({"Switching to DHCP on tnic0", kV6}),
         {},
         {{kTnic + "/ipv4/mode", "dhcp"},
          {kTnic + "/ipv4/address", "192.168.10.57"},
          {kTnic + "/ipv4/dhcpServer", "192.168.10.254"}}},
        {"DHCP to static: the client stops and DHCP DNS goes",
         "dhcp",
         [](P p) {
             p.configuredIpConfig.SetUseDhcp(false);
             StaticAddress(p, "192.168.10.40", "192.168.10.1");
         },
         {},
         Walk({"Setting ipv4 configuration to 192.168.10.40 255.255.255.0 on tnic0", kV6,
               "Setting default gateway to 192.168.10.1"}),
         {},
         {{kTnic + "/ipv4/mode", "static"},
          {kTnic + "/ipv4/dhcpServer", "0.0.0.0"},
          {"/network/dns/dhcp", false}}},
        {"DHCP host, adapter swapped: removal first, renewal, new MAC",
         "dhcp",
         [](P p) {
             p.adapters = {"hwport2", "hwport0"};
         },
         {},
         {"Setting adapters to hwport2 hwport0", kV6, "Renew DHCP lease on tnic0",
          "Setting suffixes to lab.example.test"},
         {},
         {{"/switches/0/uplinks", {"hwport0", "hwport2"}},
          {kTnic + "/mac", "b0:26:28:4e:00:a2"},
          {kTnic + "/ipv4/renewals", 1}}},
        {"same adapters in another order: only the MAC moves",
         "default",
         [](P p) {
             p.adapters = {"hwport1", "hwport0"};
         },
         {"TesselNicImpl::RenewDhcp"},
         Walk({kV6}, "hwport1 hwport0"),
         {},
         {{kTnic + "/mac", "3c:fd:fe:a1:00:11"}}},
        {"VLAN changed: the interface restarts after the addresses",
         "default",
         [](P p) { p.vlanId = 4095; },
         {},
         Walk({kV6, "Changed vlan, restarting management interface"}),
         {},
         {{"/portGroups/0/vlan", 4095},
          {"calls",
           {"TesselNicImpl::Disable", "TesselNicImpl::Enable", "DnsConfigImpl::SaveConfig"}}}},
        {"VLAN restart fails: enabled again, the walk ends",
         "default",
         [](P p) { p.vlanId = 7; },
         {"TesselNicImpl::Disable"},
         {"Setting adapters to hwport0 hwport1", kV6,
          "Changed vlan, restarting management interface"},
         {},
         {{"calls", json::array({"TesselNicImpl::Enable"})}, {kTnic + "/enabled", true}},
         true},
        {"fabric: adapters and VLAN left alone",
         "fabric",
         [](P p) {
             p.adapters = {"hwport0"};
             p.vlanId = 30;
         },
         {},
         {kV6, "Setting hostname to lanyx-lab01",
          "Setting nameservers to 192.168.10.2 192.168.10.3",
          "Setting suffixes to lab.example.test"},
         {},
         {{"/fabrics/0/ports/0/vlan", 10}}},
        {"IPv6 turned off: no IPv6 stage, the reboot comes after DNS",
         "default",
         [](P p) { p.ipv6Enabled = false; },
         {},
         Walk({}),
         {},
         {{"/network/ipv6Enabled", false}}},
        {"dotted host name, unspecified primary dropped",
         "default",
         [](P p) {
             p.hostname = "node7.corp.test";
             p.primaryDns = std::make_unique<KN::Ipv4Address>("0.0.0.0");
             p.alternateDns = std::make_unique<KN::Ipv6Address>("2001:db8::53");
             p.suffixes = "";
         },
         {},
         {"Setting adapters to hwport0 hwport1", kV6, "Setting hostname to node7.corp.test",
          "Setting nameservers to 0.0.0.0 2001:db8::53", "Setting suffixes to "},
         {},
         {{"/host/hostname", "node7"},
          {"/host/domain", "corp.test"},
          {"/network/dns/servers", json::array({"2001:db8::53"})},
          {"/network/dns/searchDomains", json::array({"corp.test"})}}},
        // Each guarded stage failing in turn: named in the message, the walk goes on.
        {"MAC address fails",
         "default",
         [](P p) {
             p.adapters = {"hwport1", "hwport0"};
         },
         {"TesselNicImpl::SetMacAddressFromPnic"},
         Walk({kV6}, "hwport1 hwport0"),
         {"Setting mac address of hwport failed: Resource busy"},
         {{kTnic + "/mac", "00:50:56:6a:10:01"}}},
        {"IPv4 decision fails: no address change, so no gateway",
         "default",
         [](P p) { StaticAddress(p, "192.168.10.30", "192.168.10.1"); },
         {"TesselNicImpl::GetIpConfig"},
         Walk({kV6}),
         {"Setting ip configuration failed: Resource busy"},
         {}},
        {"IPv6 stage fails",
         "default",
         nullptr,
         {"NetworkInfoImpl::SetTesselIpv6Enabled"},
         Walk({}),
         {"Setting ipv6 configuration failed: Resource busy"},
         {}},
        {"writing the configuration fails, the gateway still goes",
         "default",
         [](P p) { StaticAddress(p, "192.168.10.30", "192.168.10.9"); },
         {"TesselNicImpl::SetIpConfig"},
         Walk({"Setting ipv4 configuration to 192.168.10.30 255.255.255.0 on tnic0", kV6,
               "Setting default gateway to 192.168.10.9"}),
         {"Setting ip/ipv6 configuration failed: Resource busy"},
         {{kTnic + "/ipv4/address", "192.168.10.21"}, {"/network/gateway", "192.168.10.9"}}},
        {"IPv4 gateway fails with the full text",
         "default",
         [](P p) { StaticAddress(p, "192.168.10.21", "192.168.10.9"); },
         {"RoutingInfoImpl::SetTesselDefaultGateway"},
         Walk({kV6, "Setting default gateway to 192.168.10.9"}),
         {std::string("Setting default gateway failed: ") + kFault},
         {}},
        {"IPv6 gateway fails",
         "default",
         [](P p) {
             p.ipConfig.SetIpv6Gateway(KN::Ipv6Address("2001:db8::1"));
             p.ipv6GatewayChanged = true;
         },
         {"RoutingInfoImpl::SetIpv6TesselDefaultGateway"},
         Walk({kV6, "Setting default ipv6 gateway to 2001:db8::1"}),
         {"Setting default ipv6 gateway failed: Resource busy"},
         {}},
        {"DNS fails: nothing saved",
         "default",
         nullptr,
         {"DnsConfigImpl::RemoveNameServers"},
         {"Setting adapters to hwport0 hwport1", kV6, "Setting hostname to lanyx-lab01",
          "Setting nameservers to 192.168.10.2 192.168.10.3"},
         {"Setting DNS failed: Resource busy"},
         {{"calls", json::array()}}},
    };

    // One host per profile, its state put back before each case: a fresh root for each costs a
    // second or more.
    std::vector<const WalkCase*> order;
    for (const WalkCase& c : cases)
        order.push_back(&c);
    std::ranges::stable_sort(order, {},
                             [](const WalkCase* c) { return std::string_view(c->profile); });
    std::string_view profile;
    json initial;
    for (const WalkCase* walk : order) {
        const WalkCase& c = *walk;
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
        for (const std::string& operation : c.faults)
            host.LibFault(operation, kFault);
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
        EXPECT_EQ(screen.shown, c.shown);
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
