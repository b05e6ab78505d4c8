#include "text/RadioItem.hpp"

namespace Lanyx {

RadioItem::RadioItem(std::string caption, bool checked)
    : LabelItem("", true), checked(checked), caption(std::move(caption)) {
    Compose();
}

void RadioItem::SetChecked(bool newChecked) {
    checked = newChecked;
    Compose();
}

void RadioItem::Compose() {
    text = checked ? "(o) " : "( ) ";
    text += caption;
}

} // namespace Lanyx
