// One kernel network interface as a row of a selectable list, with its details page.
#pragma once
#include <string>

#include "text/InfoType.hpp"

namespace Lanyx {

class TesselNicInfo : public InfoType {
public:
    TesselNicInfo(std::string name, std::string macAddress, std::string portset,
                  std::string portgroup);

    std::string GetColumnHeader() override;
    std::string GetRow() override;
    std::string GetDetailsTitle() override;
    std::string GetDetailsHeading() override;
    std::string GetDetails() override;

    const std::string& Name() const { return name; }
    const std::string& Portset() const { return portset; }
    const std::string& Portgroup() const { return portgroup; }

private:
    std::string name;
    std::string macAddress;
    std::string portset;   // "N/A" when connected to none
    std::string portgroup; // empty or "N/A" when it has none
};

} // namespace Lanyx
