// One entry of a list or form. Items hold no window of their own: the list hands each visible
// item the row it is to be drawn in.
#pragma once
#include <cstdint>

namespace Lanyx {

class TextArea;

class Item {
public:
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;

    // Called whenever `selected` changes.
    virtual void OnSelectionChanged() {}
    virtual ~Item() = default;
    // Shows the item in `row`, a one-line text area.
    virtual void Draw(TextArea* row) = 0;

    void SetSelected(bool selected);
    // A disabled item is drawn dark grey and is skipped by the selection.
    void SetEnabled(bool enabled);
    // An item that is not selectable is skipped and not counted by the selection.
    void SetSelectable(bool newSelectable) { selectable = newSelectable; }
    // Colours of the row while the item is not selected.
    void SetColors(int background, int foreground);

    bool IsSelectable() const { return selectable; }
    bool IsSelected() const { return selected; }
    bool IsEnabled() const { return enabled; }
    int GetBackground() const { return background; }
    int GetForeground() const { return foreground; }

protected:
    explicit Item(bool selectable) : selectable(selectable) {}

    bool selectable;
    bool selected = false;
    bool enabled = true;
    int32_t background = 3; // the amber and black of Roles::Row
    int32_t foreground = 0;
};

} // namespace Lanyx
