#include "text/Item.hpp"

#include "text/ColorRoles.hpp"

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
    foreground = enabled ? Roles::Row.foreground : Roles::Dimmed.foreground;
}

void Item::SetColors(int newBackground, int newForeground) {
    background = newBackground;
    foreground = newForeground;
}

} // namespace Lanyx
