// The host shell's two time-outs: how long after it is enabled a login is allowed (availability)
// and how long an interactive session may sit idle. Read and written through the host's tools.
#pragma once
#include <cstdint>

#include "text/FormDialog.hpp"

namespace Lanyx {

class ShellTimeoutDialog : public FormDialog {
public:
    // Reads both values; a value the host does not give as a number counts as 0.
    explicit ShellTimeoutDialog(Frame* owner);

    uint32_t GetAvailabilityMinutes() const { return availabilityMinutes; }
    uint32_t GetIdleMinutes() const { return idleMinutes; }
    InputItem* GetAvailabilityItem() const { return availabilityItem; }
    InputItem* GetIdleItem() const { return idleItem; }

protected:
    void Open() override;
    // Applies each field that changed; an invalid one is named and skipped, the other still
    // applies, and the dialog closes either way.
    bool Accept() override;

private:
    struct Setting;
    void Apply(const Setting& setting, const InputItem& field, uint32_t current,
               bool restartServices);

    uint32_t availabilityMinutes = 0;
    uint32_t idleMinutes = 0;
    InputItem* availabilityItem = nullptr;
    InputItem* idleItem = nullptr;
};

} // namespace Lanyx
