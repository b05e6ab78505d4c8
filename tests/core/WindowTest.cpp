#include <gtest/gtest.h>

#include "CursesScreen.hpp"
#include "core/Colors.hpp"
#include "core/Frame.hpp"
#include "core/Globals.hpp"

namespace Lanyx {
namespace {

// Window trees and the modal protocol need curses windows, not a terminal.
const auto* const screen = Testing::AddCursesScreen();

// Counts its destructions, to see who deletes whom.
class CountedWindow : public Window {
public:
    CountedWindow(Window* parent, int* deaths)
        : Window(parent, 1, 1, 2, 2, -1, -1), deaths(deaths) {}
    ~CountedWindow() override { ++*deaths; }

private:
    int* deaths;
};

TEST(Window, ChildrenAreAbsoluteShareCellsAndInheritColours) {
    Window top(10, 5, 40, 12, ColorAmber, ColorWhite);
    Window* pane = top.CreateChild(2, 3, 20, 6, ColorDarkGrey, -1);
    Window* inner = pane->CreateChild(1, 1, 5, 2, -1, ColorBlack);
    EXPECT_EQ(inner->GetX(), 13);
    EXPECT_EQ(inner->GetY(), 9);
    EXPECT_EQ(pane->GetForeground(), ColorWhite);
    EXPECT_EQ(inner->GetBackground(), ColorDarkGrey);
    inner->Print(0, 0, "ab");
    EXPECT_EQ(static_cast<char>(mvwinch(top.GetHandle(), 4, 3) & A_CHARTEXT), 'a');
    inner->SetColors(-1, ColorLightGrey);
    EXPECT_EQ(inner->GetBackground(), ColorDarkGrey);
    top.SetColors(-1, ColorBlack);
    EXPECT_EQ(top.GetBackground(), ColorAmber) << "a top-level window keeps its own";
}

TEST(Window, OwnsItsChildrenAndCopesWithOnesDeletedFromOutside) {
    int deaths = 0;
    {
        Window top(0, 0, 20, 10, ColorBlack, ColorWhite);
        auto* first = new CountedWindow(&top, &deaths);
        auto* second = new CountedWindow(&top, &deaths);
        new CountedWindow(second, &deaths);
        delete first;
        EXPECT_EQ(deaths, 1);
        ASSERT_EQ(top.GetChildren().size(), 1u);
        EXPECT_EQ(top.GetChildren()[0].get(), second);
        new CountedWindow(&top, &deaths);
    }
    EXPECT_EQ(deaths, 4);
}

TEST(Window, DimmingTopLevelSavesAndRestoresTheCursor) {
    Window top(4, 2, 30, 10, ColorBlack, ColorWhite);
    Window* field = top.CreateChild(3, 3, 10, 1, -1, -1);
    field->MoveCursor(2, 0);
    EXPECT_EQ(Window::cursorX, 4 + 3 + 2);
    Window::ShowCursor(true);
    top.SetActive(false);
    EXPECT_FALSE(field->IsActive());
    EXPECT_FALSE(Window::cursorVisible);
    // Something else moves the shared cursor meanwhile.
    Window::cursorX = 0;
    Window::cursorY = 0;
    top.SetActive(true);
    EXPECT_TRUE(Window::cursorVisible);
    EXPECT_EQ(Window::cursorX, 9);
    EXPECT_EQ(Window::cursorY, 5);
    Window::ShowCursor(false);
}

// A frame whose loop only records what the modal protocol set up around it.
class ProbeFrame : public Frame {
public:
    explicit ProbeFrame(Frame* owner) : Frame(owner, 0, 0, 10, 5, 3, 7) {}
    bool Execute() override {
        activeDuringRun = activeFrame;
        ownerActiveDuringRun = owner ? owner->IsActive() : true;
        if (child)
            return child->RunModal();
        if (fault == 1)
            throw LanyxTimeout();
        if (fault == 2)
            throw std::runtime_error("host gone");
        return true;
    }

    Frame* activeDuringRun = nullptr;
    bool ownerActiveDuringRun = true;
    ProbeFrame* child = nullptr;
    int fault = 0;
};

TEST(Frame, RunModalDimsTheOwnerAndHandsTheInputBack) {
    ProbeFrame owner(nullptr);
    ProbeFrame dialog(&owner);
    EXPECT_TRUE(owner.RunModal());
    EXPECT_EQ(owner.activeDuringRun, &owner);
    EXPECT_EQ(activeFrame, nullptr);
    activeFrame = &owner;
    EXPECT_TRUE(dialog.RunModal());
    EXPECT_EQ(dialog.activeDuringRun, &dialog);
    EXPECT_FALSE(dialog.ownerActiveDuringRun);
    EXPECT_TRUE(owner.IsActive());
    EXPECT_EQ(activeFrame, &owner);
    activeFrame = nullptr;
}

TEST(Frame, TimeoutTravelsUpLeavingOwnersDimmedOtherErrorsRestoreNothing) {
    ProbeFrame first(nullptr);
    ProbeFrame menu(&first);
    ProbeFrame dialog(&menu);
    first.child = &menu;
    menu.child = &dialog;
    dialog.fault = 1;
    EXPECT_THROW(first.RunModal(), LanyxTimeout);
    EXPECT_EQ(activeFrame, nullptr);
    EXPECT_FALSE(first.IsActive());
    EXPECT_FALSE(menu.IsActive());

    ProbeFrame owner(nullptr);
    ProbeFrame failing(&owner);
    failing.fault = 2;
    activeFrame = &owner;
    EXPECT_THROW(failing.RunModal(), std::runtime_error);
    EXPECT_EQ(activeFrame, &failing);
    EXPECT_FALSE(owner.IsActive());
    activeFrame = nullptr;
}

} // namespace
} // namespace Lanyx
