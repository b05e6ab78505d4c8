#include "restore/UplinksDialog.hpp"

#include <algorithm>

#include "host/Log.hpp"
#include "text/CatalogueIds.hpp"
#include "text/LabelItem.hpp"

namespace Lanyx {

UplinksDialog::UplinksDialog(Frame* owner, Keelson::Network::FabricPort* port,
                             std::vector<std::string> selected, std::vector<std::string> uplinks)
    : FormDialog(owner, 78, 15, 5), port(port), selected(std::move(selected)),
      uplinks(std::move(uplinks)) {
    CreateList();
    Add(std::make_unique<LabelItem>("    {align:padding:20}Uplink Name{/align}", false));
    for (const std::string& uplink : this->uplinks) {
        const bool ticked =
            std::find(this->selected.begin(), this->selected.end(), uplink) != this->selected.end();
        checks.push_back(Add(std::make_unique<CheckItem>(uplink, ticked)));
    }
}

bool UplinksDialog::Prepare() {
    if (!port) {
        Log(LOG_ERR, "Unable to get fabric");
        return false;
    }
    return true;
}

void UplinksDialog::Open() {
    SetTitle(CatalogueText(Ids::FabricUplinksTitle));
    SetMessage(CatalogueText(Ids::FabricUplinksMessage));
    SetFooter(Footers::kToggleOkCancel);
    ShowItems();
}

FormDialog::KeyResult UplinksDialog::HandleKey(int key) {
    if (key != ' ')
        return FormDialog::HandleKey(key);
    const uint32_t line = list->GetSelectedOrdinal();
    if (line < checks.size()) {
        CheckItem* check = checks[line];
        const std::string& uplink = uplinks[line];
        if (check->IsChecked())
            selected.erase(std::remove(selected.begin(), selected.end(), uplink), selected.end());
        else
            selected.push_back(uplink);
        check->SetChecked(!check->IsChecked());
        Redraw();
    }
    return KeyResult::Continue;
}

} // namespace Lanyx
