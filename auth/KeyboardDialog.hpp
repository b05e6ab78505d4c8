// The choice of the console's keyboard layout among those the host knows. It sits with the login,
// which offers it before anyone has logged in, so that a password can be typed on the right
// layout; the menu opens it too.
#pragma once
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "keelson/System.hpp"
#include "text/FormDialog.hpp"
#include "text/RadioGroup.hpp"

namespace Lanyx {

class KeyboardDialog : public FormDialog {
public:
    explicit KeyboardDialog(Frame* owner);

    // Index of the ticked layout; the first when none is.
    size_t GetChosen() const { return chosen; }
    const std::vector<std::string>& GetLayouts() const { return layouts; }

protected:
    void Open() override;
    KeyResult HandleKey(int key) override;
    // Makes the ticked layout work on this console, then stores it.
    bool Accept() override;

private:
    TesselCtl::System::SystemInfoImpl systemInfo;
    std::vector<std::string> layouts;
    std::unique_ptr<RadioGroup> group;
    size_t chosen = 0;
};

} // namespace Lanyx
