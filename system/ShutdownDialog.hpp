// Shut down or restart the host, reached from the welcome screen through a login. The choice
// is carried out by ShutdownConfirmDialog or RebootConfirmDialog.
#pragma once
#include <memory>
#include <vector>

#include "text/CheckItem.hpp"
#include "text/Dialog.hpp"
#include "text/ItemList.hpp"

namespace Lanyx {

class ShutdownDialog : public Dialog {
public:
    explicit ShutdownDialog(Frame* owner);
    ~ShutdownDialog() override;

    // False on Escape; it comes back from a power command only when that could not start.
    bool Execute() override;

    CheckItem* GetForceItem() const { return forceItem.get(); }

private:
    ItemList* itemList = nullptr; // a child window, owned by the window tree
    std::unique_ptr<CheckItem> forceItem;
    std::vector<Item*> items;
};

} // namespace Lanyx
