// A larger box with a text in its body: the details page of one row of a list.
#pragma once
#include <string>

#include "text/Dialog.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class InfoDialog : public Dialog {
public:
    // Everything is shown at construction; running the box only waits for Enter.
    InfoDialog(Frame* owner, const std::string& text, const std::string& title,
               const std::string& message, const std::string& footer);

    // Only Enter closes the box; the result is always true.
    bool Execute() override;

    TextArea& GetText() { return text; }

private:
    // Removes itself from the content window when destroyed, before the tree goes.
    TextArea text;
};

} // namespace Lanyx
