#include "restore/MigrateTesselnicDialog.hpp"

#include <vector>

#include "core/Keys.hpp"
#include "host/CommandRunner.hpp"
#include "host/Log.hpp"
#include "restore/KernelNicRows.hpp"
#include "text/CatalogueIds.hpp"
#include "text/LabelItem.hpp"
#include "text/NotificationDialog.hpp"

namespace Lanyx {

namespace {

constexpr const char* kFooter = "{align:left}{color:black}<D>{/color} {color:dark-grey}View "
                                "Details{/color}  {color:black}<Left/Right>{/color} "
                                "{color:dark-grey}Change Selection{/color}  {/align}{align:right}  "
                                "{color:black}<Enter>{/color} "
                                "{color:dark-grey}OK{/color}  {color:black}<Esc>{/color} "
                                "{color:dark-grey}Cancel{/color}{/align}";

// A stopped agent is started again on every way out of the move, an idle time-out included.
class AgentRestart {
public:
    AgentRestart() { GridmeshAgentStop(stopped); }
    AgentRestart(const AgentRestart&) = delete;
    AgentRestart& operator=(const AgentRestart&) = delete;
    ~AgentRestart() { GridmeshAgentStart(stopped); }

private:
    bool stopped = false;
};

} // namespace

MigrateTesselnicDialog::MigrateTesselnicDialog(Frame* owner) : FormDialog(owner, 85, 15, 6) {
    std::vector<PortGroupInfo> portGroups;
    std::vector<TesselNicInfo> nics;
    if (!GatherPortGroups(portGroups) || !GatherTesselNics(nics))
        return;
    if (portGroups.empty() || nics.empty()) {
        missing = portGroups.empty() ? "No port groups present" : "No Tessel NICs present";
        Log(LOG_ERR, "%s", missing.c_str());
        return;
    }
    CreateList();
    Add(std::make_unique<LabelItem>(portGroups.front().GetColumnHeader(), false));
    portGroupItem = Add(std::make_unique<PortGroupCarousel>(this, std::move(portGroups)));
    Add(std::make_unique<LabelItem>("", false));
    Add(std::make_unique<LabelItem>(nics.front().GetColumnHeader(), false));
    nicItem = Add(std::make_unique<NicCarousel>(this, std::move(nics)));
    ShowItems();
    ready = true;
}

bool MigrateTesselnicDialog::Prepare() {
    if (!ready && !missing.empty()) {
        NotificationDialog(this, 51, 8, 5, CatalogueText(Ids::OperationFailed), missing).RunModal();
    }
    return ready;
}

void MigrateTesselnicDialog::Open() {
    SetTitle(CatalogueText(Ids::MigrateNicEntry));
    SetMessage(CatalogueText(Ids::MigrateNicMessage));
    SetFooter(kFooter);
}

FormDialog::KeyResult MigrateTesselnicDialog::HandleKey(int key) {
    const bool onPortGroups = list->GetSelectedOrdinal() == 0;
    switch (key) {
    case Keys::Left:
        onPortGroups ? portGroupItem->Previous() : nicItem->Previous();
        break;
    case Keys::Right:
        onPortGroups ? portGroupItem->Next() : nicItem->Next();
        break;
    case 'd':
    case 'D':
        onPortGroups ? portGroupItem->ShowDetails() : nicItem->ShowDetails();
        break;
    default:
        return FormDialog::HandleKey(key);
    }
    Redraw();
    return KeyResult::Continue;
}

bool MigrateTesselnicDialog::Accept() {
    const std::string portGroup = portGroupItem->Current().Name();
    const std::string nic = nicItem->Current().Name();
    const AgentRestart agent;
    if (!GridmeshCfgMove(portGroup, nic)) {
        NotificationDialog(this, 51, 8, 5, CatalogueText(Ids::OperationFailed),
                           CatalogueText(Ids::CheckSyslog))
            .RunModal();
        Redraw();
        return false;
    }
    NotificationDialog(this, 75, 10, 7, CatalogueText(Ids::OperationSucceeded),
                       "Successfully migrated " + nic + " to " + portGroup)
        .RunModal();
    ShowCursor(false);
    return true;
}

} // namespace Lanyx
