// One port group as a row of a selectable list, with its details page.
#pragma once
#include <cstdint>
#include <string>

#include "text/InfoType.hpp"

namespace Lanyx {

class PortGroupInfo : public InfoType {
public:
    PortGroupInfo(std::string name, std::string switchName, int64_t activeClients, int64_t vlanId);

    std::string GetColumnHeader() override;
    std::string GetRow() override;
    std::string GetDetailsTitle() override;
    std::string GetDetailsHeading() override;
    std::string GetDetails() override;

    const std::string& Name() const { return name; }
    const std::string& SwitchName() const { return switchName; }
    int64_t ActiveClients() const { return activeClients; }
    int64_t VlanId() const { return vlanId; }

private:
    std::string name;
    std::string switchName;
    int64_t activeClients;
    int64_t vlanId;
};

} // namespace Lanyx
