// The search list for short names as one line of text, kept as typed: blanks and commas part the
// entries only when the change is applied.
#pragma once
#include <string>

#include "text/FormDialog.hpp"

namespace Lanyx {

class SuffixesDialog : public FormDialog {
public:
    SuffixesDialog(Frame* owner, const std::string& suffixes);

    // After a true run: the text as typed.
    const std::string& GetValue() const { return suffixesItem->GetValue(); }
    InputItem* GetSuffixesItem() const { return suffixesItem; }

protected:
    void Open() override;

private:
    InputItem* suffixesItem = nullptr;
};

} // namespace Lanyx
