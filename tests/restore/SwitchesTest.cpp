#include <gtest/gtest.h>

#include "HostRoot.hpp"
#include "restore/switches/Switches.hpp"

namespace Lanyx {
namespace {

using nlohmann::json;
using Strings = std::vector<std::string>;

class Switches : public LanyxTest::HostTest {
protected:
    std::unique_ptr<Keelson::Network::NetworkInterface> Management() {
        auto nic = FindManagementInterface();
        EXPECT_TRUE(nic);
        return nic;
    }
    static json& Group(json& state, const std::string& name) {
        for (json& group : state["portGroups"])
            if (group["name"] == name)
                return group;
        throw std::runtime_error("no port group " + name);
    }
    json ManagementTeaming() const {
        json state = Host().State();
        return Group(state, "Management Network")["teaming"];
    }
    Strings SwitchUplinks(size_t index = 0) const {
        return Host().State()["switches"][index]["uplinks"].get<Strings>();
    }
    void Connect(const json& connection) const {
        Host().Edit(
            [&](json& state) { state["network"]["interfaces"][0]["connection"] = connection; });
    }
};

TEST_F(Switches, ManagementInterfaceAndFabricInUse) {
    Create();
    EXPECT_EQ(Management()->GetInterfaceName(), "tnic0");
    EXPECT_FALSE(IsFabricInUse());
    Create("fabric");
    EXPECT_TRUE(IsFabricInUse());
    EXPECT_TRUE(Host().Messages("user.err").empty());

    Host().Edit([](json& state) { state["network"]["managementInterface"] = ""; });
    EXPECT_FALSE(FindManagementInterface());
    EXPECT_FALSE(IsFabricInUse());
    Host().Edit([](json& state) { state["network"]["managementInterface"] = "tnic0"; });
    Host().LibFault("TesselNicImpl::GetConnectionPoint", "point lost");
    EXPECT_FALSE(IsFabricInUse());
    EXPECT_EQ(Host().Messages("user.err"),
              (Strings{"Could not locate the management interface",
                       "Could not determine if a FABRIC was in use: point lost"}));
    Host().LibFault("NetworkInfoImpl::UpdateManagementInterface", "no stack");
    EXPECT_THROW(FindManagementInterface(), Keelson::Lib::KeelsonException)
        << "exceptions pass to the caller";
}

// A fabric gives its name and refuses everything a standard switch offers; a port group gives its
// switch; other connectees give nothing.
TEST_F(Switches, WhatEachConnecteeTypeGives) {
    Create("fabric");
    auto nic = Management();
    std::string name = "untouched";
    EXPECT_TRUE(GetSwitchName(nic.get(), name));
    EXPECT_EQ(name, "fab-prod");
    uint16_t vlan = 5;
    uint32_t count = 5;
    Strings uplinks{"kept"};
    EXPECT_FALSE(GetVlanId(nic.get(), vlan));
    EXPECT_FALSE(SetVlanId(nic.get(), 12));
    EXPECT_FALSE(GetMaxActiveUplinks(nic.get(), count));
    EXPECT_FALSE(GetUplinks(nic.get(), uplinks));
    EXPECT_FALSE(RemoveUplink(nic.get(), "hwport2"));
    EXPECT_FALSE(AddUplink(nic.get(), "hwport2"));
    EXPECT_EQ(vlan, 5);
    EXPECT_EQ(uplinks, Strings{"kept"});
    const json state = Host().State();
    EXPECT_EQ(state["fabrics"][0]["ports"][0]["vlan"], 10) << "the fabric port is left alone";
    EXPECT_FALSE(state["fabrics"][0]["uplinks"].contains("hwport2"))
        << "the detach is not rolled back";

    Connect({{"type", "portgroup"}, {"portGroup", "VM Network"}});
    EXPECT_TRUE(GetSwitchName(nic.get(), name));
    EXPECT_EQ(name, "switch0");
    for (const char* type : {"none", "opaque"}) {
        Connect({{"type", type}});
        EXPECT_FALSE(GetSwitchName(nic.get(), name)) << type;
    }
    EXPECT_EQ(name, "switch0");
    EXPECT_EQ(Host().Messages("user.err"),
              (Strings{"Getting VlanID failed: Unsupported xbar type",
                       "Setting VlanID failed: Unsupported xbar type",
                       "Getting max number of active uplinks failed: Unsupported xbar type",
                       "Getting uplinks failed: Unsupported xbar type",
                       "Removing uplink hwport2 failed: Unsupported xbar type",
                       "Adding uplink hwport2 failed: Unsupported xbar type",
                       "Getting switch name failed: Unsupported connectee type",
                       "Getting switch name failed: Opaque network connectee type not supported"}));
}

TEST_F(Switches, VlanOfTheManagementPortGroup) {
    Create();
    auto nic = Management();
    uint16_t vlan = 99;
    ASSERT_TRUE(GetVlanId(nic.get(), vlan));
    EXPECT_EQ(vlan, 0);

    ASSERT_TRUE(SetVlanId(nic.get(), 42));
    json state = Host().State();
    EXPECT_EQ(Group(state, "Management Network")["vlan"], 42);
    EXPECT_EQ(Group(state, "VM Network")["vlan"], 0);

    Host().LibFault("PortGroup::SetVlanId", "port group busy");
    EXPECT_FALSE(SetVlanId(nic.get(), 7));
    EXPECT_EQ(Host().Messages("user.err"), Strings{"Setting VlanID failed: port group busy"});
}

// The team's order is kept only with flag 16 set; without it the order starts empty and, on
// removal, the policy is still written back.
TEST_F(Switches, UplinkChangesFollowTheTeamingPolicy) {
    struct Case {
        const char* what;
        bool add; // hwport2, else remove hwport1
        std::function<void(json&)> teaming;
        Strings order;
        int count;
    };
    const auto none = [](json&) {};
    const Strings all = {"hwport0", "hwport1", "hwport2"};
    for (const Case& c : {
             Case{"add", true, none, all, 2},
             Case{"add, flag clear", true, [](json& t) { t["flags"] = 0; }, {"hwport2"}, 1},
             Case{"add, already in order", true,
                  [](json& t) { t["uplinkOrder"].push_back("hwport2"); }, all, 2},
             Case{"remove", false, none, {"hwport0"}, 0},
             Case{"remove, not in order",
                  false,
                  [](json& t) { t["uplinkOrder"] = {"hwport0"}; },
                  {"hwport0"},
                  1},
         }) {
        SCOPED_TRACE(c.what);
        Create();
        Host().Edit([&](json& state) { c.teaming(Group(state, "Management Network")["teaming"]); });
        auto nic = Management();
        if (c.add) {
            Strings order;
            uint32_t count = 0;
            ASSERT_TRUE(GetUplinks(nic.get(), order) && GetMaxActiveUplinks(nic.get(), count));
            EXPECT_EQ(order, ManagementTeaming()["uplinkOrder"].get<Strings>());
            EXPECT_EQ(count, ManagementTeaming()["maxActiveUplinks"].get<uint32_t>());
        }
        ASSERT_TRUE(c.add ? AddUplink(nic.get(), "hwport2") : RemoveUplink(nic.get(), "hwport1"));
        EXPECT_EQ(SwitchUplinks(), c.add ? all : Strings{"hwport0"});
        const json teaming = ManagementTeaming();
        EXPECT_EQ(teaming["uplinkOrder"].get<Strings>(), c.order);
        EXPECT_EQ(teaming["maxActiveUplinks"], c.count);
        EXPECT_EQ(teaming["linkCriteria"]["checkSpeed"], "minimum")
            << "other fields travel unchanged";
        EXPECT_TRUE(Host().Messages("user.err").empty());
    }

    Create();
    Host().Edit([](json& state) { Group(state, "Management Network")["teaming"]["flags"] = 0; });
    Host().LibFault("PortGroup::SetTeamingPolicy", "written");
    EXPECT_FALSE(RemoveUplink(Management().get(), "hwport1")) << "the write-back is attempted";
    EXPECT_EQ(Host().Messages("user.err"),
              Strings{"VS: remove uplink from teaming policy failed: written"});
}

TEST_F(Switches, AddUplinkDetachesFromOneSwitchOfEachKind) {
    Create();
    Host().Edit([](json& state) {
        state["switches"].push_back({{"name", "switch1"},
                                     {"uplinks", {"hwport2"}},
                                     {"portGroups", json::array()},
                                     {"teaming", {{"flags", 16}, {"uplinkOrder", {"hwport2"}}}}});
        state["fabrics"].push_back(
            {{"name", "fab-b"}, {"id", "fb"}, {"uplinks", {{"hwport3", {{"portId", "7"}}}}}});
    });
    auto nic = Management();
    ASSERT_TRUE(AddUplink(nic.get(), "hwport2"));
    ASSERT_TRUE(AddUplink(nic.get(), "hwport3"));
    const json state = Host().State();
    EXPECT_TRUE(state["switches"][1]["uplinks"].empty());
    EXPECT_TRUE(state["fabrics"][0]["uplinks"].empty());
    EXPECT_EQ(SwitchUplinks(), (Strings{"hwport0", "hwport1", "hwport2", "hwport3"}));
    EXPECT_EQ(ManagementTeaming()["maxActiveUplinks"], 3);
    EXPECT_TRUE(Host().Messages("user.err").empty()) << "failed detach attempts are no failure";
}

TEST_F(Switches, AddUplinkFailuresNameTheirStep) {
    Create();
    auto nic = Management();
    Host().LibFault("PortGroup::SetTeamingPolicy", "policy locked");
    EXPECT_FALSE(AddUplink(nic.get(), "hwport2"));
    EXPECT_EQ(SwitchUplinks(), (Strings{"hwport0", "hwport1", "hwport2"}))
        << "no roll-back of the switch step";

    Host().LibFault("VirtualSwitch::AddUplink", "switch full");
    EXPECT_FALSE(AddUplink(nic.get(), "hwport3"));
    EXPECT_EQ(Host().Messages("user.err"),
              (Strings{"VS: add uplink to teaming policy failed: policy locked",
                       "Adding uplink hwport3 failed: switch full"}));
}

TEST_F(Switches, StandardSwitchesInLibraryOrder) {
    Create("fabric");
    Host().Edit([](json& state) {
        state["switches"].push_back({{"name", "xbar0"},
                                     {"uplinks", json::array()},
                                     {"portGroups", {"b", "a"}},
                                     {"numPorts", 128},
                                     {"usedPorts", 0},
                                     {"configuredPorts", 64}});
    });
    std::vector<StandardSwitchInfo> switches;
    ASSERT_TRUE(GatherStandardSwitches(switches));
    ASSERT_EQ(switches.size(), 2u) << "fabrics are not listed";
    EXPECT_EQ(switches[0].uplinks, (Strings{"hwport0", "hwport1"}));
    EXPECT_EQ(switches[1].portGroups, (Strings{"b", "a"})) << "in the switch's order";

    Host().LibFault("VirtualSwitchInfoImpl::GetVirtualSwitches", "no switches");
    EXPECT_FALSE(GatherStandardSwitches(switches));
    EXPECT_EQ(Host().Messages("user.err"),
              Strings{"Gathering standard virtual switch list failed: no switches"});
}

TEST_F(Switches, PhysicalNicOrder) {
    EXPECT_TRUE(PhysicalNicLess("hwport2", "hwport10"));
    EXPECT_FALSE(PhysicalNicLess("hwport10", "hwport2"));
    EXPECT_TRUE(PhysicalNicLess("eth9", "hwport1")) << "another form sorts by bytes";
    EXPECT_TRUE(PhysicalNicLess("hwport10", "hwportx"));
    EXPECT_TRUE(PhysicalNicLess("hwport", "hwport0")) << "the shorter first on equal prefixes";

    Create();
    Host().Edit([](json& state) {
        for (const char* name : {"hwport10", "nic-b", "hwport9", "hwport11"}) {
            json nic = state["pnics"][0];
            nic["name"] = name;
            state["pnics"].push_back(nic);
        }
    });
    Strings names;
    ASSERT_TRUE(GatherPhysicalNics(names));
    EXPECT_EQ(names, (Strings{"hwport0", "hwport1", "hwport2", "hwport3", "hwport9", "hwport10",
                              "hwport11", "nic-b"}));

    Host().LibFault("NetworkInfoImpl::GetPnics", "bus error");
    EXPECT_FALSE(GatherPhysicalNics(names));
    EXPECT_EQ(Host().Messages("user.err"), Strings{"Getting physical nics failed: bus error"});
    EXPECT_EQ(names.size(), 8u) << "a failed gathering leaves the list";
}

TEST_F(Switches, UplinkUsersFabricWinsAndAFailureStopsTheScan) {
    Create("fabric");
    Host().Edit([](json& state) { state["switches"][0]["uplinks"].push_back("hwport2"); });
    UplinkUsers users{{"hwport4", "stale"}, {"other", "kept"}};
    ASSERT_TRUE(GatherUplinkUsers({"hwport1", "hwport2", "hwport3", "hwport4"}, users));
    EXPECT_EQ(users, (UplinkUsers{{"hwport1", "switch0"},
                                  {"hwport2", "fab-prod"},
                                  {"hwport3", "fab-prod"},
                                  {"hwport4", ""},
                                  {"other", "kept"}}));

    Host().LibFault("VirtualSwitchInfoImpl::GetFabricSwitches", "fabric agent down");
    users.clear();
    EXPECT_FALSE(GatherUplinkUsers({"hwport0", "hwport3"}, users));
    EXPECT_EQ(users, (UplinkUsers{{"hwport0", "switch0"}, {"hwport3", ""}}))
        << "the first pass stays";
    Host().LibFault("VirtualSwitch::GetUplinks", "switch gone");
    EXPECT_FALSE(GatherUplinkUsers({"hwport0"}, users));
    EXPECT_EQ(Host().Messages("user.err"),
              (Strings{"Scanning fabricswitches failed: fabric agent down",
                       "Scanning virtual switches failed: switch gone"}));
}

TEST_F(Switches, AdapterInfoOfEachKindOfNicAndItsLabelFailure) {
    Create();
    UplinkUsers users;
    ASSERT_TRUE(GatherUplinkUsers({"hwport0", "hwport2", "hwport3"}, users));
    const AdapterInfo first = GatherAdapterInfo("hwport0", users);
    EXPECT_EQ(first.hardwareLabel, "Tessellate Ethernet Controller X710 for 10GbE SFP+")
        << "blanks collapsed";
    EXPECT_EQ(first.macAddress, "3c:fd:fe:a1:00:10");
    EXPECT_EQ(first.status, "Connected");
    EXPECT_EQ(first.usedBy, "switch0");
    EXPECT_EQ(GatherAdapterInfo("hwport2", users).status, "Disconnected");
    EXPECT_EQ(GatherAdapterInfo("hwport3", users).hardwareLabel, "N/A") << "no device";
    Host().Edit([](json& state) { state["pnics"][2]["pciLabel"] = "  \t "; });
    EXPECT_EQ(GatherAdapterInfo("hwport2", users).hardwareLabel, "N/A") << "an empty label";

    Host().LibFault("PciDevice::GetName", "vpd unreadable");
    EXPECT_EQ(GatherAdapterInfo("hwport1", users).hardwareLabel, "N/A");
    Host().LibFault("PnicImpl::GetPciDevice", "no pci");
    EXPECT_THROW(GatherAdapterInfo("hwport1", users), Keelson::Lib::KeelsonException);
    EXPECT_TRUE(Host().Messages("user.err").empty());
}

TEST(AdapterText, RowFitsItsColumnsAndDetailsNameEveryField) {
    AdapterInfo info{"hwport0", "Broadline 5720", "b0:26:28:4e:00:a2", "Connected", ""};
    EXPECT_EQ(FormatAdapterRow(info),
              "{align:padding:13}hwport0{/align}{align:padding:30}Broadline 5720 "
              "(...4e:00:a2){/align}Connected ");

    info.hardwareLabel = "N/A";
    info.usedBy = "switch0";
    EXPECT_EQ(FormatAdapterRow(info), "{align:padding:13}hwport0{/align}{align:padding:30}N/A "
                                      "(b0:26:28:4e:00:a2){/align}Connected (...)");

    info.name = "hwport12345";
    EXPECT_NE(FormatAdapterRow(info).find("}hwport12345{"), std::string::npos)
        << "11 characters stay";
    info.name = "hwport123456";
    EXPECT_NE(FormatAdapterRow(info).find("}hwport12...{"), std::string::npos);

    info.hardwareLabel = "Tessellate Ethernet";
    info.status = "Disconnected";
    EXPECT_EQ(FormatAdapterRow(info),
              "{align:padding:13}hwport12...{/align}{align:padding:30}Tessellate ... "
              "(...4e:00:a2){/align}Disconnected (...)");

    info.hardwareLabel = "Tessel X"; // 8 + 17 = 25: the address stays whole
    EXPECT_NE(FormatAdapterRow(info).find("Tessel X (b0:26:28:4e:00:a2)"), std::string::npos);
    info.hardwareLabel = "Tessel X7"; // 26: cut to the last 13
    EXPECT_NE(FormatAdapterRow(info).find("Tessel X7 (...6:28:4e:00:a2)"), std::string::npos);

    EXPECT_EQ(FormatAdapterDetails({"hwport3", "N/A", "b0:26:28:4e:00:a3", "Connected", ""}),
              "Hardware Label: N/A\nMAC Address: b0:26:28:4e:00:a3\nConnection Status: "
              "Connected\nUsed By: None");
}

} // namespace
} // namespace Lanyx
