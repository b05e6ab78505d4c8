// The System Customization menu: what the operator sees after a login. Every configuration
// screen opens from here; the support pages and the log viewer are the window's own.
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "text/MenuWindow.hpp"

namespace Lanyx {

class GeneralWindow : public MenuWindow {
public:
    explicit GeneralWindow(Frame* owner);
    ~GeneralWindow() override;

protected:
    void ShowSelectedEntry() override;
    // Runs what Enter on entry `id` opens.
    void RunEntry(uint32_t id) override;
    // Page Up and Down on the support pages, a digit on the log table.
    void HandleOtherKey(uint32_t id, int key) override;
    void LeavingEntry(uint32_t id) override;

private:
    std::string ManagementSummary();
    std::string SupportText() const;
    // Refreshes which logs exist, so that the digits follow the numbers on the screen.
    std::string LogTable();
    // The log under `number` on the screen in the pager; nothing for a number not shown.
    void ViewLog(int number);

    std::vector<std::string> supportPages;
    uint32_t supportPage = 0;
    bool lockdownEnabled = false;
    std::array<bool, 6> logPresent{};
};

} // namespace Lanyx
