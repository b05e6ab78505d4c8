// A radio button: "(o) " or "( ) " and a caption. Keeping one of a group checked is the
// dialog's business.
#pragma once
#include <string>

#include "text/LabelItem.hpp"

namespace Lanyx {

class RadioItem : public LabelItem {
public:
    RadioItem(std::string caption, bool checked);

    void SetChecked(bool newChecked);
    bool IsChecked() const { return checked; }
    const std::string& GetCaption() const { return caption; }

private:
    void Compose();

    bool checked;
    std::string caption;
};

} // namespace Lanyx
