#include "text/CheckItem.hpp"

namespace Lanyx {

CheckItem::CheckItem(std::string caption, bool checked, uint32_t indent)
    : LabelItem("", true), checked(checked), caption(std::move(caption)), indent(indent) {
    Compose();
}

void CheckItem::SetChecked(bool newChecked) {
    checked = newChecked;
    Compose();
}

void CheckItem::Compose() {
    text.assign(indent, ' ');
    text += checked ? "[X] " : "[ ] ";
    text += caption;
}

} // namespace Lanyx
