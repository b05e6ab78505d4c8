// The console's own idle limit, kept in a host advanced option; a new limit holds from the next
// key.
#pragma once
#include <cstdint>

#include "text/FormDialog.hpp"

namespace Lanyx {

class LanyxTimeoutDialog : public FormDialog {
public:
    // Reads the option as the input loop does; no option, or one that is no integer, gives 600.
    explicit LanyxTimeoutDialog(Frame* owner);

    uint32_t GetTimeoutSeconds() const { return timeoutSeconds; }
    InputItem* GetTimeoutItem() const { return timeoutItem; }

protected:
    void Open() override;
    // Writes a changed value and takes it up at once; an invalid one is named. Closes either way.
    bool Accept() override;

private:
    uint32_t timeoutSeconds = 0;
    InputItem* timeoutItem = nullptr;
};

} // namespace Lanyx
