#include "restore/HwportInUseDialog.hpp"

#include "core/Keys.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

} // namespace

HwportInUseDialog::HwportInUseDialog(Frame* owner, AdapterInfo adapter)
    : Dialog(owner, 70, 15, 9), info(std::move(adapter)) {
    text = new TextArea(contentWindow, 2, 0, contentWindow->GetWidth() - 6,
                        contentWindow->GetHeight(), -1);
    text->SetText("Do you wish to detach " + Quoted(info.name) + " from " + Quoted(info.usedBy) +
                  " and use it as an uplink for the new standard switch?");
}

bool HwportInUseDialog::Execute() {
    SetTitle(CatalogueText(Ids::UplinkInUse));
    SetMessage("The chosen uplink " + Quoted(info.name) + " is already in use by " +
               Quoted(info.usedBy) +
               ".\nDo you wish to detach the uplink and attach it to the newly created standard "
               "switch?");
    SetFooter(Footers::kYesNoCancel);
    return AwaitYesNo(detach);
}

} // namespace Lanyx
