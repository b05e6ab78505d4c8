#include "restore/CreatePortGroupDialog.hpp"

#include "host/CommandRunner.hpp"
#include "host/Log.hpp"
#include "restore/StandardSwitchInfoDialog.hpp"
#include "restore/SwitchRows.hpp"
#include "text/CatalogueIds.hpp"
#include "text/LabelItem.hpp"
#include "text/NotificationDialog.hpp"
#include "text/RadioItem.hpp"

namespace Lanyx {

namespace {

constexpr const char* kHeader =
    "    {align:padding:20}Device Name{/align}{align:padding:10}Uplinks{/align}"
    "{align:padding:15}Port Groups{/align}{align:padding:12}Used Ports{/align}"
    "{align:padding:16}Configured Ports{/align}";
// The switch rows follow the name field and the header.
constexpr uint32_t kFirstSwitchOrdinal = 1;

} // namespace

CreatePortGroupDialog::CreatePortGroupDialog(Frame* owner) : FormDialog(owner, 78, 15, 6) {
    if (!GatherStandardSwitches(switches))
        return;
    if (switches.empty()) {
        Log(LOG_ERR, "No standard switches present");
        return;
    }
    CreateList();
    nameItem = AddField(CatalogueText(Ids::PortGroupNameLabel), "", -1, Filters::Printable);
    Add(std::make_unique<LabelItem>(kHeader, false));
    std::vector<RadioItem*> radios;
    for (const StandardSwitchInfo& info : switches)
        radios.push_back(Add(std::make_unique<RadioItem>(FormatSwitchRow(info), false)));
    group = std::make_unique<RadioGroup>(std::move(radios), 0);
    ShowItems();
    ready = true;
}

void CreatePortGroupDialog::Open() {
    SetTitle(CatalogueText(Ids::CreatePortGroupEntry));
    SetMessage(CatalogueText(Ids::CreatePortGroupMessage));
    SetFooter(Footers::kDetailsToggleOkCancel);
}

FormDialog::KeyResult CreatePortGroupDialog::HandleKey(int key) {
    const uint32_t line = list->GetSelectedOrdinal();
    if (line < kFirstSwitchOrdinal || (key != ' ' && key != 'd' && key != 'D'))
        return FormDialog::HandleKey(key);
    const size_t row = line - kFirstSwitchOrdinal;
    if (key == ' ')
        group->Select(row);
    else
        StandardSwitchInfoDialog(this, switches.at(row)).RunModal();
    Redraw();
    return KeyResult::Continue;
}

bool CreatePortGroupDialog::Accept() {
    const std::string name = nameItem->GetValue();
    if (name.empty()) {
        NotificationDialog(this, 43, 8, 5, CatalogueText(Ids::InvalidArgument),
                           CatalogueText(Ids::InvalidPortGroupName))
            .RunModal();
        Redraw();
        return false;
    }
    if (!AddXbarPortGroup(name, switches.at(group->Selected()).name)) {
        NotificationDialog(this, 51, 8, 5, CatalogueText(Ids::OperationFailed),
                           CatalogueText(Ids::CheckSyslog))
            .RunModal();
        Redraw();
        return false;
    }
    NotificationDialog(this, 60, 8, 5, CatalogueText(Ids::OperationSucceeded),
                       CatalogueText(Ids::PortGroupCreated) + name)
        .RunModal();
    return true;
}

} // namespace Lanyx
