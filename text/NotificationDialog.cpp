#include "text/NotificationDialog.hpp"

#include "core/Keys.hpp"

namespace Lanyx {

NotificationDialog::NotificationDialog(Frame* owner, int width, int height, int titleHeight,
                                       std::string title, std::string message)
    : Dialog(owner, width, height, titleHeight), title(std::move(title)),
      message(std::move(message)) {}

bool NotificationDialog::Execute() {
    SetTitle(title);
    SetMessage(message);
    SetFooter(Footers::kOk);
    while (ReadKey(true) != Keys::Enter) {
    }
    return true;
}

} // namespace Lanyx
