#include "text/Item.hpp"

namespace Lanyx {

void Item::SetSelected(bool newSelected) {
    if (newSelected == selected) {
        return;
    }
    selected = newSelected;
    OnSelectionChanged();
}

void Item::SetEnabled(bool newEnabled) {
    enabled = newEnabled;
    foreground = enabled ? 0 : 6;
}

void Item::SetColors(int newBackground, int newForeground) {
    background = newBackground;
    foreground = newForeground;
}

} // namespace Lanyx
