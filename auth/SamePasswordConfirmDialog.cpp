#include "auth/SamePasswordConfirmDialog.hpp"

#include "core/Keys.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 70;
constexpr int kHeight = 8;
constexpr int kTitleHeight = 5;

} // namespace

SamePasswordConfirmDialog::SamePasswordConfirmDialog(Frame* owner)
    : Dialog(owner, kWidth, kHeight, kTitleHeight) {}

bool SamePasswordConfirmDialog::Execute() {
    SetTitle(CatalogueText(Ids::PasswordWarningTitle));
    SetMessage(CatalogueText(Ids::SamePassword));
    SetFooter(Footers::kConfirmCancel);
    return AwaitAnswer(Keys::Enter);
}

} // namespace Lanyx
