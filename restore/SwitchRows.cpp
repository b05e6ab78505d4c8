#include "restore/SwitchRows.hpp"

#include <vector>

#include "text/InfoType.hpp"

namespace Lanyx {

namespace {

std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ",") + name;
    return text;
}

std::string JoinedOrNone(const std::vector<std::string>& names) {
    return names.empty() ? "None" : Joined(names);
}

} // namespace

std::string FormatSwitchRow(const StandardSwitchInfo& info) {
    return "{align:padding:20}" + ShortenField(info.name, 18, 15) + "{/align}{align:padding:10}" +
           ShortenField(Joined(info.uplinks), 8, 5) + "{/align}{align:padding:15}" +
           ShortenField(Joined(info.portGroups), 13, 10) + "{/align}{align:padding:12}" +
           std::to_string(info.usedPorts) + "{/align}{align:padding:16}" +
           std::to_string(info.configuredPorts) + "{/align}  ...";
}

std::string FormatSwitchDetails(const StandardSwitchInfo& info) {
    return "Number of ports: " + std::to_string(info.numPorts) +
           "\nUsed ports: " + std::to_string(info.usedPorts) +
           "\nConfigured ports: " + std::to_string(info.configuredPorts) +
           "\nUplinks: " + JoinedOrNone(info.uplinks) +
           "\nPort groups: " + JoinedOrNone(info.portGroups);
}

} // namespace Lanyx
