#include "auth/LockdownDialog.hpp"

#include <cstdint>
#include <string>

#include "core/Keys.hpp"
#include "host/CommandRunner.hpp"
#include "host/Log.hpp"
#include "text/CatalogueIds.hpp"
#include "text/Footers.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 70;
constexpr int kHeight = 11;
constexpr int kTitleHeight = 6;
constexpr int kCapture = 255;

} // namespace

LockdownDialog::LockdownDialog(Frame* owner) : Dialog(owner, kWidth, kHeight, kTitleHeight) {
    // A query that fails counts as "not enabled".
    enabled = HelmqQueryBool("helmsvc/auth/lockdown_is_enabled");
    lockdownItem = std::make_unique<CheckItem>(CatalogueText(Ids::EnableLockdown), enabled);
    items.push_back(lockdownItem.get());
    itemList =
        new ItemList(contentWindow, 0, 0, contentWindow->GetWidth(), contentWindow->GetHeight());
    itemList->SetItems(items);
}

LockdownDialog::~LockdownDialog() = default;

bool LockdownDialog::RunLockdownCommand(const char* command, std::string& errorText) {
    const char* const argv[] = {"helmq", "-U", lanyxUser.c_str(), command, nullptr};
    char out[kCapture];
    char err[kCapture];
    int outLength = kCapture;
    int errLength = kCapture;
    const int result = RunCommand("/bin/helmq", argv, out, &outLength, err, &errLength);
    errorText.assign(err, static_cast<size_t>(errLength));
    return result == 0;
}

bool LockdownDialog::Execute() {
    SetTitle(CatalogueText(Ids::LockdownTitle));
    SetMessage(CatalogueText(Ids::LockdownMessage));
    itemList->Draw();
    SetFooter(Footers::kToggleOkCancel);
    for (bool accepted = false; !accepted;) {
        switch (ReadKey(true)) {
        case ' ':
            lockdownItem->SetChecked(!lockdownItem->IsChecked());
            itemList->Draw();
            break;
        case Keys::Down:
            itemList->SelectNext();
            break;
        case Keys::Up:
            itemList->SelectPrevious();
            break;
        case Keys::Enter:
            accepted = true;
            break;
        case Keys::Escape:
            return false;
        default:
            break;
        }
    }

    const bool ticked = lockdownItem->IsChecked();
    std::string errorText;
    if (ticked && !enabled) {
        if (RunLockdownCommand("helmsvc/auth/lockdown_mode_enter", errorText)) {
            Log(LOG_INFO, "Lockdown mode enabled");
            enabled = true;
        } else {
            Log(LOG_ERR, "Enabling lockdown mode failed with error: %s", errorText.c_str());
        }
    } else if (!ticked && enabled) {
        if (RunLockdownCommand("helmsvc/auth/lockdown_mode_exit", errorText)) {
            Log(LOG_INFO, "Lockdown mode disabled");
            enabled = false;
        } else {
            Log(LOG_ERR, "Disabling lockdown mode failed with error: %s", errorText.c_str());
        }
    }
    return true;
}

} // namespace Lanyx
