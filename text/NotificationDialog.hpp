// A box of the caller's size with the caller's title and message that waits for Enter. The
// short form is 8 lines high with a title pane of 5, the long form 75 x 10 with a pane of 7.
#pragma once
#include <string>

#include "text/Dialog.hpp"

namespace Lanyx {

class NotificationDialog : public Dialog {
public:
    NotificationDialog(Frame* owner, int width, int height, int titleHeight, std::string title,
                       std::string message);

    // Only Enter closes the box; the result is always true.
    bool Execute() override;

    const std::string& GetTitleString() const { return title; }
    const std::string& GetMessageString() const { return message; }

private:
    std::string title;
    std::string message;
};

} // namespace Lanyx
