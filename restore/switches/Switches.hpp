// The switch layer: what the screens ask of the host's virtual switches about the management
// interface, and the lists the selection screens show.
//
// Every operation builds the library objects it needs and drops them before it returns. Those
// with a boolean result catch Keelson::Lib::KeelsonException themselves: false means the reason
// stands in the system log at error level. FindManagementInterface and GatherAdapterInfo let
// library exceptions through to their callers.
#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "keelson/Network.hpp"

namespace Lanyx {

// One row of the list of standard switches.
struct StandardSwitchInfo {
    std::string name;
    std::vector<std::string> uplinks;
    std::vector<std::string> portGroups; // in the switch's own order
    uint64_t numPorts = 0;
    uint64_t usedPorts = 0;
    uint64_t configuredPorts = 0;
};

// One physical NIC as the adapter lists show it.
struct AdapterInfo {
    std::string name;          // "hwport<n>"
    std::string hardwareLabel; // PCI device name, or "N/A"
    std::string macAddress;
    std::string status; // "Connected" or "Disconnected"
    std::string usedBy; // switch holding the NIC, or empty
};

// NIC name -> name of the switch that holds it as an uplink; empty means free.
using UplinkUsers = std::map<std::string, std::string>;

// Column heads above rows of FormatAdapterRow (the four blanks make room for a check mark).
extern const char* const kAdapterListHeader;

// The host's management interface, or null when it has none. Library exceptions pass.
std::unique_ptr<Keelson::Network::NetworkInterface> FindManagementInterface();

// Whether the management interface hangs on a fabric port.
bool IsFabricInUse();

// Name of the standard switch or fabric the interface hangs on.
bool GetSwitchName(Keelson::Network::NetworkInterface* nic, std::string& name);

// The following six work on a port group on a standard switch only.
bool GetVlanId(Keelson::Network::NetworkInterface* nic, uint16_t& vlanId);
bool SetVlanId(Keelson::Network::NetworkInterface* nic, uint16_t vlanId);
bool GetMaxActiveUplinks(Keelson::Network::NetworkInterface* nic, uint32_t& count);
// The port group's uplink order, first choice first.
bool GetUplinks(Keelson::Network::NetworkInterface* nic, std::vector<std::string>& uplinks);
// Takes the uplink off the first standard switch, and the first fabric, that hold it; switches
// without it are passed over. Library exceptions from listing the switches pass to the caller.
void DetachUplink(const std::string& uplink);
// Detaches the uplink from whatever switch holds it, then adds it to the interface's switch and
// team.
bool AddUplink(Keelson::Network::NetworkInterface* nic, const std::string& uplink);
// Takes the uplink off the interface's switch and team.
bool RemoveUplink(Keelson::Network::NetworkInterface* nic, const std::string& uplink);

// Team edits of a port group's policy; with flag bit 4 clear the add starts from an empty order.
bool AddUplinkToTeaming(const std::string& uplink, Keelson::Network::PortGroup& portGroup);
bool RemoveUplinkFromTeaming(const std::string& uplink, Keelson::Network::PortGroup& portGroup);
// The same addition on a policy the caller holds (a standard switch's own); changes it in memory.
bool AddUplinkToSwitchTeaming(const std::string& uplink,
                              Keelson::Network::NicTeamingPolicy& policy);

bool GatherStandardSwitches(std::vector<StandardSwitchInfo>& switches);
// All physical NICs, "hwport<n>" names by number, others bytewise.
bool GatherPhysicalNics(std::vector<std::string>& names);
// The order GatherPhysicalNics sorts by.
bool PhysicalNicLess(const std::string& a, const std::string& b);
// Gives every name an entry; a fabric listed after a standard switch wins.
bool GatherUplinkUsers(const std::vector<std::string>& names, UplinkUsers& users);
// Library exceptions from opening the NIC and its PCI device pass to the caller.
AdapterInfo GatherAdapterInfo(const std::string& name, const UplinkUsers& users);

// A row of an adapter list, in markup, fitted to its columns.
std::string FormatAdapterRow(const AdapterInfo& info);
// The plain text of the details page.
std::string FormatAdapterDetails(const AdapterInfo& info);

} // namespace Lanyx
