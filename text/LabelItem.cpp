#include "text/LabelItem.hpp"

#include "text/TextArea.hpp"

namespace Lanyx {

LabelItem::LabelItem(std::string text, bool selectable) : Item(selectable), text(std::move(text)) {}

void LabelItem::Draw(TextArea* row) {
    row->SetText(text);
}

void LabelItem::SetText(std::string newText) {
    text = std::move(newText);
}

} // namespace Lanyx
