#include <gtest/gtest.h>

#include "restore/switches/Switches.hpp"
#include "SimulatedHost.hpp"

namespace Lanyx {
namespace {

using nlohmann::json;
using Strings = std::vector<std::string>;

class Switches : public Testing::SimulatedHost {
protected:
    std::unique_ptr<Keelson::Network::NetworkInterface> Management()
    {
        auto nic = FindManagementInterface();
        EXPECT_TRUE(nic);
        return nic;
    }
    static json& Group(json& state, const std::string& name)
    {
        for (json& group : state["portGroups"])
            if (group["name"] == name) return group;
        throw std::runtime_error("no port group " + name);
    }
    json ManagementTeaming() const
    {
        json state = State();
        return Group(state, "Management Network")["teaming"];
    }
    Strings SwitchUplinks(size_t index = 0) const { return State()["switches"][index]["uplinks"].get<Strings>(); }
    void Connect(const json& connection) const
    {
        Edit([&](json& state) { state["network"]["interfaces"][0]["connection"] = connection; });
    }
};

TEST_F(Switches, ManagementInterfaceIsTheHostsChoice)
{
    Create();
    auto nic = Management();
    ASSERT_TRUE(nic);
    EXPECT_EQ(nic->GetInterfaceName(), "tnic0");

    Edit([](json& state) { state["network"]["managementInterface"] = ""; });
    EXPECT_FALSE(FindManagementInterface());

    Fault("NetworkInfoImpl::UpdateManagementInterface", "no stack");
    EXPECT_THROW(FindManagementInterface(), Keelson::Lib::KeelsonException) << "exceptions pass to the caller";
}

TEST_F(Switches, FabricInUseFollowsTheConnectee)
{
    Create();
    EXPECT_FALSE(IsFabricInUse());
    EXPECT_TRUE(Errors().empty());

    Create("fabric");
    EXPECT_TRUE(IsFabricInUse());
    EXPECT_TRUE(Errors().empty());
}

TEST_F(Switches, FabricInUseWithoutInterfaceOrWithFaultIsFalseAndLogged)
{
    Create();
    Edit([](json& state) { state["network"]["managementInterface"] = ""; });
    EXPECT_FALSE(IsFabricInUse());
    EXPECT_EQ(Errors(), Strings{"Could not locate the management interface"});

    Edit([](json& state) { state["network"]["managementInterface"] = "tnic0"; });
    Fault("TesselNicImpl::GetConnectionPoint", "point lost");
    EXPECT_FALSE(IsFabricInUse());
    EXPECT_EQ(Errors().back(), "Could not determine if a FABRIC was in use: point lost");
}

TEST_F(Switches, SwitchNameOfEachConnecteeType)
{
    Create("fabric");
    auto nic = Management();
    std::string name = "untouched";
    EXPECT_TRUE(GetSwitchName(nic.get(), name));
    EXPECT_EQ(name, "fab-prod");

    Connect({{"type", "portgroup"}, {"portGroup", "VM Network"}});
    EXPECT_TRUE(GetSwitchName(nic.get(), name));
    EXPECT_EQ(name, "switch0");

    Connect({{"type", "none"}});
    EXPECT_FALSE(GetSwitchName(nic.get(), name));
    Connect({{"type", "opaque"}});
    EXPECT_FALSE(GetSwitchName(nic.get(), name));
    EXPECT_EQ(Errors(), (Strings{"Getting switch name failed: Unsupported connectee type",
                                 "Getting switch name failed: Opaque network connectee type not supported"}));
    EXPECT_EQ(name, "switch0");
}

TEST_F(Switches, VlanOfTheManagementPortGroup)
{
    Create();
    auto nic = Management();
    uint16_t vlan = 99;
    ASSERT_TRUE(GetVlanId(nic.get(), vlan));
    EXPECT_EQ(vlan, 0);

    ASSERT_TRUE(SetVlanId(nic.get(), 42));
    json state = State();
    EXPECT_EQ(Group(state, "Management Network")["vlan"], 42);
    EXPECT_EQ(Group(state, "VM Network")["vlan"], 0);
    ASSERT_TRUE(GetVlanId(nic.get(), vlan));
    EXPECT_EQ(vlan, 42);

    Fault("PortGroup::SetVlanId", "port group busy");
    EXPECT_FALSE(SetVlanId(nic.get(), 7));
    EXPECT_EQ(Errors(), Strings{"Setting VlanID failed: port group busy"});
}

TEST_F(Switches, FabricGivesItsNameAndRefusesTheRest)
{
    Create("fabric");
    auto nic = Management();
    std::string name;
    EXPECT_TRUE(GetSwitchName(nic.get(), name));
    uint16_t vlan = 5;
    uint32_t count = 5;
    Strings uplinks{"kept"};
    EXPECT_FALSE(GetVlanId(nic.get(), vlan));
    EXPECT_FALSE(SetVlanId(nic.get(), 12));
    EXPECT_FALSE(GetMaxActiveUplinks(nic.get(), count));
    EXPECT_FALSE(GetUplinks(nic.get(), uplinks));
    EXPECT_FALSE(RemoveUplink(nic.get(), "hwport2"));
    EXPECT_EQ(Errors(), (Strings{"Getting VlanID failed: Unsupported xbar type",
                                 "Setting VlanID failed: Unsupported xbar type",
                                 "Getting max number of active uplinks failed: Unsupported xbar type",
                                 "Getting uplinks failed: Unsupported xbar type",
                                 "Removing uplink hwport2 failed: Unsupported xbar type"}));
    EXPECT_EQ(vlan, 5);
    EXPECT_EQ(uplinks, Strings{"kept"});
    EXPECT_EQ(State()["fabrics"][0]["ports"][0]["vlan"], 10) << "the fabric port is left alone";
}

TEST_F(Switches, UplinksAndCountComeFromThePortGroupsPolicy)
{
    Create();
    auto nic = Management();
    Edit([](json& state) { Group(state, "Management Network")["teaming"]["uplinkOrder"] = {"hwport1", "hwport0"}; });
    Strings uplinks;
    uint32_t count = 0;
    ASSERT_TRUE(GetUplinks(nic.get(), uplinks));
    EXPECT_EQ(uplinks, (Strings{"hwport1", "hwport0"}));
    ASSERT_TRUE(GetMaxActiveUplinks(nic.get(), count));
    EXPECT_EQ(count, 1u);
}

TEST_F(Switches, AddUplinkAppendsToSwitchAndTeam)
{
    Create();
    auto nic = Management();
    ASSERT_TRUE(AddUplink(nic.get(), "hwport2"));
    EXPECT_EQ(SwitchUplinks(), (Strings{"hwport0", "hwport1", "hwport2"}));
    const json teaming = ManagementTeaming();
    EXPECT_EQ(teaming["uplinkOrder"].get<Strings>(), (Strings{"hwport0", "hwport1", "hwport2"}));
    EXPECT_EQ(teaming["maxActiveUplinks"], 2);
    EXPECT_EQ(teaming["linkCriteria"]["checkSpeed"], "minimum") << "other fields travel unchanged";
    EXPECT_TRUE(Errors().empty());
}

TEST_F(Switches, AddUplinkDetachesFromOneSwitchOfEachKind)
{
    Create();
    Edit([](json& state) {
        state["switches"].push_back({{"name", "switch1"}, {"uplinks", {"hwport2"}}, {"portGroups", json::array()},
                                     {"teaming", {{"flags", 16}, {"uplinkOrder", {"hwport2"}}}}});
        state["fabrics"].push_back({{"name", "fab-b"}, {"id", "fb"}, {"uplinks", {{"hwport3", {{"portId", "7"}}}}}});
    });
    auto nic = Management();
    ASSERT_TRUE(AddUplink(nic.get(), "hwport2"));
    ASSERT_TRUE(AddUplink(nic.get(), "hwport3"));
    const json state = State();
    EXPECT_TRUE(state["switches"][1]["uplinks"].empty());
    EXPECT_TRUE(state["fabrics"][0]["uplinks"].empty());
    EXPECT_EQ(SwitchUplinks(), (Strings{"hwport0", "hwport1", "hwport2", "hwport3"}));
    EXPECT_EQ(ManagementTeaming()["maxActiveUplinks"], 3);
    EXPECT_TRUE(Errors().empty()) << "failed detach attempts are no failure";
}

TEST_F(Switches, AddUplinkOnFabricDetachesThenRefuses)
{
    Create("fabric");
    auto nic = Management();
    EXPECT_FALSE(AddUplink(nic.get(), "hwport2"));
    EXPECT_EQ(Errors(), Strings{"Adding uplink hwport2 failed: Unsupported xbar type"});
    EXPECT_FALSE(State()["fabrics"][0]["uplinks"].contains("hwport2")) << "the detach is not rolled back";
}

TEST_F(Switches, AddUplinkWithOrderFlagClearStartsFromEmptyList)
{
    Create();
    Edit([](json& state) { Group(state, "Management Network")["teaming"]["flags"] = 0; });
    auto nic = Management();
    ASSERT_TRUE(AddUplink(nic.get(), "hwport2"));
    const json teaming = ManagementTeaming();
    EXPECT_EQ(teaming["uplinkOrder"].get<Strings>(), Strings{"hwport2"});
    EXPECT_EQ(teaming["maxActiveUplinks"], 1);
}

TEST_F(Switches, AddUplinkAlreadyInOrderStillRaisesTheCount)
{
    Create();
    Edit([](json& state) { Group(state, "Management Network")["teaming"]["uplinkOrder"].push_back("hwport2"); });
    auto nic = Management();
    ASSERT_TRUE(AddUplink(nic.get(), "hwport2"));
    const json teaming = ManagementTeaming();
    EXPECT_EQ(teaming["uplinkOrder"].get<Strings>(), (Strings{"hwport0", "hwport1", "hwport2"}));
    EXPECT_EQ(teaming["maxActiveUplinks"], 2);
}

TEST_F(Switches, AddUplinkFailuresNameTheirStep)
{
    Create();
    auto nic = Management();
    Fault("PortGroup::SetTeamingPolicy", "policy locked");
    EXPECT_FALSE(AddUplink(nic.get(), "hwport2"));
    EXPECT_EQ(SwitchUplinks(), (Strings{"hwport0", "hwport1", "hwport2"})) << "no roll-back of the switch step";

    Fault("VirtualSwitch::AddUplink", "switch full");
    EXPECT_FALSE(AddUplink(nic.get(), "hwport3"));
    EXPECT_EQ(Errors(), (Strings{"VS: add uplink to teaming policy failed: policy locked",
                                 "Adding uplink hwport3 failed: switch full"}));
}

TEST_F(Switches, RemoveUplinkTakesItOffSwitchAndTeam)
{
    Create();
    auto nic = Management();
    ASSERT_TRUE(RemoveUplink(nic.get(), "hwport1"));
    EXPECT_EQ(SwitchUplinks(), Strings{"hwport0"});
    const json teaming = ManagementTeaming();
    EXPECT_EQ(teaming["uplinkOrder"].get<Strings>(), Strings{"hwport0"});
    EXPECT_EQ(teaming["maxActiveUplinks"], 0);

    EXPECT_FALSE(RemoveUplink(nic.get(), "hwport3"));
    ASSERT_EQ(Errors().size(), 1u);
    EXPECT_EQ(Errors()[0].rfind("Removing uplink hwport3 failed: ", 0), 0u);
}

TEST_F(Switches, RemoveUplinkWithOrderFlagClearStillWritesThePolicy)
{
    Create();
    Edit([](json& state) { Group(state, "Management Network")["teaming"]["flags"] = 0; });
    Fault("PortGroup::SetTeamingPolicy", "written");
    auto nic = Management();
    EXPECT_FALSE(RemoveUplink(nic.get(), "hwport1")) << "the write-back is attempted";
    EXPECT_EQ(SwitchUplinks(), Strings{"hwport0"});
    EXPECT_EQ(Errors(), Strings{"VS: remove uplink from teaming policy failed: written"});
    EXPECT_EQ(ManagementTeaming()["uplinkOrder"].get<Strings>(), (Strings{"hwport0", "hwport1"}));
}

TEST_F(Switches, RemoveUplinkNotInOrderLeavesOrderAndCount)
{
    Create();
    Edit([](json& state) { Group(state, "Management Network")["teaming"]["uplinkOrder"] = {"hwport0"}; });
    auto nic = Management();
    ASSERT_TRUE(RemoveUplink(nic.get(), "hwport1"));
    const json teaming = ManagementTeaming();
    EXPECT_EQ(teaming["uplinkOrder"].get<Strings>(), Strings{"hwport0"});
    EXPECT_EQ(teaming["maxActiveUplinks"], 1);
}

TEST_F(Switches, SwitchTeamingAdditionChangesOnlyThePolicyInMemory)
{
    Keelson::Network::NicTeamingPolicy policy;
    policy.SetFlags(16);
    policy.SetUplinkOrder({"hwport0"});
    policy.SetMaxActiveUplinks(1);
    ASSERT_TRUE(AddUplinkToSwitchTeaming("hwport4", policy));
    EXPECT_EQ(policy.GetUplinkOrder(), (Strings{"hwport0", "hwport4"}));
    EXPECT_EQ(policy.GetMaxActiveUplinks(), 2);
}

TEST_F(Switches, StandardSwitchesInLibraryOrder)
{
    Create("fabric");
    Edit([](json& state) {
        state["switches"].push_back({{"name", "xbar0"}, {"uplinks", json::array()}, {"portGroups", {"b", "a"}},
                                     {"numPorts", 128}, {"usedPorts", 0}, {"configuredPorts", 64}});
    });
    std::vector<StandardSwitchInfo> switches;
    ASSERT_TRUE(GatherStandardSwitches(switches));
    ASSERT_EQ(switches.size(), 2u) << "fabrics are not listed";
    EXPECT_EQ(switches[0].name, "switch0");
    EXPECT_EQ(switches[0].uplinks, (Strings{"hwport0", "hwport1"}));
    EXPECT_EQ(switches[0].portGroups, Strings{"VM Network"});
    EXPECT_EQ(switches[0].numPorts, 2560u);
    EXPECT_EQ(switches[0].usedPorts, 6u);
    EXPECT_EQ(switches[0].configuredPorts, 128u);
    EXPECT_EQ(switches[1].name, "xbar0");
    EXPECT_EQ(switches[1].portGroups, (Strings{"b", "a"}));

    Fault("VirtualSwitchInfoImpl::GetVirtualSwitches", "no switches");
    EXPECT_FALSE(GatherStandardSwitches(switches));
    EXPECT_EQ(Errors(), Strings{"Gathering standard virtual switch list failed: no switches"});
}

TEST_F(Switches, PhysicalNicOrder)
{
    EXPECT_TRUE(PhysicalNicLess("hwport2", "hwport10"));
    EXPECT_FALSE(PhysicalNicLess("hwport10", "hwport2"));
    EXPECT_TRUE(PhysicalNicLess("eth9", "hwport1")) << "another form sorts by bytes";
    EXPECT_TRUE(PhysicalNicLess("hwport10", "hwportx"));
    EXPECT_TRUE(PhysicalNicLess("hwport", "hwport0")) << "the shorter first on equal prefixes";

    Create();
    Edit([](json& state) {
        for (const char* name : {"hwport10", "nic-b", "hwport9", "hwport11"}) {
            json nic = state["pnics"][0];
            nic["name"] = name;
            state["pnics"].push_back(nic);
        }
    });
    Strings names;
    ASSERT_TRUE(GatherPhysicalNics(names));
    EXPECT_EQ(names, (Strings{"hwport0", "hwport1", "hwport2", "hwport3", "hwport9", "hwport10", "hwport11", "nic-b"}));

    Fault("NetworkInfoImpl::GetPnics", "bus error");
    EXPECT_FALSE(GatherPhysicalNics(names));
    EXPECT_EQ(Errors(), Strings{"Getting physical nics failed: bus error"});
    EXPECT_EQ(names.size(), 8u) << "a failed gathering leaves the list";
}

TEST_F(Switches, UplinkUsersGiveEveryNameAnEntry)
{
    Create();
    UplinkUsers users{{"hwport3", "stale"}, {"other", "kept"}};
    ASSERT_TRUE(GatherUplinkUsers({"hwport0", "hwport1", "hwport2", "hwport3"}, users));
    EXPECT_EQ(users, (UplinkUsers{{"hwport0", "switch0"}, {"hwport1", "switch0"}, {"hwport2", ""},
                                  {"hwport3", ""}, {"other", "kept"}}));
}

TEST_F(Switches, UplinkUsersFabricWinsOverStandardSwitch)
{
    Create("fabric");
    Edit([](json& state) { state["switches"][0]["uplinks"].push_back("hwport2"); });
    UplinkUsers users;
    ASSERT_TRUE(GatherUplinkUsers({"hwport1", "hwport2", "hwport3"}, users));
    EXPECT_EQ(users["hwport1"], "switch0");
    EXPECT_EQ(users["hwport2"], "fab-prod");
    EXPECT_EQ(users["hwport3"], "fab-prod");
}

TEST_F(Switches, UplinkUsersStopAtTheFirstFailure)
{
    Create("fabric");
    Fault("VirtualSwitchInfoImpl::GetFabricSwitches", "fabric agent down");
    UplinkUsers users;
    EXPECT_FALSE(GatherUplinkUsers({"hwport0", "hwport2"}, users));
    EXPECT_EQ(users, (UplinkUsers{{"hwport0", "switch0"}, {"hwport2", ""}})) << "the first pass stays";

    Fault("VirtualSwitch::GetUplinks", "switch gone");
    EXPECT_FALSE(GatherUplinkUsers({"hwport0"}, users));
    EXPECT_EQ(Errors(), (Strings{"Scanning fabricswitches failed: fabric agent down",
                                 "Scanning virtual switches failed: switch gone"}));
}

TEST_F(Switches, AdapterInfoOfEachKindOfNic)
{
    Create();
    UplinkUsers users;
    ASSERT_TRUE(GatherUplinkUsers({"hwport0", "hwport2", "hwport3"}, users));

    const AdapterInfo first = GatherAdapterInfo("hwport0", users);
    EXPECT_EQ(first.name, "hwport0");
    EXPECT_EQ(first.hardwareLabel, "Tessellate Ethernet Controller X710 for 10GbE SFP+") << "blanks collapsed";
    EXPECT_EQ(first.macAddress, "3c:fd:fe:a1:00:10");
    EXPECT_EQ(first.status, "Connected");
    EXPECT_EQ(first.usedBy, "switch0");

    const AdapterInfo down = GatherAdapterInfo("hwport2", users);
    EXPECT_EQ(down.status, "Disconnected");
    EXPECT_EQ(down.usedBy, "");

    const AdapterInfo noDevice = GatherAdapterInfo("hwport3", users);
    EXPECT_EQ(noDevice.hardwareLabel, "N/A");
    EXPECT_EQ(noDevice.macAddress, "b0:26:28:4e:00:a3");
    EXPECT_EQ(noDevice.status, "Connected");

    Edit([](json& state) { state["pnics"][2]["pciLabel"] = "  \t "; });
    EXPECT_EQ(GatherAdapterInfo("hwport2", users).hardwareLabel, "N/A") << "an empty label";
}

TEST_F(Switches, AdapterInfoDropsLabelFailuresOnly)
{
    Create();
    const UplinkUsers users{{"hwport1", "switch0"}};
    Fault("PciDevice::GetName", "vpd unreadable");
    const AdapterInfo info = GatherAdapterInfo("hwport1", users);
    EXPECT_EQ(info.hardwareLabel, "N/A");
    EXPECT_EQ(info.macAddress, "3c:fd:fe:a1:00:11");

    Fault("PnicImpl::GetPciDevice", "no pci");
    EXPECT_THROW(GatherAdapterInfo("hwport1", users), Keelson::Lib::KeelsonException);
    EXPECT_TRUE(Errors().empty());
}

TEST(AdapterText, RowFitsItsColumns)
{
    AdapterInfo info{"hwport0", "Broadline 5720", "b0:26:28:4e:00:a2", "Connected", ""};
    EXPECT_EQ(FormatAdapterRow(info),
              "{align:padding:13}hwport0{/align}{align:padding:30}Broadline 5720 (...4e:00:a2){/align}Connected ");

    info.hardwareLabel = "N/A";
    info.usedBy = "switch0";
    EXPECT_EQ(FormatAdapterRow(info),
              "{align:padding:13}hwport0{/align}{align:padding:30}N/A (b0:26:28:4e:00:a2){/align}Connected (...)");

    info.name = "hwport12345";
    EXPECT_NE(FormatAdapterRow(info).find("}hwport12345{"), std::string::npos) << "11 characters stay";
    info.name = "hwport123456";
    EXPECT_NE(FormatAdapterRow(info).find("}hwport12...{"), std::string::npos);

    info.hardwareLabel = "Tessellate Ethernet";
    info.status = "Disconnected";
    EXPECT_EQ(FormatAdapterRow(info), "{align:padding:13}hwport12...{/align}{align:padding:30}Tessellate ... "
                                      "(...4e:00:a2){/align}Disconnected (...)");

    info.hardwareLabel = "Tessel X"; // 8 + 17 = 25: the address stays whole
    EXPECT_NE(FormatAdapterRow(info).find("Tessel X (b0:26:28:4e:00:a2)"), std::string::npos);
    info.hardwareLabel = "Tessel X7"; // 26: cut to the last 13
    EXPECT_NE(FormatAdapterRow(info).find("Tessel X7 (...6:28:4e:00:a2)"), std::string::npos);
}

TEST(AdapterText, DetailsNameEveryField)
{
    AdapterInfo info{"hwport3", "N/A", "b0:26:28:4e:00:a3", "Connected", ""};
    EXPECT_EQ(FormatAdapterDetails(info),
              "Hardware Label: N/A\nMAC Address: b0:26:28:4e:00:a3\nConnection Status: Connected\nUsed By: None");
    info.usedBy = "fab-prod";
    EXPECT_EQ(FormatAdapterDetails(info).substr(FormatAdapterDetails(info).rfind('\n')), "\nUsed By: fab-prod");
}

} // namespace
} // namespace Lanyx
