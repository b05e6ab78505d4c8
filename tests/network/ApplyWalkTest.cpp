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
    void AddressWritten() override { ++addressWrites; }
    void RebootHost() override { ++reboots; }
    Strings shown;
    int addressWrites = 0;
    int reboots = 0;
};

const json& Tnic(const json& state) {
    return state["network"]["interfaces"][0];
}

Strings Calls(const json& state) {
    Strings calls;
    for (const json& record : state.value("libRecords", json::array()))
        calls.push_back(record["operation"].get<std::string>());
    return calls;
}

// A failure text in the library's own form: the summary is what stands between "=" and ";".
constexpr const char* kFault = "TesselCtl error=Resource busy; errno 16";

void StaticAddress(PendingConfiguration& p, const char* address, const char* gateway) {
    p.ipConfig.SetIpv4Address(KN::Ipv4Address(address));
    p.ipConfig.SetIpv4Gateway(KN::Ipv4Address(gateway));
}

struct WalkCase {
    const char* name;
    const char* profile;
    std::function<void(PendingConfiguration&)> edit;
    Strings faults; // library operations that fail during the walk
    Strings info;   // the walk's info lines, in order
    Strings shown;  // failure messages the operator saw
    std::function<void(const json&)> check;
    bool throws = false;
};

const Strings kAdapters = {"Setting adapters to hwport0 hwport1"};
const Strings kDnsLines = {"Setting hostname to lanyx-lab01",
                           "Setting nameservers to 192.168.10.2 192.168.10.3"};

Strings Lines(std::initializer_list<Strings> parts) {
    Strings all;
    for (const Strings& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

class ApplyWalk : public LanyxTest::HostTest {};

TEST_F(ApplyWalk, StagesInOrderWithTheirConditionsAndFailures) {
    const WalkCase cases[] = {
        {"only the suffixes: everything rewritten, the gateway left",
         "default",
         [](PendingConfiguration& p) { p.suffixes = "a.test, b.test c.test,,"; },
         {},
         Lines({kAdapters,
                {"Setting ipv6 configuration"},
                kDnsLines,
                {"Setting suffixes to a.test, b.test c.test,,"}}),
         {},
         [](const json& s) {
             EXPECT_EQ(s["network"]["dns"]["searchDomains"],
                       json({"lab.example.test", "a.test", "b.test", "c.test"}));
             EXPECT_EQ(Calls(s), Strings{"DnsConfigImpl::SaveConfig"});
         }},
        {"new address, same gateway: the gateway is written too",
         "default",
         [](PendingConfiguration& p) { StaticAddress(p, "192.168.10.30", "192.168.10.1"); },
         {},
         Lines({kAdapters,
                {"Setting ipv4 configuration to 192.168.10.30 255.255.255.0 on tnic0",
                 "Setting ipv6 configuration", "Setting default gateway to 192.168.10.1"},
                kDnsLines,
                {"Setting suffixes to lab.example.test"}}),
         {},
         [](const json& s) { EXPECT_EQ(Tnic(s)["ipv4"]["address"], "192.168.10.30"); }},
        {"same address, new gateway",
         "default",
         [](PendingConfiguration& p) { StaticAddress(p, "192.168.10.21", "192.168.10.254"); },
         {},
         Lines({kAdapters,
                {"Setting ipv6 configuration", "Setting default gateway to 192.168.10.254"},
                kDnsLines,
                {"Setting suffixes to lab.example.test"}}),
         {},
         [](const json& s) { EXPECT_EQ(s["network"]["gateway"], "192.168.10.254"); }},
        {"static to DHCP: no renewal, no gateway, the lease taken",
         "default",
         [](PendingConfiguration& p) { p.configuredIpConfig.SetUseDhcp(true); },
         {},
         Lines({kAdapters,
                {"Switching to DHCP on tnic0", "Setting ipv6 configuration"},
                kDnsLines,
                {"Setting suffixes to lab.example.test"}}),
         {},
         [](const json& s) {
             EXPECT_EQ(Tnic(s)["ipv4"]["mode"], "dhcp");
             EXPECT_EQ(Tnic(s)["ipv4"]["address"], "192.168.10.57");
             EXPECT_EQ(Tnic(s)["ipv4"]["dhcpServer"], "192.168.10.254");
         }},
        {"DHCP to static: the client stops and DHCP DNS goes",
         "dhcp",
         [](PendingConfiguration& p) {
             p.configuredIpConfig.SetUseDhcp(false);
             StaticAddress(p, "192.168.10.40", "192.168.10.1");
         },
         {},
         Lines({kAdapters,
                {"Setting ipv4 configuration to 192.168.10.40 255.255.255.0 on tnic0",
                 "Setting ipv6 configuration", "Setting default gateway to 192.168.10.1"},
                kDnsLines,
                {"Setting suffixes to lab.example.test"}}),
         {},
         [](const json& s) {
             EXPECT_EQ(Tnic(s)["ipv4"]["mode"], "static");
             EXPECT_EQ(Tnic(s)["ipv4"]["dhcpServer"], "0.0.0.0");
             EXPECT_EQ(s["network"]["dns"]["dhcp"], false);
         }},
        {"DHCP host, adapter swapped: removal first, renewal, new MAC",
         "dhcp",
         [](PendingConfiguration& p) {
             p.adapters = {"hwport2", "hwport0"};
         },
         {},
         {"Setting adapters to hwport2 hwport0", "Setting ipv6 configuration",
          "Renew DHCP lease on tnic0", "Setting suffixes to lab.example.test"},
         {},
         [](const json& s) {
             EXPECT_EQ(s["switches"][0]["uplinks"], json({"hwport0", "hwport2"}));
             EXPECT_EQ(Tnic(s)["mac"], "b0:26:28:4e:00:a2");
             EXPECT_EQ(Tnic(s)["ipv4"]["renewals"], 1);
         }},
        {"same adapters in another order: only the MAC moves",
         "default",
         [](PendingConfiguration& p) {
             p.adapters = {"hwport1", "hwport0"};
         },
         {"TesselNicImpl::RenewDhcp"},
         Lines({{"Setting adapters to hwport1 hwport0", "Setting ipv6 configuration"},
                kDnsLines,
                {"Setting suffixes to lab.example.test"}}),
         {},
         [](const json& s) { EXPECT_EQ(Tnic(s)["mac"], "3c:fd:fe:a1:00:11"); }},
        {"VLAN changed: the interface restarts after the addresses",
         "default",
         [](PendingConfiguration& p) { p.vlanId = 4095; },
         {},
         Lines({kAdapters,
                {"Setting ipv6 configuration", "Changed vlan, restarting management interface"},
                kDnsLines,
                {"Setting suffixes to lab.example.test"}}),
         {},
         [](const json& s) {
             EXPECT_EQ(s["portGroups"][0]["vlan"], 4095);
             EXPECT_EQ(Calls(s), (Strings{"TesselNicImpl::Disable", "TesselNicImpl::Enable",
                                          "DnsConfigImpl::SaveConfig"}));
         }},
        {"VLAN restart fails: enabled again, the walk ends",
         "default",
         [](PendingConfiguration& p) { p.vlanId = 7; },
         {"TesselNicImpl::Disable"},
         Lines({kAdapters,
                {"Setting ipv6 configuration", "Changed vlan, restarting management interface"}}),
         {},
         [](const json& s) {
             EXPECT_EQ(Calls(s), Strings{"TesselNicImpl::Enable"});
             EXPECT_EQ(Tnic(s)["enabled"], true);
         },
         true},
        {"fabric: adapters and VLAN left alone",
         "fabric",
         [](PendingConfiguration& p) {
             p.adapters = {"hwport0"};
             p.vlanId = 30;
         },
         {},
         Lines(
             {{"Setting ipv6 configuration"}, kDnsLines, {"Setting suffixes to lab.example.test"}}),
         {},
         [](const json& s) { EXPECT_EQ(s["fabrics"][0]["ports"][0]["vlan"], 10); }},
        {"IPv6 turned off: no IPv6 stage, the reboot comes after DNS",
         "default",
         [](PendingConfiguration& p) { p.ipv6Enabled = false; },
         {},
         Lines({kAdapters, kDnsLines, {"Setting suffixes to lab.example.test"}}),
         {},
         [](const json& s) { EXPECT_EQ(s["network"]["ipv6Enabled"], false); }},
        {"dotted host name, unspecified primary dropped",
         "default",
         [](PendingConfiguration& p) {
             p.hostname = "node7.corp.test";
             p.primaryDns = std::make_unique<KN::Ipv4Address>("0.0.0.0");
             p.alternateDns = std::make_unique<KN::Ipv6Address>("2001:db8::53");
             p.suffixes = "";
         },
         {},
         Lines({kAdapters,
                {"Setting ipv6 configuration", "Setting hostname to node7.corp.test",
                 "Setting nameservers to 0.0.0.0 2001:db8::53", "Setting suffixes to "}}),
         {},
         [](const json& s) {
             EXPECT_EQ(s["host"]["hostname"], "node7");
             EXPECT_EQ(s["host"]["domain"], "corp.test");
             EXPECT_EQ(s["network"]["dns"]["servers"], json({"2001:db8::53"}));
             EXPECT_EQ(s["network"]["dns"]["searchDomains"], json({"corp.test"}));
         }},
        // Each guarded stage failing in turn: named in the message, the walk goes on.
        {"MAC address fails",
         "default",
         [](PendingConfiguration& p) {
             p.adapters = {"hwport1", "hwport0"};
         },
         {"TesselNicImpl::SetMacAddressFromPnic"},
         Lines({{"Setting adapters to hwport1 hwport0", "Setting ipv6 configuration"},
                kDnsLines,
                {"Setting suffixes to lab.example.test"}}),
         {"Setting mac address of hwport failed: Resource busy"},
         [](const json& s) { EXPECT_EQ(Tnic(s)["mac"], "00:50:56:6a:10:01"); }},
        {"IPv4 decision fails: no address change, so no gateway",
         "default",
         [](PendingConfiguration& p) { StaticAddress(p, "192.168.10.30", "192.168.10.1"); },
         {"TesselNicImpl::GetIpConfig"},
         Lines({kAdapters,
                {"Setting ipv6 configuration"},
                kDnsLines,
                {"Setting suffixes to lab.example.test"}}),
         {"Setting ip configuration failed: Resource busy"},
         nullptr},
        {"IPv6 stage fails",
         "default",
         nullptr,
         {"NetworkInfoImpl::SetTesselIpv6Enabled"},
         Lines({kAdapters, kDnsLines, {"Setting suffixes to lab.example.test"}}),
         {"Setting ipv6 configuration failed: Resource busy"},
         nullptr},
        {"writing the configuration fails, the gateway still goes",
         "default",
         [](PendingConfiguration& p) { StaticAddress(p, "192.168.10.30", "192.168.10.9"); },
         {"TesselNicImpl::SetIpConfig"},
         Lines({kAdapters,
                {"Setting ipv4 configuration to 192.168.10.30 255.255.255.0 on tnic0",
                 "Setting ipv6 configuration", "Setting default gateway to 192.168.10.9"},
                kDnsLines,
                {"Setting suffixes to lab.example.test"}}),
         {"Setting ip/ipv6 configuration failed: Resource busy"},
         [](const json& s) {
             EXPECT_EQ(Tnic(s)["ipv4"]["address"], "192.168.10.21");
             EXPECT_EQ(s["network"]["gateway"], "192.168.10.9");
         }},
        {"IPv4 gateway fails with the full text",
         "default",
         [](PendingConfiguration& p) { StaticAddress(p, "192.168.10.21", "192.168.10.9"); },
         {"RoutingInfoImpl::SetTesselDefaultGateway"},
         Lines({kAdapters,
                {"Setting ipv6 configuration", "Setting default gateway to 192.168.10.9"},
                kDnsLines,
                {"Setting suffixes to lab.example.test"}}),
         {std::string("Setting default gateway failed: ") + kFault},
         nullptr},
        {"IPv6 gateway fails",
         "default",
         [](PendingConfiguration& p) {
             p.ipConfig.SetIpv6Gateway(KN::Ipv6Address("2001:db8::1"));
             p.ipv6GatewayChanged = true;
         },
         {"RoutingInfoImpl::SetIpv6TesselDefaultGateway"},
         Lines({kAdapters,
                {"Setting ipv6 configuration", "Setting default ipv6 gateway to 2001:db8::1"},
                kDnsLines,
                {"Setting suffixes to lab.example.test"}}),
         {"Setting default ipv6 gateway failed: Resource busy"},
         nullptr},
        {"DNS fails: nothing saved",
         "default",
         nullptr,
         {"DnsConfigImpl::RemoveNameServers"},
         Lines({kAdapters, {"Setting ipv6 configuration"}, kDnsLines}),
         {"Setting DNS failed: Resource busy"},
         [](const json& s) { EXPECT_EQ(Calls(s), Strings{}); }},
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
        if (c.check)
            c.check(host.State());
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
