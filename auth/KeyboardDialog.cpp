#include "auth/KeyboardDialog.hpp"

#include "core/Keys.hpp"
#include "host/Log.hpp"
#include "text/CatalogueIds.hpp"
#include "text/RadioItem.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 76;
constexpr int kHeight = 18;
constexpr int kTitleHeight = 6;

constexpr const char* kFooter =
    "{color:black}<Up/Down>{/color} {color:dark-grey}Select{/color}  "
    "{color:black}<Space>{/color} {color:dark-grey}Toggle Selected{/color}{align:right}"
    "{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  "
    "{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";

} // namespace

KeyboardDialog::KeyboardDialog(Frame* owner) : FormDialog(owner, kWidth, kHeight, kTitleHeight) {
    const std::string current = systemInfo.GetKeyboardLayout();
    layouts = systemInfo.GetKeyboardLayouts();
    std::vector<RadioItem*> radios;
    // A layout in force that the host does not list leaves every button clear.
    size_t ticked = layouts.size();
    for (size_t i = 0; i < layouts.size(); ++i) {
        radios.push_back(Add(std::make_unique<RadioItem>(layouts[i], false)));
        if (layouts[i] == current && ticked == layouts.size())
            ticked = i;
    }
    chosen = ticked < layouts.size() ? ticked : 0;
    group = std::make_unique<RadioGroup>(std::move(radios), ticked);
    CreateList();
}

void KeyboardDialog::Open() {
    SetTitle(CatalogueText(Ids::ConfigureKeyboard));
    SetMessage(CatalogueText(Ids::KeyboardMessage));
    ShowItems();
    SetFooter(kFooter);
}

FormDialog::KeyResult KeyboardDialog::HandleKey(int key) {
    if (key != ' ')
        return FormDialog::HandleKey(key);
    if (!items.empty()) {
        // The ticked line follows the selection only on Space; moving alone ticks nothing.
        chosen = list->GetSelectedOrdinal();
        group->Select(chosen);
        Redraw();
    }
    return KeyResult::Continue;
}

bool KeyboardDialog::Accept() {
    if (layouts.empty())
        return false;
    const std::string& name = layouts[chosen];
    systemInfo.LoadKeyboardMappings(name);
    systemInfo.SetKeyboardLayout(name);
    Log(LOG_INFO, "Keyboard Layout changed to %s", name.c_str());
    return true;
}

} // namespace Lanyx
