#include "restore/KernelNicRows.hpp"

#include <memory>

#include "host/GuardedStep.hpp"
#include "host/Log.hpp"
#include "keelson/Network.hpp"

namespace Lanyx {

namespace KN = Keelson::Network;

bool GatherPortGroups(std::vector<PortGroupInfo>& rows) {
    return LoggedStep("", [&] {
        for (const std::unique_ptr<KN::PortGroup>& group :
             TesselCtl::Network::NetworkInfoImpl().GetAllPortGroups(0))
            rows.emplace_back(group->GetName(), group->GetPortsetName(), group->GetActiveClients(),
                              group->GetVlanId());
    });
}

bool GatherTesselNics(std::vector<TesselNicInfo>& rows) {
    return LoggedStep("Gathering Tessel NIC list failed: ", [&] {
        for (const std::unique_ptr<KN::NetworkInterface>& nic :
             TesselCtl::Network::TesselNicInfoImpl().GetTesselNics(0)) {
            const std::unique_ptr<KN::ConnectionPoint> point(nic->GetConnectionPoint());
            std::string name = nic->GetInterfaceName();
            std::string mac = nic->GetMacAddress().GetStringAddress();
            std::string portset = point ? point->GetPortsetName() : "";
            if (portset.empty())
                portset = "N/A";
            std::string portgroup = "N/A";
            if (point && point->GetConnecteeType() == KN::CONNECTEE_PORTGROUP)
                portgroup = point->GetPortGroupName();
            rows.emplace_back(std::move(name), std::move(mac), std::move(portset),
                              std::move(portgroup));
        }
    });
}

} // namespace Lanyx
