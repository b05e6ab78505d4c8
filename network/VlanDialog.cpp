#include "network/VlanDialog.hpp"

#include <string>

#include "text/CatalogueIds.hpp"
#include "text/Footers.hpp"
#include "text/MessageDialog.hpp"

namespace Lanyx {

namespace {

constexpr int kFieldWidth = 5;

// The field takes at most a few digits, so the number cannot overflow.
unsigned long Parse(const std::string& text) {
    return text.empty() ? 0 : std::stoul(text);
}

} // namespace

VlanDialog::VlanDialog(Frame* owner, uint16_t vlanId) : FormDialog(owner, 70, 12, 6) {
    CreateList(0, 1);
    vlanItem = AddField(CatalogueText(Ids::VlanLabel), vlanId == 0 ? "" : std::to_string(vlanId),
                        kFieldWidth, Filters::Digits);
    ShowItems();
}

uint16_t VlanDialog::GetValue() const {
    return static_cast<uint16_t>(Parse(vlanItem->GetValue()));
}

void VlanDialog::Open() {
    SetTitle(CatalogueText(Ids::VlanEntry));
    SetMessage(CatalogueText(Ids::VlanMessage));
    SetFooter(Footers::kOkCancel);
}

bool VlanDialog::Accept() {
    const std::string& text = vlanItem->GetValue();
    if (text.empty())
        return true;
    // "0" is refused: only the empty field means no VLAN.
    const unsigned long value = Parse(text);
    if (value < 1 || value > 4095) {
        Reject(0, Ids::InvalidVlanTitle, Ids::InvalidVlan);
        return false;
    }
    if (value == 4095)
        MessageDialog(this, Ids::Warning, Ids::Vlan4095Warning).RunModal();
    return true;
}

} // namespace Lanyx
