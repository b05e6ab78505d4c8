// Lockdown mode of the host agent, switched with one check box. The state is asked when the
// box is built; the caller reads it anew from the host afterwards.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "text/CheckItem.hpp"
#include "text/Dialog.hpp"
#include "text/ItemList.hpp"

namespace Lanyx {

class LockdownDialog : public Dialog {
public:
    explicit LockdownDialog(Frame* owner);
    ~LockdownDialog() override;

    // False on Escape. True after Enter, whether a change ran, failed or was not needed.
    bool Execute() override;

    // The mode as last known here: asked at construction, updated by a change that succeeded.
    bool IsEnabled() const { return enabled; }
    CheckItem* GetLockdownItem() const { return lockdownItem.get(); }

private:
    // Runs one lockdown command of the host agent; true on success, else its stderr is kept.
    static bool RunLockdownCommand(const char* command, std::string& errorText);

    ItemList* itemList = nullptr; // a child window, owned by the window tree
    std::unique_ptr<CheckItem> lockdownItem;
    std::vector<Item*> items;
    bool enabled = false;
};

} // namespace Lanyx
