#include "restore/switches/Switches.hpp"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "host/GuardedStep.hpp"
#include "host/Log.hpp"
#include "keelson/Network.hpp"

namespace Lanyx {

namespace KN = Keelson::Network;
using Keelson::Lib::KeelsonException;

const char* const kAdapterListHeader =
    "    {align:padding:13}Device Name{/align}{align:padding:30}Hardware Label (MAC "
    "Address){/align}Status";

namespace {

std::unique_ptr<KN::ConnectionPoint> ConnectionPointOf(KN::NetworkInterface* nic) {
    if (nic == nullptr)
        throw KeelsonException("No network interface");
    std::unique_ptr<KN::ConnectionPoint> point(nic->GetConnectionPoint());
    if (!point)
        throw KeelsonException("Network interface is not connected");
    return point;
}

// The port group of a type 1 interface; any other type is refused with one text.
std::unique_ptr<KN::PortGroup> PortGroupOf(KN::NetworkInterface* nic) {
    std::unique_ptr<KN::ConnectionPoint> point = ConnectionPointOf(nic);
    auto* group = point->GetConnecteeType() == KN::CONNECTEE_PORTGROUP
                      ? dynamic_cast<KN::PortGroup*>(point.get())
                      : nullptr;
    if (group == nullptr)
        throw KeelsonException("Unsupported xbar type");
    point.release();
    return std::unique_ptr<KN::PortGroup>(group);
}

bool Contains(const std::vector<std::string>& list, const std::string& name) {
    return std::find(list.begin(), list.end(), name) != list.end();
}

// Starts from the order only when the policy follows it, and then counts one more active uplink.
void AddToTeam(const std::string& uplink, KN::NicTeamingPolicy& policy) {
    std::vector<std::string> order;
    if (policy.GetFlags() & KN::NicTeamingPolicy::FLAG_USE_UPLINK_ORDER) {
        order = policy.GetUplinkOrder();
        policy.SetMaxActiveUplinks(policy.GetMaxActiveUplinks() + 1);
    }
    if (!Contains(order, uplink)) {
        order.push_back(uplink);
        policy.SetUplinkOrder(order);
    }
}

std::string CollapseBlanks(const std::string& text) {
    std::string result;
    bool blank = false;
    for (char c : text) {
        if (std::isspace(static_cast<unsigned char>(c))) {
            blank = !result.empty();
            continue;
        }
        if (blank)
            result += ' ';
        blank = false;
        result += c;
    }
    return result;
}

bool ParseHwport(const std::string& name, int& number) {
    return std::sscanf(name.c_str(), "hwport%d", &number) == 1;
}

// Whichever switch removes the uplink first ends the search; a switch without it throws.
template <typename Switches> void DetachFrom(const Switches& switches, const std::string& uplink) {
    for (const auto& sw : switches) {
        try {
            sw->RemoveUplink(uplink, false);
            return;
        } catch (const KeelsonException&) {
        }
    }
}

} // namespace

std::unique_ptr<KN::NetworkInterface> FindManagementInterface() {
    TesselCtl::Network::NetworkInfoImpl info;
    info.UpdateManagementInterface();
    return std::unique_ptr<KN::NetworkInterface>(info.GetManagementInterface());
}

bool IsFabricInUse() {
    bool result = false;
    return LoggedStep("Could not determine if a FABRIC was in use: ",
                      [&] {
                          std::unique_ptr<KN::NetworkInterface> nic = FindManagementInterface();
                          if (!nic) {
                              Log(LOG_ERR, "Could not locate the management interface");
                              return;
                          }
                          std::unique_ptr<KN::ConnectionPoint> point = ConnectionPointOf(nic.get());
                          result = point->GetConnecteeType() == KN::CONNECTEE_FABRIC_PORT;
                      }) &&
           result;
}

bool GetSwitchName(KN::NetworkInterface* nic, std::string& name) {
    try {
        std::unique_ptr<KN::ConnectionPoint> point = ConnectionPointOf(nic);
        switch (point->GetConnecteeType()) {
        case KN::CONNECTEE_NONE:
            throw KeelsonException("Unsupported connectee type");
        case KN::CONNECTEE_OPAQUE:
            throw KeelsonException("Opaque network connectee type not supported");
        case KN::CONNECTEE_PORTGROUP: {
            auto* group = dynamic_cast<KN::PortGroup*>(point.get());
            if (group == nullptr)
                return false;
            std::unique_ptr<KN::VirtualSwitch> sw(group->GetVirtualSwitch());
            name = sw->GetName();
            return true;
        }
        case KN::CONNECTEE_FABRIC_PORT: {
            auto* port = dynamic_cast<KN::FabricPort*>(point.get());
            if (port == nullptr)
                return false;
            std::unique_ptr<KN::FabricSwitch> fabric(port->GetFabric());
            name = fabric->GetName();
            return true;
        }
        default:
            return true;
        }
    } catch (const KeelsonException& e) {
        Log(LOG_ERR, "Getting switch name failed: %s", e.what());
        return false;
    }
}

bool GetVlanId(KN::NetworkInterface* nic, uint16_t& vlanId) {
    return LoggedStep("Getting VlanID failed: ", [&] { vlanId = PortGroupOf(nic)->GetVlanId(); });
}

bool SetVlanId(KN::NetworkInterface* nic, uint16_t vlanId) {
    return LoggedStep("Setting VlanID failed: ", [&] { PortGroupOf(nic)->SetVlanId(vlanId); });
}

bool GetMaxActiveUplinks(KN::NetworkInterface* nic, uint32_t& count) {
    return LoggedStep("Getting max number of active uplinks failed: ", [&] {
        count = static_cast<uint32_t>(PortGroupOf(nic)->GetTeamingPolicy().GetMaxActiveUplinks());
    });
}

bool GetUplinks(KN::NetworkInterface* nic, std::vector<std::string>& uplinks) {
    return LoggedStep("Getting uplinks failed: ",
                      [&] { uplinks = PortGroupOf(nic)->GetTeamingPolicy().GetUplinkOrder(); });
}

void DetachUplink(const std::string& uplink) {
    TesselCtl::Network::VirtualSwitchInfoImpl info;
    DetachFrom(info.GetVirtualSwitches(0), uplink);
    DetachFrom(info.GetFabricSwitches(), uplink);
}

bool AddUplink(KN::NetworkInterface* nic, const std::string& uplink) {
    bool result = false;
    return LoggedStep("Adding uplink " + uplink + " failed: ",
                      [&] {
                          std::unique_ptr<KN::ConnectionPoint> point = ConnectionPointOf(nic);
                          // The uplink leaves whatever holds it, even when this interface turns out
                          // to be unfit.
                          DetachUplink(uplink);
                          auto* group = point->GetConnecteeType() == KN::CONNECTEE_PORTGROUP
                                            ? dynamic_cast<KN::PortGroup*>(point.get())
                                            : nullptr;
                          if (group == nullptr)
                              throw KeelsonException("Unsupported xbar type");
                          std::unique_ptr<KN::VirtualSwitch> sw(group->GetVirtualSwitch());
                          sw->AddUplink(uplink, true);
                          result = AddUplinkToTeaming(uplink, *group);
                      }) &&
           result;
}

bool RemoveUplink(KN::NetworkInterface* nic, const std::string& uplink) {
    bool result = false;
    return LoggedStep("Removing uplink " + uplink + " failed: ",
                      [&] {
                          std::unique_ptr<KN::PortGroup> group = PortGroupOf(nic);
                          std::unique_ptr<KN::VirtualSwitch> sw(group->GetVirtualSwitch());
                          sw->RemoveUplink(uplink, false);
                          result = RemoveUplinkFromTeaming(uplink, *group);
                      }) &&
           result;
}

bool AddUplinkToTeaming(const std::string& uplink, KN::PortGroup& portGroup) {
    return LoggedStep("VS: add uplink to teaming policy failed: ", [&] {
        KN::NicTeamingPolicy policy = portGroup.GetTeamingPolicy();
        AddToTeam(uplink, policy);
        portGroup.SetTeamingPolicy(policy);
    });
}

bool RemoveUplinkFromTeaming(const std::string& uplink, KN::PortGroup& portGroup) {
    return LoggedStep("VS: remove uplink from teaming policy failed: ", [&] {
        KN::NicTeamingPolicy policy = portGroup.GetTeamingPolicy();
        std::vector<std::string> order = policy.GetUplinkOrder();
        auto it = std::find(order.begin(), order.end(), uplink);
        if ((policy.GetFlags() & KN::NicTeamingPolicy::FLAG_USE_UPLINK_ORDER) &&
            it != order.end()) {
            order.erase(it);
            policy.SetUplinkOrder(order);
            policy.SetMaxActiveUplinks(policy.GetMaxActiveUplinks() - 1);
        }
        portGroup.SetTeamingPolicy(policy);
    });
}

bool AddUplinkToSwitchTeaming(const std::string& uplink, KN::NicTeamingPolicy& policy) {
    return LoggedStep("VS: add uplink to teaming policy failed: ",
                      [&] { AddToTeam(uplink, policy); });
}

bool GatherStandardSwitches(std::vector<StandardSwitchInfo>& switches) {
    return LoggedStep("Gathering standard virtual switch list failed: ", [&] {
        switches.clear();
        TesselCtl::Network::VirtualSwitchInfoImpl info;
        for (const auto& sw : info.GetVirtualSwitches(0)) {
            StandardSwitchInfo row;
            row.name = sw->GetName();
            row.uplinks = sw->GetUplinks();
            row.portGroups = sw->GetPortGroups();
            row.numPorts = sw->GetNumPorts();
            row.usedPorts = sw->GetUsedPorts();
            row.configuredPorts = sw->GetConfiguredPorts();
            switches.push_back(std::move(row));
        }
    });
}

bool PhysicalNicLess(const std::string& a, const std::string& b) {
    int numberA = 0;
    int numberB = 0;
    if (ParseHwport(a, numberA) && ParseHwport(b, numberB))
        return numberA < numberB;
    return a < b; // bytewise; a prefix sorts first
}

bool GatherPhysicalNics(std::vector<std::string>& names) {
    return LoggedStep("Getting physical nics failed: ", [&] {
        TesselCtl::Network::NetworkInfoImpl info;
        std::vector<std::string> found;
        for (const auto& pnic : info.GetPnics(1))
            found.push_back(pnic->GetName());
        // Stable: the mixed numeric and bytewise order is no strict weak order for odd names.
        std::stable_sort(found.begin(), found.end(), PhysicalNicLess);
        names = std::move(found);
    });
}

bool GatherUplinkUsers(const std::vector<std::string>& names, UplinkUsers& users) {
    for (const std::string& name : names)
        users[name].clear();
    TesselCtl::Network::VirtualSwitchInfoImpl info;
    return LoggedStep("Scanning virtual switches failed: ",
                      [&] {
                          for (const auto& sw : info.GetVirtualSwitches(0)) {
                              const std::vector<std::string> uplinks = sw->GetUplinks();
                              for (const std::string& name : names)
                                  if (Contains(uplinks, name))
                                      users[name] = sw->GetName();
                          }
                      }) &&
           LoggedStep("Scanning fabricswitches failed: ", [&] {
               for (const auto& fabric : info.GetFabricSwitches()) {
                   const std::map<std::string, KN::FabricPortParam> ports =
                       fabric->GetUplinkPorts();
                   for (const std::string& name : names)
                       if (ports.count(name) != 0)
                           users[name] = fabric->GetName();
               }
           });
}

AdapterInfo GatherAdapterInfo(const std::string& name, const UplinkUsers& users) {
    AdapterInfo info;
    info.name = name;
    TesselCtl::Network::PnicImpl pnic(name);
    std::unique_ptr<KN::PciDevice> device(pnic.GetPciDevice());
    if (device) {
        try {
            info.hardwareLabel = CollapseBlanks(device->GetName());
        } catch (const KeelsonException&) {
            info.hardwareLabel.clear();
        }
    }
    if (info.hardwareLabel.empty())
        info.hardwareLabel = "N/A";
    if (pnic.IsStale()) {
        pnic.Refresh();
        pnic.SetStale(false);
    }
    info.macAddress = pnic.GetMacAddress().GetStringAddress();
    if (pnic.IsStale()) {
        pnic.Refresh();
        pnic.SetStale(false);
    }
    info.status = pnic.GetLinkState() ? "Connected" : "Disconnected";
    auto user = users.find(name);
    if (user != users.end())
        info.usedBy = user->second;
    return info;
}

std::string FormatAdapterRow(const AdapterInfo& info) {
    const std::string name = info.name.size() <= 11 ? info.name : info.name.substr(0, 8) + "...";
    const std::string label = info.hardwareLabel.size() <= 14
                                  ? info.hardwareLabel
                                  : info.hardwareLabel.substr(0, 11) + "...";
    std::string mac = info.macAddress;
    if (label.size() + mac.size() >= 26) {
        const size_t keep = std::min(mac.size(), 22 - label.size());
        mac = "..." + mac.substr(mac.size() - keep);
    }
    std::string row = "{align:padding:13}" + name + "{/align}{align:padding:30}" + label + " (" +
                      mac + "){/align}" + info.status + " ";
    if (!info.usedBy.empty())
        row += "(...)";
    return row;
}

std::string FormatAdapterDetails(const AdapterInfo& info) {
    return "Hardware Label: " + info.hardwareLabel + "\nMAC Address: " + info.macAddress +
           "\nConnection Status: " + info.status +
           "\nUsed By: " + (info.usedBy.empty() ? "None" : info.usedBy);
}

} // namespace Lanyx
