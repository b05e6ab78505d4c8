#include "auth/LoginDisabledDialog.hpp"

#include <cstdint>

#include "auth/LoginAccess.hpp"
#include "core/Keys.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 9;
constexpr int kTitleHeight = 6;

} // namespace

LoginDisabledDialog::LoginDisabledDialog(Frame* owner)
    : Dialog(owner, kWidth, kHeight, kTitleHeight) {}

bool LoginDisabledDialog::Execute() {
    SetTitle(CatalogueText(Ids::DeniedTitle));
    SetMessage(HostGreeting(CatalogueText(Ids::DisabledLead)));
    SetFooter(Footers::kOk);
    for (;;) {
        const int key = ReadKey(true);
        if (key == Keys::Enter || key == Keys::Escape)
            break;
    }
    SetActive(false);
    return false;
}

} // namespace Lanyx
