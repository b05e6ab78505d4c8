#include "text/Dialog.hpp"

#include "core/Keys.hpp"
#include "text/ColorRoles.hpp"

namespace Lanyx {

Dialog::Dialog(Frame* owner, int width, int height, int titleHeight)
    : Frame(owner, (COLS - width) / 2, (LINES - height) / 2, width, height, Roles::Frame.background,
            Roles::Frame.foreground) {
    if (handle) {
        werase(handle.get());
    }
    const int bodyHeight = height - titleHeight;
    titlePane = CreateChild(0, 0, width, titleHeight, Roles::TitlePane.background,
                            Roles::TitlePane.foreground);
    bodyPane = CreateChild(0, titleHeight, width, bodyHeight, Roles::Body.background,
                           Roles::Body.foreground);
    // The panes share the dialog's cells, so the frame line shows through both.
    if (handle) {
        box(handle.get(), 0, 0);
    }
    titleText = new TextArea(titlePane, 3, 1, width - 6, 1, Roles::TitleText);
    messageText = new TextArea(titlePane, 3, 3, width - 6, titleHeight - 4, Roles::MessageText);
    footerText = new TextArea(bodyPane, 2, bodyHeight - 2, width - 4, 1, Roles::FooterText);
    if (bodyHeight - 4 >= 1) {
        contentWindow = bodyPane->CreateChild(2, 1, width - 4, bodyHeight - 4,
                                              Roles::Content.background, Roles::Content.foreground);
    }
}

void Dialog::SetActive(bool newActive) {
    if (newActive && owner) {
        owner->Update();
    }
    Frame::SetActive(newActive);
}

void Dialog::SetTitle(const std::string& text) {
    titleText->SetText(text);
}

void Dialog::SetMessage(const std::string& text) {
    messageText->SetText(text);
}

void Dialog::SetFooter(const std::string& text) {
    footerText->SetText(text);
}

bool Dialog::AwaitAnswer(int acceptKey) {
    for (;;) {
        const int key = ReadKey(true);
        if (key == acceptKey)
            return true;
        if (key == Keys::Escape)
            return false;
    }
}

bool Dialog::AwaitYesNo(bool& yes) {
    for (;;) {
        const int key = ReadKey(true);
        if (key == 'y' || key == 'Y' || key == 'n' || key == 'N') {
            yes = key == 'y' || key == 'Y';
            return true;
        }
        if (key == Keys::Escape)
            return false;
    }
}

} // namespace Lanyx
