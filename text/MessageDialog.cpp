#include "text/MessageDialog.hpp"

#include "core/Keys.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 70;
constexpr int kHeight = 10;
constexpr int kTitleHeight = 7;

} // namespace

MessageDialog::MessageDialog(Frame* owner, uint32_t titleId, uint32_t messageId)
    : MessageDialog(owner, titleId, std::string()) {
    if (strings) {
        message = strings->GetString(messageId);
    }
}

MessageDialog::MessageDialog(Frame* owner, uint32_t titleId, std::string message)
    : Dialog(owner, kWidth, kHeight, kTitleHeight), titleId(titleId), message(std::move(message)) {}

bool MessageDialog::Execute() {
    SetTitle(CatalogueText(titleId));
    SetMessage(message);
    SetFooter(Footers::kOk);
    while (ReadKey(true) != Keys::Enter) {
    }
    return true;
}

} // namespace Lanyx
