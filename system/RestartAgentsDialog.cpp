#include "system/RestartAgentsDialog.hpp"

#include <cstdint>
#include <cstring>
#include <string>

#include <pthread.h>

#include "core/Keys.hpp"
#include "host/HostRoot.hpp"
#include "host/Log.hpp"
#include "host/Records.hpp"
#include "keelson/Lib.hpp"
#include "keelson/System.hpp"
#include "keelson/Util.hpp"
#include "text/CatalogueIds.hpp"
#include "text/Footers.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 71;
constexpr int kHeight = 20;
constexpr int kTitleHeight = 9;

// The agent script's lines; the script and its shell are the host's.
std::string AgentsLine(const char* action) {
    return HostPath("/bin/sh") + " " + HostPath("/sbin/agents.sh") + " " + action;
}

// Finished lines in dark grey (left open in `done`), the running step in black.
std::string Running(const std::string& done, const char* step) {
    return done + "{/color}{color:black}" + step + "{/color}";
}

} // namespace

RestartAgentsDialog::RestartAgentsDialog(Frame* owner)
    : Dialog(owner, kWidth, kHeight, kTitleHeight) {
    progressText = new TextArea(contentWindow, 1, 2, kWidth - 8, 3, -1);
    collectItem = std::make_unique<CheckItem>(CatalogueText(Ids::CollectLiveCore), false);
    items.push_back(collectItem.get());
    itemList = new ItemList(contentWindow, 0, 0, kWidth - 4, 1);
    itemList->SetItems(items);
}

RestartAgentsDialog::~RestartAgentsDialog() = default;

void* RestartAgentsDialog::LiveCoreThread(void*) {
    try {
        Log(LOG_INFO, "Executing tesseltrace -c against helmd");
        const int result = TesselCtl::Util::TesselCtl_Exec(
            HostPath("/sbin/tesseltrace") + " -w -n helmd -o helmd-restart% -d /var/log/", false,
            true, false);
        if (result == 0)
            TesselCtl::System::SystemInfoImpl().SetSystemAlert("Helmd core dump completed");
        else
            Log(LOG_ERR, "tesseltrace failed, probably helmd was down");
    } catch (const Keelson::Lib::KeelsonException& e) {
        Log(LOG_ERR, "%s", e.what());
    }
    return nullptr;
}

bool RestartAgentsDialog::StartLiveCore() {
    pthread_attr_t attributes;
    int error = pthread_attr_init(&attributes);
    if (error == 0) {
        pthread_t thread;
        // Neither joined nor detached: it ends by itself, or with the process.
        error = pthread_create(&thread, &attributes, LiveCoreThread, nullptr);
        pthread_attr_destroy(&attributes);
    }
    if (error != 0)
        Log(LOG_ERR, "Failed to create live core generation thread: %s", std::strerror(error));
    return error == 0;
}

bool RestartAgentsDialog::Execute() {
    SetTitle(CatalogueText(Ids::RestartAgentsConfirmTitle));
    SetMessage(CatalogueText(Ids::RestartAgentsConfirmMessage));
    SetFooter(Footers::kF11OkCancel);
    progressText->SetText(CatalogueText(Ids::RestartAgentsQuestion));
    itemList->Draw();
    std::string doneText;
    std::string shownText;
    doneText.reserve(150);
    shownText.reserve(180);
    doneText = "{color:dark-grey}";
    for (bool accepted = false; !accepted;) {
        switch (ReadKey(true)) {
        case ' ':
            collectItem->SetChecked(!collectItem->IsChecked());
            itemList->Draw();
            break;
        case Keys::F11:
            accepted = true;
            break;
        case Keys::Escape:
            return false;
        default:
            break;
        }
    }

    SetFooter("");
    Log(LOG_INFO, "Restarting host agents");
    PostEvent(Events::restartingHostAgents);
    // "Done." stands for the start of the collection, which goes on beside the restart.
    if (collectItem->IsChecked() && StartLiveCore()) {
        doneText += std::string(CatalogueText(Ids::CollectingLiveCore)) + " Done.\n";
        progressText->SetText(doneText);
    }

    shownText = Running(doneText, CatalogueText(Ids::StoppingAgents));
    progressText->SetText(shownText);
    // The script's outcome is not looked at: both steps read "Done." in any case.
    TesselCtl::Util::TesselCtl_Exec(AgentsLine("stop"), false, true, false);
    doneText += std::string(CatalogueText(Ids::StoppingAgents)) + " Done.\n";

    shownText = Running(doneText, CatalogueText(Ids::StartingAgents));
    progressText->SetText(shownText);
    TesselCtl::Util::TesselCtl_Exec(AgentsLine("start"), false, true, false);
    doneText += std::string(CatalogueText(Ids::StartingAgents)) + " Done.{/color}";
    progressText->SetText(doneText);

    SetFooter(Footers::kOk);
    while (ReadKey(true) != Keys::Enter) {
    }
    return true;
}

} // namespace Lanyx
