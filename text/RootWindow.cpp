#include "text/RootWindow.hpp"

#include <cstring>

#include "host/Log.hpp"
#include "text/ColorRoles.hpp"

namespace Lanyx {

RootWindow::RootWindow(Frame* owner)
    : Frame(owner, 0, 0, COLS, LINES, Roles::Frame.background, Roles::Frame.foreground) {
    const int half = COLS / 2;
    mainArea =
        CreateChild(0, 0, COLS, LINES - 1, Roles::MainArea.background, Roles::MainArea.foreground);
    statusLine = CreateChild(0, LINES - 1, COLS, 1, Roles::StatusLine.background,
                             Roles::StatusLine.foreground);
    leftPane = mainArea->CreateChild(0, 0, half, LINES - 1, Roles::ListPane.background,
                                     Roles::ListPane.foreground);
    rightPane = mainArea->CreateChild(half, 0, half, LINES - 1, Roles::DetailPane.background,
                                      Roles::DetailPane.foreground);
    if (WINDOW* area = mainArea->GetHandle()) {
        box(area, 0, 0);
        // Separates the captions from the content.
        mvwhline(area, 2, 1, ACS_HLINE, mainArea->GetWidth() - 2);
    }
    Log(LOG_INFO, "COLS=%d, LINES=%d", COLS, LINES);
    itemList = new ItemList(leftPane, 2, 4, half - 2, LINES - 6);
    detailText = new TextArea(rightPane, 2, 4, half - 4, LINES - 6, 2);
    leftTitle = new TextArea(leftPane, 3, 1, half - 6, 1, 0);
    rightTitle = new TextArea(rightPane, 2, 1, half - 6, 1, 7);
    leftFooter = new TextArea(leftPane, 2, LINES - 3, half - 3, 1, 0);
    rightFooter = new TextArea(rightPane, 1, LINES - 3, half - 3, 1, 7);
}

void RootWindow::Draw() {
    SetActive(true);
    const char* version = CatalogueText(2);
    const int length = static_cast<int>(std::strlen(version));
    statusLine->Print(statusLine->GetWidth() / 2 - length / 2, 0, version);
    UpdateContent();
    Update();
}

void RootWindow::SetLeftTitle(const std::string& text) {
    leftTitle->SetText(text);
}

void RootWindow::SetRightTitle(const std::string& text) {
    rightTitle->SetText(text);
}

void RootWindow::SetLeftFooter(const std::string& text) {
    leftFooter->SetText(text);
}

void RootWindow::SetRightFooter(const std::string& text) {
    rightFooter->SetText(text);
}

} // namespace Lanyx
