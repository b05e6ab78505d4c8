#include "network/UsedAdaptersDialog.hpp"

#include "core/Keys.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 11;
constexpr int kTitleHeight = 6;

} // namespace

UsedAdaptersDialog::UsedAdaptersDialog(Frame* owner)
    : Dialog(owner, kWidth, kHeight, kTitleHeight),
      text(contentWindow, 0, 0, contentWindow->GetWidth(), contentWindow->GetHeight(), -1) {}

bool UsedAdaptersDialog::Execute() {
    SetTitle(CatalogueText(Ids::AdaptersWarningTitle));
    SetMessage(CatalogueText(Ids::AdaptersInUse));
    SetFooter(Footers::kOkCancel);
    text.SetText(CatalogueText(Ids::RemoveAdaptersQuestion));
    return AwaitAnswer(Keys::Enter);
}

} // namespace Lanyx
