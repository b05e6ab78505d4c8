#include "system/LanyxTimeoutDialog.hpp"

#include <memory>
#include <string>

#include "core/InputLoop.hpp"
#include "host/Log.hpp"
#include "keelson/Adv.hpp"
#include "system/TimeoutField.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 70;
constexpr int kHeight = 15;
constexpr int kTitleHeight = 9;
constexpr int kFieldWidth = 5;
constexpr uint32_t kDefaultSeconds = 600;
constexpr char kOption[] = "/UserVars/LanyxTimeOut";

// The option's integer side; null when the host has no such option or it holds no integer.
// Library failures are not caught here.
std::unique_ptr<Keelson::Adv::AdvancedOption> FindTimeoutOption() {
    return std::unique_ptr<Keelson::Adv::AdvancedOption>(
        TesselCtl::Adv::AdvancedOptionImpl::FindOption(kOption));
}

} // namespace

LanyxTimeoutDialog::LanyxTimeoutDialog(Frame* owner)
    : FormDialog(owner, kWidth, kHeight, kTitleHeight) {
    timeoutSeconds = kDefaultSeconds;
    const std::unique_ptr<Keelson::Adv::AdvancedOption> option = FindTimeoutOption();
    if (auto* integer = dynamic_cast<Keelson::Adv::AdvancedIntegerOption*>(option.get()))
        timeoutSeconds = static_cast<uint32_t>(integer->GetValue());
    CreateList(0, 2);
    timeoutItem = AddField(CatalogueText(Ids::LanyxTimeoutLabel),
                           std::to_string(timeoutSeconds / 60), kFieldWidth, Filters::Digits);
    ShowItems();
}

void LanyxTimeoutDialog::Open() {
    SetTitle(CatalogueText(Ids::LanyxTimeoutTitle));
    SetMessage(CatalogueText(Ids::LanyxTimeoutMessage));
    SetFooter(Footers::kOkCancel);
}

bool LanyxTimeoutDialog::Accept() {
    const std::optional<unsigned long> minutes = TimeoutMinutes(timeoutItem->GetValue());
    if (!minutes)
        return true;
    if (*minutes > kMaxTimeoutMinutes) {
        Reject(0, Ids::InvalidTimeoutTitle, Ids::InvalidTimeout);
        return true;
    }
    if (*minutes * 60 == timeoutSeconds)
        return true;
    const std::unique_ptr<Keelson::Adv::AdvancedOption> option = FindTimeoutOption();
    if (auto* integer = dynamic_cast<Keelson::Adv::AdvancedIntegerOption*>(option.get()))
        integer->SetValue(static_cast<int64_t>(*minutes * 60));
    // The new limit counts from the next key on.
    ReadIdleTimeout();
    if (*minutes == 0)
        Log(LOG_INFO, "Disabled Lanyx timeout");
    else
        Log(LOG_INFO, "Modified Lanyx timeout to %d minutes", static_cast<int>(*minutes));
    return true;
}

} // namespace Lanyx
