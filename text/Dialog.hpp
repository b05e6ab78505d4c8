// A box centred on the screen: a dark title pane with a title and a message, an amber body
// with an optional content window and a footer line.
#pragma once
#include <string>

#include "core/Frame.hpp"
#include "text/Footers.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class Dialog : public Frame {
public:
    Dialog(Frame* owner, int width, int height, int titleHeight);

    // Repaints the dimmed screen behind before lighting the box.
    void SetActive(bool active) override;

    void SetTitle(const std::string& text);
    void SetMessage(const std::string& text);
    void SetFooter(const std::string& text);

    // Reads keys until `acceptKey` (true) or Escape (false); every other key does nothing.
    bool AwaitAnswer(int acceptKey);
    // Reads keys until Y or N (either case; `yes` tells which, true returned) or Escape (false).
    bool AwaitYesNo(bool& yes);

    Window* GetTitlePane() const { return titlePane; }
    Window* GetBodyPane() const { return bodyPane; }
    // Null when the body is too low for one.
    Window* GetContentWindow() const { return contentWindow; }
    TextArea* GetTitleText() const { return titleText; }
    TextArea* GetMessageText() const { return messageText; }
    TextArea* GetFooterText() const { return footerText; }

protected:
    Window* titlePane = nullptr;
    Window* bodyPane = nullptr;
    Window* contentWindow = nullptr;
    TextArea* titleText = nullptr;
    TextArea* messageText = nullptr;
    TextArea* footerText = nullptr;
};

} // namespace Lanyx
