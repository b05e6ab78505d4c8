#include "restore/RestoreFabricDialog.hpp"

#include <cstdlib>
#include <ctime>

#include "core/Keys.hpp"
#include "host/Log.hpp"
#include "restore/HostLocalPort.hpp"
#include "restore/NoUplinksDialog.hpp"
#include "restore/UplinksDialog.hpp"
#include "restore/UsedUplinksDialog.hpp"
#include "restore/switches/Switches.hpp"
#include "text/CatalogueIds.hpp"
#include "text/LabelItem.hpp"
#include "text/MessageDialog.hpp"

namespace Lanyx {

namespace {

namespace KN = Keelson::Network;
using Keelson::Lib::KeelsonException;

constexpr uint32_t kUplinksLine = 1;
constexpr uint32_t kVlanLine = 2;

// Every property of the old port the new one takes over, in the order the library expects them.
void ClonePort(const KN::FabricPort& from, KN::FabricPort& to) {
    to.SetBlocked(from.GetBlocked());
    to.SetTxUplink(from.GetTxUplink());
    to.SetTeamingPolicy(from.GetTeamingPolicy());
    to.SetIpfixEnabled(from.GetIpfixEnabled());
    to.SetSecurityPolicy(from.GetSecurityPolicy());
    to.SetShapingPolicy(true, from.GetShapingPolicy(true));
    to.SetShapingPolicy(false, from.GetShapingPolicy(false));
    to.SetPortPersistencePath(from.GetPortPersistencePath());
    to.SetVendorData(16, from.GetVendorData(16));
    to.SetVendorData(16, from.GetVendorBinaryData(16));
    to.SetOverlayParams(from.GetOverlayParams());
    to.SetResPoolsCfg(from.GetResPoolsCfg());
    to.SetResPoolAssoc(from.GetResPoolAssoc());
}

// Explicit failover over the chosen uplinks, everything else inherited from the port group.
KN::FabricPortTeamPolicy TeamOver(const std::vector<std::string>& uplinks) {
    KN::FabricPortTeamPolicy team;
    team.policy = 3;
    team.notifySwitches = 1;
    team.policyInherited = 1;
    team.uplinksInherited = 1;
    team.failureInherited = 1;
    team.activeUplinks = uplinks;
    return team;
}

} // namespace

RestoreFabricDialog::RestoreFabricDialog(Frame* owner) : FormDialog(owner, 78, 15, 6) {
    std::string interfaceName;
    std::string portId;
    uint16_t vlan = 0;
    try {
        const std::unique_ptr<KN::NetworkInterface> nic = FindManagementInterface();
        if (!nic)
            throw KeelsonException("Could not find the management network");
        std::unique_ptr<KN::ConnectionPoint> point(nic->GetConnectionPoint());
        if (auto* fabricPort = dynamic_cast<KN::FabricPort*>(point.get())) {
            point.release();
            port.reset(fabricPort);
        } else {
            throw KeelsonException("Unable to find fabric");
        }
        const std::string name = nic->GetInterfaceName();
        const std::string id = port->GetFabricPortId();
        vlan = port->GetVlanPolicy().vlanId;
        interfaceName = name;
        portId = id;
    } catch (const KeelsonException& e) {
        Log(LOG_ERR, "Failed to get Management Interface: %s", e.what());
        vlan = 0;
    }

    CreateList();
    Add(std::make_unique<LabelItem>("Management Interface - " + interfaceName, false));
    Add(std::make_unique<LabelItem>("Current FabricPort - " + portId, false));
    unblockItem = Add(std::make_unique<CheckItem>(CatalogueText(Ids::RestoreBlocked), false));
    Add(std::make_unique<LabelItem>(CatalogueText(Ids::SelectFabricUplinks), true));
    vlanItem =
        AddField(CatalogueText(Ids::InvalidFabricVlan), std::to_string(vlan), 5, Filters::Digits);
}

void RestoreFabricDialog::Open() {
    SetTitle(CatalogueText(Ids::RestoreFabricTitle));
    SetMessage(CatalogueText(Ids::RestoreFabricMessage));
    ShowItems();
    SetFooter(Footers::kF11OkCancel);
}

FormDialog::KeyResult RestoreFabricDialog::HandleKey(int key) {
    const uint32_t line = list->GetSelectedOrdinal();
    switch (key) {
    case ' ':
        if (line == 0) {
            unblock = !unblock;
            unblockItem->SetChecked(unblock);
            Redraw();
        }
        return KeyResult::Continue;
    case Keys::Enter:
        if (line == kUplinksLine) {
            ChooseUplinks();
            Redraw();
        }
        return KeyResult::Continue;
    case Keys::F11:
        if (selectedUplinks.empty() && !UsedUplinksDialog(this).RunModal()) {
            Redraw();
            return KeyResult::Continue;
        }
        RestorePort();
        return KeyResult::Accept;
    default:
        return FormDialog::HandleKey(key);
    }
}

std::vector<std::string> RestoreFabricDialog::GatherUplinks() {
    std::vector<std::string> uplinks;
    if (!port) {
        Log(LOG_ERR, "Unable to get fabric");
        return uplinks;
    }
    const std::unique_ptr<KN::FabricSwitch> fabric(port->GetFabric());
    if (!fabric)
        return uplinks;
    if (!fabric->IsZephoraFabric()) {
        MessageDialog(this, Ids::RestoreFabricErrorTitle, Ids::RestoreFabricThirdParty).RunModal();
        return uplinks;
    }
    for (const auto& [nic, param] : fabric->GetUplinkPorts()) {
        const std::unique_ptr<KN::FabricPort> uplinkPort(fabric->GetFabricPort(param.portId));
        if (uplinkPort)
            uplinks.push_back(uplinkPort->GetName());
    }
    return uplinks;
}

void RestoreFabricDialog::ChooseUplinks() {
    const std::vector<std::string> uplinks = GatherUplinks();
    if (uplinks.empty()) {
        NoUplinksDialog(this).RunModal();
        return;
    }
    UplinksDialog choice(this, port.get(), selectedUplinks, uplinks);
    if (choice.RunModal())
        selectedUplinks = choice.GetSelected();
}

void RestoreFabricDialog::RestorePort() {
    if (!port) {
        Log(LOG_ERR, "Unable to get fabric");
        return;
    }
    const std::unique_ptr<KN::FabricSwitch> fabric(port->GetFabric());
    if (fabric && !fabric->IsZephoraFabric()) {
        MessageDialog(this, Ids::RestoreFabricErrorTitle, Ids::RestoreFabricThirdParty).RunModal();
        return;
    }
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    const std::string suffix =
        Keelson::Misc::StrPrintf("#%ld", static_cast<long>(std::rand() % 100000));
    const std::string newId = HostLocalPortId(port->GetFabricPortId(), suffix);
    const KN::FabricPortParam param{port->GetFabricId(), newId, 1};

    std::unique_ptr<KN::FabricPort> created;
    try {
        const std::optional<uint16_t> vlan = FabricVlan(vlanItem->GetValue());
        if (!vlan)
            throw KeelsonException("Invalid FabricPort vlan specified. Valid range is 0-4094.");
        created.reset(TesselCtl::Network::FabricPortImpl::CreateFabricPort(param, newId));
        ClonePort(*port, *created);
        created->SetVlanPolicy(KN::FabricPortVlanPolicy{0, *vlan, {}});
        if (unblock)
            created->SetBlocked(false);
        created->SetTeamingPolicy(TeamOver(selectedUplinks));
        const std::unique_ptr<KN::NetworkInterface> nic = FindManagementInterface();
        if (!nic)
            throw KeelsonException("Could not find the management network");
        nic->ConnectTo(*created, false);
    } catch (const KeelsonException& e) {
        // The one step taken back: a port made here that the interface never reached.
        if (created) {
            try {
                created->Destroy();
            } catch (const KeelsonException&) {
            }
        }
        Log(LOG_ERR, "Unable to create Host Local Port: %s", e.what());
        MessageDialog(this, Ids::RestoreFabricErrorTitle, Ids::RestoreFabricFailed).RunModal();
    }
}

} // namespace Lanyx
