#include "restore/NetworkRestoreWindow.hpp"

#include "host/CommandRunner.hpp"
#include "restore/CreatePortGroupDialog.hpp"
#include "restore/CreateXbsDialog.hpp"
#include "restore/MigrateTesselnicDialog.hpp"
#include "restore/RestoreFabricDialog.hpp"
#include "restore/RestoreNetworkDialog.hpp"
#include "restore/SafeModeNetworkDialog.hpp"
#include "restore/switches/Switches.hpp"
#include "text/CatalogueIds.hpp"
#include "text/Footers.hpp"

namespace Lanyx {

namespace {

constexpr const char* kCreateFooter =
    "{color:white}<Enter>{/color} {color:light-grey}Create{align:right}"
    "{color:white}<Esc>{/color} {color:light-grey}Exit{/color}{/align}";
constexpr const char* kMigrateFooter =
    "{color:white}<Enter>{/color} {color:light-grey}Migrate{align:right}"
    "{color:white}<Esc>{/color} {color:light-grey}Exit{/color}{/align}";
constexpr const char* kRestartFooter =
    "{color:white}<Enter>{/color} {color:light-grey}Restart{align:right}"
    "{color:white}<Esc>{/color} {color:light-grey}Exit{/color}{/align}";
constexpr const char* kRestoreFooter =
    "{color:white}<Enter>{/color} {color:light-grey}Restore{/color}{align:right}"
    "{color:white}<Esc>{/color} {color:light-grey}Exit{/color}{/align}";

struct EntryPane {
    uint32_t id;
    uint32_t help;
    const char* footer;
};

constexpr EntryPane kPanes[] = {
    {Ids::CreateSwitchEntry, Ids::CreateSwitchHelp, kCreateFooter},
    {Ids::CreatePortGroupEntry, Ids::CreatePortGroupHelp, kCreateFooter},
    {Ids::MigrateNicEntry, Ids::MigrateNicHelp, kMigrateFooter},
    {Ids::RestoreNetworkEntry, Ids::RestoreNetworkHelp, kRestartFooter},
    {Ids::RestoreSwitchEntry, Ids::RestoreSwitchHelp, kRestoreFooter},
    {Ids::RestoreFabricEntry, Ids::RestoreFabricHelp, kRestoreFooter},
};

} // namespace

NetworkRestoreWindow::NetworkRestoreWindow(Frame* owner)
    : MenuWindow(owner, Ids::NetworkRestoreTitle, Footers::kMenuSelect) {
    // Asked once: the menu shows what held when it opened.
    const bool fabricInUse = IsFabricInUse();
    const bool agentUsable = GridmeshAgentUsable();
    AddEntry(Ids::CreateSwitchEntry);
    AddEntry(Ids::CreatePortGroupEntry);
    AddEntry(Ids::MigrateNicEntry, agentUsable);
    AddEntry(Ids::RestoreNetworkEntry);
    AddEntry(Ids::RestoreSwitchEntry, fabricInUse);
    AddEntry(Ids::RestoreFabricEntry, fabricInUse);
    ShowEntries();
}

void NetworkRestoreWindow::UpdateContent() {
    MenuWindow::UpdateContent();
    SetRightFooter(Footers::kChangeExit);
}

void NetworkRestoreWindow::ShowSelectedEntry() {
    const uint32_t id = GetSelectedEntry();
    SetRightTitle(CatalogueText(id));
    detailText->SetText("");
    SetRightFooter("");
    for (const EntryPane& pane : kPanes) {
        if (pane.id != id)
            continue;
        detailText->SetText(CatalogueText(pane.help));
        SetRightFooter(pane.footer);
    }
    // A list redraw blanks the footer line, so the footer is written with every pane.
    SetLeftFooter(Footers::kMenuSelect);
}

void NetworkRestoreWindow::RunEntry(uint32_t id) {
    switch (id) {
    case Ids::CreateSwitchEntry:
        CreateXbsDialog(this).RunModal();
        break;
    case Ids::CreatePortGroupEntry:
        CreatePortGroupDialog(this).RunModal();
        break;
    case Ids::MigrateNicEntry:
        MigrateTesselnicDialog(this).RunModal();
        break;
    case Ids::RestoreNetworkEntry:
        RestoreNetworkDialog(this).RunModal();
        break;
    case Ids::RestoreSwitchEntry:
        // The fabric is left behind: its entry has nothing more to do while the menu stays open.
        if (SafeModeNetworkDialog(this).RunModal()) {
            GreyEntry(Ids::RestoreSwitchEntry);
            itemList->SelectNext();
        }
        break;
    case Ids::RestoreFabricEntry:
        RestoreFabricDialog(this).RunModal();
        break;
    default:
        return;
    }
    Draw();
}

} // namespace Lanyx
