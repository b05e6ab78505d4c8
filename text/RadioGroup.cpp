#include "text/RadioGroup.hpp"

#include <algorithm>

namespace Lanyx {

RadioGroup::RadioGroup(std::vector<RadioItem*> radioItems, size_t initial)
    : radios(std::move(radioItems)), selected(initial) {
    Select(initial);
}

void RadioGroup::SetDependents(size_t radio, std::vector<Item*> items) {
    for (Item* item : items)
        item->SetEnabled(radio == selected);
    dependents[radio] = std::move(items);
}

void RadioGroup::Select(size_t radio) {
    if (radio >= radios.size())
        return;
    selected = radio;
    for (size_t i = 0; i < radios.size(); ++i)
        radios[i]->SetChecked(i == selected);
    for (auto& [owner, items] : dependents) {
        for (Item* item : items)
            item->SetEnabled(owner == selected);
    }
}

bool RadioGroup::SelectItem(const Item* item) {
    const auto found = std::find(radios.begin(), radios.end(), item);
    if (found == radios.end())
        return false;
    Select(static_cast<size_t>(found - radios.begin()));
    return true;
}

} // namespace Lanyx
