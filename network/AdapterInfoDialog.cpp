#include "network/AdapterInfoDialog.hpp"

#include "core/Keys.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 70;
constexpr int kHeight = 13;
constexpr int kTitleHeight = 5;

} // namespace

AdapterInfoDialog::AdapterInfoDialog(Frame* owner, AdapterInfo adapter)
    : Dialog(owner, kWidth, kHeight, kTitleHeight),
      text(contentWindow, 0, 0, contentWindow->GetWidth(), contentWindow->GetHeight(), -1),
      info(std::move(adapter)) {}

bool AdapterInfoDialog::Execute() {
    SetTitle("Adapter Details");
    SetMessage("Device Name: " + info.name);
    SetFooter(Footers::kOk);
    text.SetText(FormatAdapterDetails(info));
    while (ReadKey(true) != Keys::Enter) {
    }
    return true;
}

} // namespace Lanyx
