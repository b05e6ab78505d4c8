// Stops and starts the host's management agents, first having a live core of the host agent
// written on request. Progress shows line by line: finished steps in dark grey, the running one
// in black.
#pragma once
#include <memory>
#include <vector>

#include "text/CheckItem.hpp"
#include "text/Dialog.hpp"
#include "text/ItemList.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class RestartAgentsDialog : public Dialog {
public:
    explicit RestartAgentsDialog(Frame* owner);
    ~RestartAgentsDialog() override;

    // False on Escape; true once the agents were stopped and started and Enter was pressed.
    bool Execute() override;

    // Writes the live core; shares nothing with the dialog and is never waited for.
    static void* LiveCoreThread(void*);

    CheckItem* GetCollectItem() const { return collectItem.get(); }
    TextArea* GetProgressText() const { return progressText; }

private:
    // Starts LiveCoreThread; false (logged) when the thread could not be made.
    static bool StartLiveCore();

    TextArea* progressText = nullptr; // child windows, owned by the window tree
    ItemList* itemList = nullptr;
    std::unique_ptr<CheckItem> collectItem;
    std::vector<Item*> items;
};

} // namespace Lanyx
