// A line of marked-up text: a menu entry when selectable, a heading or blank line when not.
#pragma once
#include <string>

#include "text/Item.hpp"

namespace Lanyx {

class LabelItem : public Item {
public:
    LabelItem(std::string text, bool selectable);

    void Draw(TextArea* row) override;
    void SetText(std::string newText);
    const std::string& GetText() const { return text; }

protected:
    std::string text;
};

} // namespace Lanyx
