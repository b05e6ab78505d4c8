// The System Customization menu: what the operator sees after a login. Every configuration
// screen opens from here; the support pages and the log viewer are the window's own.
#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "text/Item.hpp"
#include "text/RootWindow.hpp"

namespace Lanyx {

class GeneralWindow : public RootWindow {
public:
    explicit GeneralWindow(Frame* owner);
    ~GeneralWindow() override;

    // True when the operator logs out with Escape.
    bool Execute() override;
    void Reload() override;
    void UpdateContent() override;

    // A line of the menu labelled with catalogue text `id`.
    void AddEntry(uint32_t id, bool selectable);
    // Greys the label of an entry that was added not selectable.
    void DisableEntry(uint32_t id);
    // Right title, right footer and text for the selected entry.
    void ShowSelectedEntry();

    // Catalogue id of the selected line.
    uint32_t GetSelectedEntry() const;

private:
    std::string ManagementSummary();
    std::string SupportText() const;
    // Refreshes which logs exist, so that the digits follow the numbers on the screen.
    std::string LogTable();
    // Runs what Enter on entry `id` opens.
    void RunEntry(uint32_t id);
    // The log under `number` on the screen in the pager; nothing for a number not shown.
    void ViewLog(int number);

    std::vector<std::string> supportPages;
    uint32_t supportPage = 0;
    std::vector<std::unique_ptr<Item>> menuItems;
    bool lockdownEnabled = false;
    std::vector<uint32_t> entryIds;
    std::array<bool, 6> logPresent{};
};

} // namespace Lanyx
