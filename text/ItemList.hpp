// A fixed number of one-line rows through which a longer list of items scrolls, with one
// selected row and a scroll bar in the rightmost column. The list does not own its items.
#pragma once
#include <cstdint>
#include <vector>

#include "core/Window.hpp"
#include "text/Item.hpp"

namespace Lanyx {

class TextArea;

class ItemList : public Window {
public:
    ItemList(Window* parent, int x, int y, int width, int height);

    // Starts at the top, on the first item that is selectable and enabled.
    void SetItems(const std::vector<Item*>& newItems);

    // Shows the visible items, the selection and the scroll bar; the selected item is drawn
    // last so that the cursor an input field leaves is the one that stands.
    void Draw();
    // Move to the nearest selectable, enabled item above or below and draw; no wrap-around.
    void SelectPrevious();
    void SelectNext();
    // Selects the selectable item numbered `n` (from 0) without drawing. Scrolls only when that
    // item would otherwise be out of sight.
    void SelectOrdinal(uint32_t n);

    // How many selectable items stand before the selected one, disabled ones included.
    uint32_t GetSelectedOrdinal() const { return selectedOrdinal; }
    uint32_t GetSelectedRow() const { return selectedRow; }
    int32_t GetTopIndex() const { return topIndex; }
    // The selected item, or null when the list is empty.
    Item* GetSelectedItem() const;
    const std::vector<Item*>& GetItems() const { return items; }
    int GetRowCount() const { return static_cast<int>(rows.size()); }
    TextArea* GetRowText(int row) const { return rowTexts.at(static_cast<size_t>(row)); }
    Window* GetRowsWindow() const { return rowsWindow; }
    Window* GetScrollBar() const { return scrollBar; }

private:
    void DrawScrollBar();
    // Makes absolute item `index` the selected row, scrolling it into view.
    void Select(int index, uint32_t ordinal);

    Window* rowsWindow = nullptr;
    Window* scrollBar = nullptr;
    std::vector<Item*> items;
    std::vector<TextArea*> rowTexts;
    std::vector<Window*> rows;
    uint32_t selectedRow = 0;
    int32_t topIndex = 0;
    uint32_t selectedOrdinal = 0;
};

} // namespace Lanyx
