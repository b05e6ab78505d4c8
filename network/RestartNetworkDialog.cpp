#include "network/RestartNetworkDialog.hpp"

#include "core/Keys.hpp"
#include "network/DoRestartNetworkDialog.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 70;
constexpr int kHeight = 12;
constexpr int kTitleHeight = 7;

} // namespace

RestartNetworkDialog::RestartNetworkDialog(Frame* owner, Keelson::Network::NetworkInterface* nic)
    : Dialog(owner, kWidth, kHeight, kTitleHeight), interface(nic) {
    questionText = new TextArea(contentWindow, 0, 0, contentWindow->GetWidth(),
                                contentWindow->GetHeight(), -1);
}

bool RestartNetworkDialog::Execute() {
    SetTitle(CatalogueText(Ids::RestartNetworkConfirmTitle));
    SetMessage(CatalogueText(Ids::RestartNetworkConfirmMessage));
    questionText->SetText(CatalogueText(Ids::RestartNetworkQuestion));
    SetFooter(Footers::kF11OkCancel);
    if (!AwaitAnswer(Keys::F11))
        return false;
    DoRestartNetworkDialog(this, interface).RunModal();
    return true;
}

} // namespace Lanyx
