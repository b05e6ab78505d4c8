#include <gtest/gtest.h>

#include <fstream>

#include "keelson/Dns.hpp"
#include "keelson/Network.hpp"
#include "keelson/Routing.hpp"
#include "SimulatedHost.hpp"

namespace Lanyx {
namespace {

using nlohmann::json;
using Strings = std::vector<std::string>;
namespace KN = Keelson::Network;
namespace TN = TesselCtl::Network;

TEST(NetworkValues, Ipv4TextAndValidity)
{
    EXPECT_TRUE(KN::Ipv4Address::IsValidAddress("192.168.10.1"));
    for (const char* bad : {"", "192.168.10", "192.168.10.256", "1.2.3.4 ", "a.b.c.d", "::1"})
        EXPECT_FALSE(KN::Ipv4Address::IsValidAddress(bad)) << bad;
    EXPECT_EQ(KN::Ipv4Address("10.0.0.7").GetBinaryAddress(), 0x0a000007u);
    EXPECT_EQ(KN::Ipv4Address().GetStringAddress(), "0.0.0.0");
    EXPECT_THROW(KN::Ipv4Address("300.1.1.1"), Keelson::Lib::KeelsonException);
    EXPECT_TRUE(KN::Ipv4Address("255.255.255.0").IsValidNetmask());
    EXPECT_FALSE(KN::Ipv4Address("255.0.255.0").IsValidNetmask());
    EXPECT_FALSE(KN::Ipv4Address("0.0.0.0").IsValidNetmask());
}

TEST(NetworkValues, Ipv6ScopesAndNetworks)
{
    const KN::Ipv6Address scoped("fe80::1%tnic0");
    EXPECT_EQ(scoped.GetStringAddress(), "fe80::1");
    EXPECT_EQ(scoped.GetScopedStringAddress(), "fe80::1%tnic0");
    EXPECT_TRUE(scoped.IsLinkLocal());
    EXPECT_FALSE(KN::Ipv6Address("fec0::1").IsLinkLocal());
    EXPECT_EQ(KN::Ipv6Address().GetScopedStringAddress(), "::");
    EXPECT_FALSE(KN::Ipv6Address::IsValidAddress("fe80::1%"));
    EXPECT_FALSE(KN::Ipv6Address::IsValidAddress("10.0.0.1"));

    EXPECT_TRUE(KN::Ipv6Network::IsValidAddressAndNetmask("2001:db8::21/64"));
    for (const char* bad : {"2001:db8::21", "2001:db8::21/129", "2001:db8::21/", "/64", "2001:db8::21/6x"})
        EXPECT_FALSE(KN::Ipv6Network::IsValidAddressAndNetmask(bad)) << bad;
    const KN::Ipv6Network network("2001:DB8:0::21/64");
    EXPECT_EQ(network.GetStringAddress(), "2001:db8::21/64") << "the text a dialog field takes back";
    EXPECT_EQ(network.GetIpv6Scope(), 3);
    EXPECT_EQ(KN::Ipv6Network("fe80::5/64").GetIpv6Scope(), 1);

    KN::IpConfig config;
    config.AddIpv6Network(network);
    config.AddIpv6Network(KN::Ipv6Network("2001:db8::21/64"));
    EXPECT_EQ(config.GetIpv6Network().size(), 1u);
    config.RemoveIpv6Network(KN::Ipv6Network("2001:db8::21/64"));
    EXPECT_TRUE(config.GetIpv6Network().empty());
}

TEST(NetworkValues, DhcpAndNoneModesExcludeEachOther)
{
    KN::IpConfig config;
    config.SetIpv4UseNone();
    EXPECT_TRUE(config.GetIpv4UseNone());
    config.SetUseDhcp(true);
    EXPECT_FALSE(config.GetIpv4UseNone());
    config.SetUseDhcp(false, true);
    EXPECT_TRUE(config.GetIpv4UseNone());
    EXPECT_FALSE(config.GetUseDhcp());
    config.SetUseDhcp(false);
    EXPECT_FALSE(config.GetIpv4UseNone());
    EXPECT_EQ(KN::MacAddress("3C:FD:FE:A1:00:10").GetStringAddress(), "3c:fd:fe:a1:00:10");
    EXPECT_THROW(KN::MacAddress("3c:fd:fe:a1:00"), Keelson::Lib::KeelsonException);
}

class NetworkLibrary : public Testing::SimulatedHost {};

TEST_F(NetworkLibrary, InterfaceCachesUntilStale)
{
    Create("dhcp");
    TN::TesselNicImpl nic("tnic0");
    EXPECT_TRUE(nic.IsStale());
    EXPECT_EQ(nic.GetIpConfig().GetIpv4Address().GetStringAddress(), "192.168.10.57");
    EXPECT_FALSE(nic.IsStale());
    EXPECT_TRUE(nic.GetConfiguredIpConfig().GetUseDhcp());
    EXPECT_EQ(nic.GetConfiguredIpConfig().GetIpv4Address().GetBinaryAddress(), 0u);
    EXPECT_EQ(nic.GetDhcpServer().GetStringAddress(), "192.168.10.254");

    Edit([](json& state) { state["network"]["interfaces"][0]["ipv4"]["address"] = "192.168.10.99"; });
    EXPECT_EQ(nic.GetIpConfig().GetIpv4Address().GetStringAddress(), "192.168.10.57") << "cached";
    nic.SetStale(true);
    EXPECT_EQ(nic.GetIpConfig().GetIpv4Address().GetStringAddress(), "192.168.10.99");
}

TEST_F(NetworkLibrary, SetIpConfigWritesModesAndAddresses)
{
    Create();
    TN::TesselNicImpl nic("tnic0");
    KN::IpConfig config = nic.GetIpConfig();
    config.SetIpv4Address(KN::Ipv4Address("10.1.2.3"));
    config.SetIpv4Netmask(KN::Ipv4Address("255.255.0.0"));
    KN::Ipv6Network added("2001:db8:1::5/64");
    added.SetIpv6AddressType(0);
    config.AddIpv6Network(added);
    config.SetUseIpv6RouterAdvertised(true);
    nic.SetIpConfig(config);
    EXPECT_TRUE(nic.IsStale()) << "a change marks the object stale";
    EXPECT_EQ(nic.GetIpConfig().GetIpv4Address().GetStringAddress(), "10.1.2.3");

    json nicState = State()["network"]["interfaces"][0];
    EXPECT_EQ(nicState["ipv4"]["mode"], "static");
    EXPECT_EQ(nicState["ipv4"]["configuredNetmask"], "255.255.0.0");
    EXPECT_EQ(nicState["ipv6"]["autoconf"], true);
    EXPECT_EQ(nicState["ipv6"]["addresses"][1]["address"], "2001:db8:1::5");
    EXPECT_EQ(nicState["ipv6"]["addresses"][1]["type"], "static");
    EXPECT_EQ(nicState["ipv6"]["addresses"][0]["type"], "linklocal");

    config.SetUseDhcp(false, true);
    nic.SetIpConfig(config);
    nicState = State()["network"]["interfaces"][0];
    EXPECT_EQ(nicState["ipv4"]["mode"], "none");
    EXPECT_EQ(nicState["ipv4"]["address"], "0.0.0.0");
    EXPECT_TRUE(nic.GetConfiguredIpConfig().GetIpv4UseNone());
}

TEST_F(NetworkLibrary, ConnectMovesTheInterfaceAndItsClientCount)
{
    Create("fabric");
    TN::TesselNicImpl nic("tnic0");
    std::unique_ptr<KN::ConnectionPoint> point(nic.GetConnectionPoint());
    auto* port = dynamic_cast<KN::FabricPort*>(point.get());
    ASSERT_NE(port, nullptr);
    EXPECT_EQ(port->GetFabricPortId(), "12");
    EXPECT_EQ(port->GetVlanPolicy().vlanId, 10);

    std::unique_ptr<KN::VirtualSwitch> sw(TN::VirtualSwitchInfoImpl().AddVirtualSwitch("xbar0", KN::Portset::DEF_NUM_PORTS));
    std::unique_ptr<KN::PortGroup> group(sw->AddPortGroup("Management Network1"));
    EXPECT_TRUE(TN::PortsetImpl::IsValidVirtualSwitch("xbar0"));
    EXPECT_TRUE(TN::PortsetImpl::IsValidVirtualSwitch("fab-prod"));
    EXPECT_TRUE(TN::PortGroupImpl::IsValidPortGroup("Management Network1"));
    EXPECT_THROW(TN::VirtualSwitchInfoImpl().AddVirtualSwitch("fab-prod", 8), Keelson::Lib::KeelsonException);

    nic.ConnectTo(*group, false);
    point.reset(nic.GetConnectionPoint());
    EXPECT_EQ(point->GetConnecteeType(), KN::CONNECTEE_PORTGROUP);
    EXPECT_EQ(point->GetPortsetName(), "xbar0");
    EXPECT_EQ(group->GetActiveClients(), 1u);
}

TEST_F(NetworkLibrary, FabricPortCreationCloneAndDestroy)
{
    Create("fabric");
    std::unique_ptr<KN::FabricSwitch> fabric(TN::VirtualSwitchInfoImpl().GetFabricSwitches().at(0).release());
    EXPECT_TRUE(fabric->IsZephoraFabric());
    EXPECT_EQ(fabric->GetUplinkPorts().at("hwport3").portId, "101");
    std::unique_ptr<KN::FabricPort> old(fabric->GetFabricPort("12"));
    ASSERT_TRUE(old);
    EXPECT_FALSE(fabric->GetFabricPort("999"));
    std::unique_ptr<KN::FabricPort> uplink(fabric->GetFabricPort(fabric->GetUplinkPorts().at("hwport2").portId));
    ASSERT_TRUE(uplink) << "the uplinks' own ports exist";
    EXPECT_EQ(uplink->GetName(), "uplink1");

    const KN::FabricPortParam param{old->GetFabricId(), "hlp-12#42", 1};
    std::unique_ptr<KN::FabricPort> port(TN::FabricPortImpl::CreateFabricPort(param, "hlp-12#42"));
    KN::FabricPortTeamPolicy team;
    team.policy = 3;
    team.activeUplinks = {"hwport3"};
    port->SetTeamingPolicy(team);
    port->SetVendorData(16, std::map<std::string, std::string>{{"k", "v"}});
    EXPECT_EQ(port->GetTeamingPolicy().activeUplinks, Strings{"hwport3"});
    EXPECT_EQ(port->GetVendorData(16).at("k"), "v");
    EXPECT_TRUE(port->GetOverlayParams().empty()) << "a property never set reads as empty";
    EXPECT_THROW(TN::FabricPortImpl::CreateFabricPort(param, "hlp-12#42"), Keelson::Lib::KeelsonException);

    port->Destroy();
    EXPECT_EQ(State()["fabrics"][0]["ports"].size(), 4u);
}

TEST_F(NetworkLibrary, DnsChangesAreLiveAndSavedApart)
{
    Create();
    TN::DnsConfigImpl dns("defaultTcpipStack");
    EXPECT_EQ(dns.GetNameServers().size(), 2u);
    EXPECT_TRUE(dns.GetIpv6NameServers(false).empty());
    dns.RemoveNameServers();
    dns.AddUserNameServer(KN::Ipv6Address("2001:db8::53"));
    dns.AddUserNameServer(KN::Ipv4Address("10.0.0.53"));
    dns.SetFqdn("host7.corp.test", false, Keelson::emptyString);
    dns.SetSearchDomainsString(dns.GetDomain());
    dns.AddUserSearchDomain("a.test");
    EXPECT_EQ(State()["network"]["dns"]["saved"], false);
    dns.SaveConfig();

    const json state = State();
    EXPECT_EQ(state["host"]["hostname"], "host7");
    EXPECT_EQ(state["host"]["domain"], "corp.test");
    EXPECT_EQ(state["network"]["dns"]["searchDomains"].get<Strings>(), (Strings{"corp.test", "a.test"}));
    EXPECT_EQ(state["network"]["dns"]["saved"], true);
    EXPECT_EQ(dns.GetNameServers().at(0).GetStringAddress(), "10.0.0.53");
    EXPECT_EQ(dns.GetIpv6NameServers(false).at(0).GetStringAddress(), "2001:db8::53");
    EXPECT_THROW(dns.SetHostname("", false), Keelson::Lib::KeelsonException);
}

TEST_F(NetworkLibrary, RoutesAndHostsFile)
{
    Create();
    TN::RoutingInfoImpl routing("defaultTcpipStack");
    EXPECT_EQ(routing.GetTesselDefaultGateway().GetStringAddress(), "192.168.10.1");
    routing.SetTesselDefaultGateway(KN::Ipv4Address(), false);
    EXPECT_EQ(State()["network"]["gateway"], "");
    routing.SetIpv6TesselDefaultGateway(KN::Ipv6Address("fe80::1%tnic0"));
    EXPECT_EQ(routing.GetIpv6TesselDefaultGateway().GetScopedStringAddress(), "fe80::1%tnic0");

    {
        std::ofstream hosts(root + "/etc/hosts");
        hosts << "127.0.0.1\tlocalhost\n192.168.10.21\tlanyx-lab01.lab.example.test lanyx-lab01\n10.0.0.9 only\n";
    }
    TN::HostsFile().RemoveEntryByHostName("only");
    TN::HostsFile().RemoveEntryByHostName("lanyx-lab01");
    std::ifstream in(root + "/etc/hosts");
    std::stringstream text;
    text << in.rdbuf();
    EXPECT_EQ(text.str(), "127.0.0.1\tlocalhost\n192.168.10.21\tlanyx-lab01.lab.example.test\n");
}

TEST_F(NetworkLibrary, FaultsByOperationName)
{
    Create();
    Fault("TesselNicImpl::Disable", "link stuck");
    TN::TesselNicImpl nic("tnic0");
    try {
        nic.Disable();
        FAIL() << "no exception";
    } catch (const Keelson::Lib::KeelsonException& e) {
        EXPECT_STREQ(e.what(), "link stuck");
    }
    EXPECT_EQ(State()["network"]["interfaces"][0]["enabled"], true) << "nothing written";
    nic.Enable();
}

} // namespace
} // namespace Lanyx
