#include "system/PowerActionDialog.hpp"

#include "host/CommandRunner.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 70;
constexpr int kHeight = 10;
constexpr int kTitleHeight = 7;

} // namespace

PowerActionDialog::PowerActionDialog(Frame* owner, bool graceful, uint32_t titleId,
                                     uint32_t messageId, std::string command)
    : Dialog(owner, kWidth, kHeight, kTitleHeight), graceful(graceful), titleId(titleId),
      messageId(messageId), command(std::move(command)) {}

bool PowerActionDialog::Execute() {
    SetTitle(CatalogueText(titleId));
    SetMessage(CatalogueText(messageId));
    // Guests are stopped first and stay stopped whatever the power command does.
    HaltGuestsAndAutostop(graceful);
    if (RunShell(command) == -1)
        return false;
    // The host goes down around the process; the idle limit still ends the session meanwhile.
    for (;;)
        ReadKey(true);
}

} // namespace Lanyx
