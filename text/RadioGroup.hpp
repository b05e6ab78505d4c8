// A set of radio buttons of which one is set, and the items that are enabled only while a
// particular one of them is set (the address fields under "static", say). Radio buttons are not
// toggles: choosing the set one again changes nothing.
#pragma once
#include <cstddef>
#include <map>
#include <vector>

#include "text/RadioItem.hpp"

namespace Lanyx {

class RadioGroup {
public:
    // The buttons in list order; `selected` is the one set at the start.
    RadioGroup(std::vector<RadioItem*> radios, size_t selected);

    // `dependents` are enabled exactly while button `radio` is set.
    void SetDependents(size_t radio, std::vector<Item*> dependents);
    // Sets button `radio`, clears the others, enables or disables the dependents.
    void Select(size_t radio);
    // Select for the button `item`, if it is one of the group; false when it is not.
    bool SelectItem(const Item* item);

    size_t Selected() const { return selected; }
    bool IsSelected(size_t radio) const { return selected == radio; }

private:
    std::vector<RadioItem*> radios;
    std::map<size_t, std::vector<Item*>> dependents;
    size_t selected;
};

} // namespace Lanyx
