// A check box: "[X] " or "[ ] " and a caption, optionally indented under a heading.
#pragma once
#include <cstdint>
#include <string>

#include "text/LabelItem.hpp"

namespace Lanyx {

class CheckItem : public LabelItem {
public:
    CheckItem(std::string caption, bool checked, uint32_t indent = 0);

    void SetChecked(bool newChecked);
    bool IsChecked() const { return checked; }
    const std::string& GetCaption() const { return caption; }

private:
    void Compose();

    bool checked;
    std::string caption;
    uint32_t indent;
};

} // namespace Lanyx
