#include "text/MenuWindow.hpp"

#include "core/Keys.hpp"
#include "text/CatalogueIds.hpp"
#include "text/LabelItem.hpp"

namespace Lanyx {

MenuWindow::MenuWindow(Frame* owner, uint32_t titleId, std::string leftFooter)
    : RootWindow(owner), leftFooterText(std::move(leftFooter)), titleId(titleId) {}

MenuWindow::~MenuWindow() = default;

void MenuWindow::AddEntry(uint32_t id, bool selectable) {
    menuItems.push_back(std::make_unique<LabelItem>(CatalogueText(id), selectable));
    entryIds.push_back(id);
    if (!selectable)
        GreyEntry(id);
}

void MenuWindow::AddBlank() {
    menuItems.push_back(std::make_unique<LabelItem>(CatalogueText(Ids::Blank), false));
    entryIds.push_back(Ids::Blank);
}

void MenuWindow::GreyEntry(uint32_t id) {
    for (size_t i = 0; i < entryIds.size(); ++i) {
        if (entryIds[i] != id)
            continue;
        auto* label = static_cast<LabelItem*>(menuItems[i].get());
        label->SetText("{color:dark-grey}" + std::string(CatalogueText(id)) + "{/color}");
        label->SetSelectable(false);
    }
}

void MenuWindow::SetEntrySelectable(uint32_t id, bool selectable) {
    if (!selectable) {
        GreyEntry(id);
        return;
    }
    for (size_t i = 0; i < entryIds.size(); ++i) {
        if (entryIds[i] != id)
            continue;
        auto* label = static_cast<LabelItem*>(menuItems[i].get());
        label->SetText(CatalogueText(id));
        label->SetSelectable(true);
    }
}

void MenuWindow::ReplaceEntry(uint32_t id, uint32_t newId) {
    for (size_t i = 0; i < entryIds.size(); ++i) {
        if (entryIds[i] != id)
            continue;
        entryIds[i] = newId;
        const bool selectable = menuItems[i]->IsSelectable();
        static_cast<LabelItem*>(menuItems[i].get())->SetText(CatalogueText(newId));
        if (!selectable)
            GreyEntry(newId);
    }
}

void MenuWindow::ShowEntries() {
    std::vector<Item*> labels;
    for (const std::unique_ptr<Item>& item : menuItems)
        labels.push_back(item.get());
    itemList->SetItems(labels);
}

uint32_t MenuWindow::GetSelectedEntry() const {
    const size_t index = static_cast<size_t>(itemList->GetTopIndex()) + itemList->GetSelectedRow();
    return index < entryIds.size() ? entryIds[index] : Ids::Blank;
}

void MenuWindow::Reload() {
    ShowSelectedEntry();
}

void MenuWindow::UpdateContent() {
    SetLeftTitle(CatalogueText(titleId));
    SetLeftFooter(leftFooterText);
    itemList->Draw();
    ShowSelectedEntry();
}

bool MenuWindow::Execute() {
    Draw();
    for (;;) {
        const int key = ReadKey(true);
        const uint32_t selected = GetSelectedEntry();
        switch (key) {
        case Keys::Down:
        case Keys::Up:
            LeavingEntry(selected);
            if (key == Keys::Down)
                itemList->SelectNext();
            else
                itemList->SelectPrevious();
            ShowSelectedEntry();
            break;
        case Keys::Escape:
            if (ConfirmLeave())
                return true;
            break;
        case Keys::Enter:
            RunEntry(selected);
            break;
        default:
            HandleOtherKey(selected, key);
            break;
        }
    }
}

void MenuWindow::HandleOtherKey(uint32_t, int) {}

void MenuWindow::LeavingEntry(uint32_t) {}

} // namespace Lanyx
