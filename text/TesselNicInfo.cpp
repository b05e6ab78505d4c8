#include "text/TesselNicInfo.hpp"

#include <utility>

namespace Lanyx {

TesselNicInfo::TesselNicInfo(std::string nicName, std::string mac, std::string set,
                             std::string group)
    : name(std::move(nicName)), macAddress(std::move(mac)), portset(std::move(set)),
      portgroup(std::move(group)) {}

std::string TesselNicInfo::GetColumnHeader() {
    return "  {align:padding:8}Name{/align}{align:padding:19}MAC Address{/align}"
           "{align:padding:10}Portset{/align}{align:padding:20}Portgroup{/align}";
}

std::string TesselNicInfo::GetRow() {
    return "{align:padding:8}" + ShortenField(name, 6, 3) + "{/align}" + "{align:padding:19}" +
           ShortenField(macAddress, 17, 14) + "{/align}" + "{align:padding:10}" +
           ShortenField(portset, 8, 5) + "{/align}" + "{align:padding:20}" +
           ShortenField(portgroup, 18, 15) + "{/align}";
}

std::string TesselNicInfo::GetDetailsTitle() {
    return "Tessel NIC Details";
}

std::string TesselNicInfo::GetDetailsHeading() {
    return "Tessel NIC Name: " + name;
}

std::string TesselNicInfo::GetDetails() {
    return "Name: " + name + "\nMAC Address: " + macAddress + "\nPortset: " + portset +
           "\nPortgroup: " + portgroup;
}

} // namespace Lanyx
