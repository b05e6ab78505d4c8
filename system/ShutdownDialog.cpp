#include "system/ShutdownDialog.hpp"

#include <cstdint>

#include "core/Keys.hpp"
#include "host/Log.hpp"
#include "host/Records.hpp"
#include "system/RebootConfirmDialog.hpp"
#include "system/ShutdownConfirmDialog.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 19;
constexpr int kTitleHeight = 13;

constexpr char kFooter[] =
    "{color:black}<F2>{/color} {color:dark-grey}Shut Down{/color}  "
    "{color:black}<F11>{/color} {color:dark-grey}Restart{/color}"
    "{align:right}{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";

} // namespace

ShutdownDialog::ShutdownDialog(Frame* owner) : Dialog(owner, kWidth, kHeight, kTitleHeight) {
    forceItem = std::make_unique<CheckItem>(CatalogueText(Ids::ForceTerminate), false);
    items.push_back(forceItem.get());
    if (contentWindow) {
        itemList = new ItemList(contentWindow, 0, 0, contentWindow->GetWidth(),
                                contentWindow->GetHeight());
        itemList->SetItems(items);
    }
}

ShutdownDialog::~ShutdownDialog() = default;

bool ShutdownDialog::Execute() {
    SetTitle(CatalogueText(Ids::ShutdownTitle));
    SetMessage(CatalogueText(Ids::ShutdownMessage));
    if (itemList)
        itemList->Draw();
    SetFooter(kFooter);
    for (;;) {
        const int key = ReadKey(true);
        // The tick is read at the moment of the key: the power dialogs take it as it stands.
        const bool graceful = !forceItem->IsChecked();
        switch (key) {
        case ' ':
            forceItem->SetChecked(!forceItem->IsChecked());
            if (itemList)
                itemList->Draw();
            break;
        case Keys::F2: {
            // Written before anything runs, so a shutdown that fails still leaves its trace.
            Log(LOG_INFO, "Shutting down host");
            PostEvent(Events::shutdownHost);
            ShutdownConfirmDialog(this, graceful).RunModal();
            break;
        }
        case Keys::F11: {
            Log(LOG_INFO, "Rebooting host");
            PostEvent(Events::rebootHost);
            RebootConfirmDialog(this, graceful).RunModal();
            break;
        }
        case Keys::Escape:
            return false;
        default:
            break;
        }
    }
}

} // namespace Lanyx
