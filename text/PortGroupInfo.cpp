#include "text/PortGroupInfo.hpp"

#include <utility>

namespace Lanyx {

PortGroupInfo::PortGroupInfo(std::string groupName, std::string switchOfGroup, int64_t clients,
                             int64_t vlan)
    : name(std::move(groupName)), switchName(std::move(switchOfGroup)), activeClients(clients),
      vlanId(vlan) {}

std::string PortGroupInfo::GetColumnHeader() {
    return "  {align:padding:20}Portgroup Name{/align}{align:padding:16}Virtual Switch{/align}"
           "{align:padding:16}Active Clients{/align}{align:padding:7}VLAN ID{/align}";
}

std::string PortGroupInfo::GetRow() {
    // The counts are never cut: a VLAN id has at most four digits.
    return "{align:padding:20}" + ShortenField(name, 18, 15) + "{/align}" + "{align:padding:16}" +
           ShortenField(switchName, 14, 11) + "{/align}" + "{align:padding:16}" +
           std::to_string(activeClients) + "{/align}" + "{align:padding:7}" +
           std::to_string(vlanId) + "{/align}";
}

std::string PortGroupInfo::GetDetailsTitle() {
    return "Portgroup Details";
}

std::string PortGroupInfo::GetDetailsHeading() {
    return "Portgroup Name: " + name;
}

std::string PortGroupInfo::GetDetails() {
    return "Name: " + name + "\nVirtual Switch: " + switchName +
           "\nActive Clients: " + std::to_string(activeClients) +
           "\nVLAN ID: " + std::to_string(vlanId);
}

} // namespace Lanyx
