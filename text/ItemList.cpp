#include "text/ItemList.hpp"

#include <algorithm>
#include <cstdlib>

#include "text/ColorRoles.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

ItemList::ItemList(Window* parent, int x, int y, int width, int height)
    : Window(parent, x, y, width, height, -1, -1) {
    rowsWindow = CreateChild(0, 0, width - 1, height, -1, -1);
    scrollBar = CreateChild(width - 1, 0, 1, height, -1, -1);
    for (int i = 0; i < height; ++i) {
        Window* row = rowsWindow->CreateChild(0, i, width - 1, 1, -1, -1);
        rows.push_back(row);
        rowTexts.push_back(new TextArea(row, 1, 0, width - 3, 1, -1));
    }
}

void ItemList::SetItems(const std::vector<Item*>& newItems) {
    items = newItems;
    topIndex = 0;
    selectedOrdinal = 0;
    for (size_t i = 0; i < items.size(); ++i) {
        if (!items[i]->IsSelectable()) {
            continue;
        }
        if (items[i]->IsEnabled()) {
            Select(static_cast<int>(i), selectedOrdinal);
            break;
        }
        ++selectedOrdinal;
    }
}

Item* ItemList::GetSelectedItem() const {
    const size_t index = static_cast<size_t>(topIndex) + selectedRow;
    return index < items.size() ? items[index] : nullptr;
}

void ItemList::Draw() {
    if (handle) {
        werase(handle.get());
    }
    const size_t rowCount = rows.size();
    for (size_t i = 0; i < rowCount && static_cast<size_t>(topIndex) + i < items.size(); ++i) {
        Item* item = items[static_cast<size_t>(topIndex) + i];
        const bool isSelected = i == selectedRow;
        item->SetSelected(isSelected);
        if (isSelected) {
            rowTexts[i]->SetColors(Roles::Selection.background, Roles::Selection.foreground);
        } else {
            rowTexts[i]->SetColors(item->GetBackground(), item->GetForeground());
            item->Draw(rowTexts[i]);
        }
    }
    if (items.size() > rowCount) {
        DrawScrollBar();
    }
    rowsWindow->Update();
    if (Item* item = GetSelectedItem(); item && selectedRow < rowCount) {
        item->Draw(rowTexts[selectedRow]);
    }
    refresh();
}

void ItemList::DrawScrollBar() {
    const int rowCount = static_cast<int>(rows.size());
    const int hidden = static_cast<int>(items.size()) - rowCount;
    const int percent = hidden > 0 ? topIndex * 100 / hidden : 0;
    if (WINDOW* bar = scrollBar->GetHandle()) {
        werase(bar);
        // Without a multi-byte locale curses cannot take the block characters as text.
        const bool utf8 = MB_CUR_MAX > 1;
        const int thumb = percent * (rowCount - 1) / 100;
        for (int line = 0; line < rowCount; ++line) {
            if (utf8) {
                scrollBar->Print(0, line, line == thumb ? "\u2588" : "\u2593");
            } else {
                mvwaddch(bar, line, 0, line == thumb ? ACS_BLOCK : ACS_CKBOARD);
            }
        }
    }
    scrollBar->Update();
}

void ItemList::Select(int index, uint32_t ordinal) {
    const int rowCount = std::max(1, static_cast<int>(rows.size()));
    if (index < topIndex) {
        topIndex = index;
    } else if (index >= topIndex + rowCount) {
        topIndex = index - rowCount + 1;
    }
    selectedRow = static_cast<uint32_t>(index - topIndex);
    selectedOrdinal = ordinal;
}

void ItemList::SelectPrevious() {
    uint32_t ordinal = selectedOrdinal;
    for (int i = topIndex + static_cast<int>(selectedRow) - 1; i >= 0; --i) {
        if (static_cast<size_t>(i) >= items.size() || !items[i]->IsSelectable()) {
            continue;
        }
        --ordinal;
        if (items[i]->IsEnabled()) {
            Select(i, ordinal);
            Draw();
            return;
        }
    }
}

void ItemList::SelectNext() {
    uint32_t ordinal = selectedOrdinal;
    const int count = static_cast<int>(items.size());
    for (int i = topIndex + static_cast<int>(selectedRow) + 1; i < count; ++i) {
        if (!items[i]->IsSelectable()) {
            continue;
        }
        ++ordinal;
        if (items[i]->IsEnabled()) {
            Select(i, ordinal);
            Draw();
            return;
        }
    }
}

void ItemList::SelectOrdinal(uint32_t n) {
    uint32_t seen = 0;
    for (size_t i = 0; i < items.size(); ++i) {
        if (!items[i]->IsSelectable()) {
            continue;
        }
        if (seen == n) {
            Select(static_cast<int>(i), n);
            return;
        }
        ++seen;
    }
}

} // namespace Lanyx
