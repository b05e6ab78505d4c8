#include "text/InfoDialog.hpp"

#include "core/Keys.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 70;
constexpr int kHeight = 15;
constexpr int kTitleHeight = 5;

} // namespace

InfoDialog::InfoDialog(Frame* owner, const std::string& body, const std::string& title,
                       const std::string& message, const std::string& footer)
    : Dialog(owner, kWidth, kHeight, kTitleHeight),
      text(contentWindow, 0, 0, contentWindow->GetWidth(), contentWindow->GetHeight(), -1) {
    text.SetText(body);
    SetTitle(title);
    SetMessage(message);
    SetFooter(footer);
}

bool InfoDialog::Execute() {
    while (ReadKey(true) != Keys::Enter) {
    }
    return true;
}

} // namespace Lanyx
