// The base of the menus: a two-pane window whose list holds one line per catalogue entry. Up and
// Down skip greyed lines and show the selected entry's pane; Enter runs the entry; Escape is
// the way out. A menu says what its entries are, what each shows, and what Enter on it runs.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "text/Item.hpp"
#include "text/RootWindow.hpp"

namespace Lanyx {

class MenuWindow : public RootWindow {
public:
    // `titleId`: the catalogue text above the list; `leftFooter`: the text below it.
    MenuWindow(Frame* owner, uint32_t titleId, std::string leftFooter);
    ~MenuWindow() override;

    // Runs until Escape that ConfirmLeave allows; true then, a menu's only way out.
    bool Execute() override;
    void Reload() override;
    // Left title and footer, the list, the selected entry's pane.
    void UpdateContent() override;

    // Catalogue id of the selected line (Ids::Blank on an empty menu).
    uint32_t GetSelectedEntry() const;

protected:
    // A line labelled with catalogue text `id`. A line added not selectable is greyed.
    void AddEntry(uint32_t id, bool selectable = true);
    // An empty line between groups.
    void AddBlank();
    // Greys an entry: it stays in the list, in dark grey, and the selection skips it.
    void GreyEntry(uint32_t id);
    // Greys an entry or gives it back its plain label and its place in the selection.
    void SetEntrySelectable(uint32_t id, bool selectable);
    // Entry `id` becomes entry `newId` in the same line, with the new label (a toggle's two words).
    void ReplaceEntry(uint32_t id, uint32_t newId);
    // Hands the lines to the list; the first selectable one is selected.
    void ShowEntries();

    // Right title, detail text and right footer of the selected entry.
    virtual void ShowSelectedEntry() = 0;
    // Enter on entry `id`.
    virtual void RunEntry(uint32_t id) = 0;
    // A key that is neither a move, Enter nor Escape; ignored unless a menu takes it.
    virtual void HandleOtherKey(uint32_t id, int key);
    // The selection is about to leave entry `id`.
    virtual void LeavingEntry(uint32_t id);
    // Escape: true leaves the menu; a menu that holds unsaved edits may ask first and stay.
    virtual bool ConfirmLeave() { return true; }

private:
    std::string leftFooterText;
    uint32_t titleId;
    std::vector<std::unique_ptr<Item>> menuItems;
    std::vector<uint32_t> entryIds;
};

} // namespace Lanyx
