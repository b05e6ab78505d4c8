// The repairs' host work against simulated hosts: the move to a standard switch with its
// failures, and the rows the kernel NIC migration gathers.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostRoot.hpp"
#include "restore/KernelNicRows.hpp"
#include "restore/SafeModeNetwork.hpp"

namespace Lanyx {
namespace {

using nlohmann::json;
using Strings = std::vector<std::string>;

const json* Named(const json& list, const std::string& name) {
    for (const json& entry : list)
        if (entry.value("name", "") == name)
            return &entry;
    return nullptr;
}

class Repairs : public LanyxTest::HostTest {
protected:
    json Nic(const std::string& name) const {
        return *Named(Host().State()["network"]["interfaces"], name);
    }
    Strings FabricUplinks() const {
        Strings names;
        const json uplinks = Host().State()["fabrics"][0]["uplinks"];
        for (const auto& [name, port] : uplinks.items())
            names.push_back(name);
        return names;
    }
};

// The move itself is checked through the console; a second run here finds the names taken and
// leaves the plain name alone.
TEST_F(Repairs, MoveToStandardSwitchAgainTakesTheNextFreeNames) {
    Create("fabric-broken");
    MoveToStandardSwitch();
    MoveToStandardSwitch();
    EXPECT_NE(Named(Host().State()["switches"], "xbar1"), nullptr);
    EXPECT_EQ(Nic("tnic0")["connection"]["portGroup"], "Management Network2");
    EXPECT_TRUE(Host().Messages("user.err").empty());
}

TEST_F(Repairs, MoveStopsAtALibraryFailureAndLeavesManagementUp) {
    struct Case {
        const char* operation;
        bool switchMade;   // the new switch exists afterwards
        bool otherOff;     // tnic1 was disabled before the failure
        bool managementOn; // tnic0 enabled afterwards
    };
    const std::vector<Case> cases = {
        {"NetworkInfoImpl::GetManagementInterface", false, false, true},
        {"TesselNicImpl::GetConnectionPoint", false, false, true},
        {"FabricPort::GetFabric", false, false, true},
        {"PortsetImpl::IsValidVirtualSwitch", false, false, true},
        {"VirtualSwitchInfoImpl::AddVirtualSwitch", false, false, true},
        {"PortGroupImpl::IsValidPortGroup", true, false, true},
        {"VirtualSwitch::AddPortGroup", true, false, true},
        {"TesselNicInfoImpl::GetTesselNics", true, false, true},
        {"TesselNicImpl::Disable", true, false, true},
        {"TesselNicImpl::ConnectTo", true, true, true},
        {"TesselNicImpl::Enable", true, true, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.operation);
        Create("fabric-broken");
        Host().LibFault(c.operation, "boom");
        MoveToStandardSwitch();
        const json state = Host().State();
        const Strings errors = Host().Messages("user.err");
        ASSERT_FALSE(errors.empty());
        EXPECT_EQ(errors.front(), "Changing to legacy virtual switch failed: boom");
        EXPECT_EQ(Named(state["switches"], "xbar0") != nullptr, c.switchMade);
        EXPECT_EQ(Nic("tnic1")["enabled"], !c.otherOff);
        EXPECT_EQ(Nic("tnic0")["enabled"], c.managementOn);
        if (c.managementOn) {
            EXPECT_EQ(Nic("tnic0")["connection"]["type"], "fabric")
                << "the interface stays where it was";
            EXPECT_EQ(FabricUplinks(), (Strings{"hwport2", "hwport3"})) << "no uplink moved";
        } else {
            // Moved whole, but it would not come up; the second try is logged too.
            EXPECT_EQ(Nic("tnic0")["connection"]["portGroup"], "Management Network1");
            EXPECT_EQ(errors.back(), "Enabling the management interface failed: boom");
        }
    }
}

TEST_F(Repairs, AnUplinkThatFailsToMoveDoesNotStopTheOthers) {
    struct Case {
        const char* operation;
        bool inUse;        // the add refuses the uplink as still in use, else fails with the fault
        bool leftOnFabric; // both uplinks stay on the fabric
        bool onSwitch;     // both reach the new switch
    };
    const std::vector<Case> cases = {
        {"VirtualSwitch::AddUplink", false, false, false},
        {"VirtualSwitch::SetTeamingPolicy", false, false, true},
        {"VirtualSwitchInfoImpl::GetFabricSwitches", false, true, false},
        // A failed detach is dropped; the add then finds the uplink still in use.
        {"FabricSwitch::RemoveUplink", true, true, false},
    };
    const Strings both = {"hwport2", "hwport3"};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.operation);
        Create("fabric-broken");
        Host().LibFault(c.operation, "boom");
        MoveToStandardSwitch();
        Strings errors;
        for (const std::string& uplink : both)
            errors.push_back("Moving uplink " + uplink + " failed: " +
                             (c.inUse ? "Uplink " + uplink + " is already in use by fab-prod"
                                      : std::string("boom")));
        EXPECT_EQ(Host().Messages("user.err"), errors);
        EXPECT_EQ(FabricUplinks(), c.leftOnFabric ? both : Strings{});
        EXPECT_EQ(Named(Host().State()["switches"], "xbar0")->at("uplinks"),
                  c.onSwitch ? both : Strings{});
        EXPECT_EQ(Nic("tnic0")["connection"]["portGroup"], "Management Network1");
        EXPECT_TRUE(Nic("tnic0")["enabled"]);
    }
}

TEST_F(Repairs, NoManagementInterfaceChangesNothing) {
    Create("fabric-broken");
    Host().Edit([](json& state) { state["network"]["managementInterface"] = ""; });
    const json before = Host().State();
    MoveToStandardSwitch();
    EXPECT_EQ(Host().Messages("user.err"), Strings{"Could not find the management network"});
    EXPECT_EQ(Host().State()["switches"], before["switches"]);
    EXPECT_EQ(Host().State()["network"], before["network"]);
}

TEST_F(Repairs, KernelNicAndPortGroupRows) {
    Create("fabric-broken");
    Host().Edit([](json& state) {
        state["network"]["interfaces"][1]["connection"] = {{"type", "none"}};
        json nic = state["network"]["interfaces"][0];
        nic["name"] = "tnic2";
        nic["connection"] = {{"type", "portgroup"}, {"portGroup", "VM Network"}};
        state["network"]["interfaces"].push_back(nic);
    });
    std::vector<TesselNicInfo> nics;
    ASSERT_TRUE(GatherTesselNics(nics));
    ASSERT_EQ(nics.size(), 3u);
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"fab-prod", "N/A"}, {"N/A", "N/A"}, {"switch0", "VM Network"}};
    for (size_t i = 0; i < nics.size(); ++i) {
        EXPECT_EQ(nics[i].Portset(), expected[i].first) << nics[i].Name();
        EXPECT_EQ(nics[i].Portgroup(), expected[i].second) << nics[i].Name();
    }
    EXPECT_EQ(nics[0].GetDetails(),
              "Name: tnic0\nMAC Address: 00:50:56:6a:10:01\nPortset: fab-prod\nPortgroup: N/A");

    std::vector<PortGroupInfo> groups;
    ASSERT_TRUE(GatherPortGroups(groups));
    ASSERT_EQ(groups.size(), 1u);
    EXPECT_EQ(groups[0].GetDetails(),
              "Name: VM Network\nVirtual Switch: switch0\nActive Clients: 2\nVLAN ID: 0");

    for (const char* operation :
         {"TesselNicInfoImpl::GetTesselNics", "TesselNicImpl::GetMacAddress",
          "NetworkInfoImpl::GetAllPortGroups", "PortGroup::GetVlanId"}) {
        Create("default");
        Host().LibFault(operation, "boom");
        std::vector<TesselNicInfo> noNics;
        std::vector<PortGroupInfo> noGroups;
        const bool nicsRead = GatherTesselNics(noNics);
        const bool groupsRead = GatherPortGroups(noGroups);
        EXPECT_NE(nicsRead, groupsRead) << operation;
        EXPECT_EQ(Host().Messages("user.err"),
                  Strings{nicsRead ? "boom" : "Gathering Tessel NIC list failed: boom"})
            << operation;
    }
}

} // namespace
} // namespace Lanyx
