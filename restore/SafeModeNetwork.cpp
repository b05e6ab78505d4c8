#include "restore/SafeModeNetwork.hpp"

#include <memory>
#include <string>
#include <vector>

#include "host/GuardedStep.hpp"
#include "host/Log.hpp"
#include "restore/switches/Switches.hpp"

namespace Lanyx {

namespace {

namespace KN = Keelson::Network;
using Keelson::Lib::KeelsonException;

// A library that calls every name taken would otherwise keep the console turning for ever.
constexpr int kNameTries = 100000;

std::string FirstFree(const std::string& stem, int first, const NameTaken& taken) {
    for (int number = first; number < first + kNameTries; ++number) {
        std::string name = stem + std::to_string(number);
        if (!taken(name))
            return name;
    }
    throw KeelsonException("No free name for " + stem);
}

} // namespace

std::string FreeSwitchName(const NameTaken& taken) {
    return FirstFree("xbar", 0, taken);
}

std::string FreePortGroupName(const NameTaken& taken) {
    return FirstFree("Management Network", 1, taken);
}

void MoveUplink(KN::PortGroup& portGroup, const std::string& uplink) {
    LoggedStep("Moving uplink " + uplink + " failed: ", [&] {
        DetachUplink(uplink);
        std::unique_ptr<KN::VirtualSwitch> sw(portGroup.GetVirtualSwitch());
        KN::NicTeamingPolicy policy = sw->GetTeamingPolicy();
        sw->AddUplink(uplink, true);
        if (AddUplinkToSwitchTeaming(std::string(uplink), policy))
            sw->SetTeamingPolicy(policy);
    });
}

void MoveToStandardSwitch() {
    std::unique_ptr<KN::NetworkInterface> nic;
    bool disabled = false;
    const bool moved = LoggedStep("Changing to legacy virtual switch failed: ", [&] {
        nic = FindManagementInterface();
        if (!nic) {
            Log(LOG_ERR, "Could not find the management network");
            return;
        }
        std::vector<std::string> uplinks;
        {
            std::unique_ptr<KN::ConnectionPoint> point(nic->GetConnectionPoint());
            if (!point)
                throw KeelsonException("The management interface is not connected");
            std::unique_ptr<KN::Portset> oldSwitch(point->GetPortset());
            if (!oldSwitch)
                throw KeelsonException("No switch behind the management interface");
            uplinks = oldSwitch->GetUplinks();
        }

        TesselCtl::Network::VirtualSwitchInfoImpl switches;
        std::unique_ptr<KN::VirtualSwitch> newSwitch(switches.AddVirtualSwitch(
            FreeSwitchName(TesselCtl::Network::PortsetImpl::IsValidVirtualSwitch),
            KN::Portset::DEF_NUM_PORTS));
        std::unique_ptr<KN::PortGroup> portGroup(newSwitch->AddPortGroup(
            FreePortGroupName(TesselCtl::Network::PortGroupImpl::IsValidPortGroup)));

        for (const std::unique_ptr<KN::NetworkInterface>& each :
             TesselCtl::Network::TesselNicInfoImpl().GetTesselNics(0)) {
            disabled = true;
            each->Disable();
        }
        nic->ConnectTo(*portGroup, false);
        for (const std::string& uplink : uplinks)
            MoveUplink(*portGroup, uplink);
        nic->Enable();
        disabled = false;
    });
    // The other interfaces stay off, but a failed move must not strand the host without its
    // management interface as well.
    if (!moved && nic && disabled) {
        GuardedStep([&] { nic->Enable(); },
                    [](const KeelsonException& e) {
                        Log(LOG_ERR, "Enabling the management interface failed: %s", e.what());
                    });
    }
}

} // namespace Lanyx
