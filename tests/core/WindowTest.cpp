#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "TestRoot.hpp"
#include "core/Colors.hpp"
#include "core/Frame.hpp"
#include "core/Globals.hpp"

namespace Lanyx {
namespace {

// Curses on a screen that goes nowhere: window trees and the modal protocol need curses
// windows, not a terminal.
class OffscreenCurses : public ::testing::Environment {
public:
    void SetUp() override
    {
        setenv("LINES", "24", 1);
        setenv("COLUMNS", "80", 1);
        output = std::fopen("/dev/null", "w");
        input = std::fopen("/dev/null", "r");
        screen = newterm("vt102", output, input);
        ASSERT_NE(screen, nullptr);
        set_term(screen);
    }
    void TearDown() override
    {
        endwin();
        delscreen(screen);
        std::fclose(output);
        std::fclose(input);
    }

private:
    SCREEN* screen = nullptr;
    FILE* output = nullptr;
    FILE* input = nullptr;
};

const auto* const offscreen = ::testing::AddGlobalTestEnvironment(new OffscreenCurses);

// Counts its destructions, to see who deletes whom.
class CountedWindow : public Window {
public:
    CountedWindow(Window* parent, int* deaths) : Window(parent, 1, 1, 2, 2, -1, -1), deaths(deaths)
    {
    }
    ~CountedWindow() override { ++*deaths; }

private:
    int* deaths;
};

TEST(Window, ChildrenAreAbsoluteAndInheritColours)
{
    Window top(10, 5, 40, 12, ColorAmber, ColorWhite);
    Window* pane = top.CreateChild(2, 3, 20, 6, ColorDarkGrey, -1);
    Window* inner = pane->CreateChild(1, 1, 5, 2, -1, ColorBlack);
    EXPECT_EQ(pane->GetX(), 12);
    EXPECT_EQ(pane->GetY(), 8);
    EXPECT_EQ(inner->GetX(), 13);
    EXPECT_EQ(inner->GetY(), 9);
    EXPECT_EQ(pane->GetBackground(), ColorDarkGrey);
    EXPECT_EQ(pane->GetForeground(), ColorWhite);
    EXPECT_EQ(inner->GetBackground(), ColorDarkGrey);
    EXPECT_EQ(inner->GetForeground(), ColorBlack);
    EXPECT_EQ(inner->GetParent(), pane);
    ASSERT_NE(inner->GetHandle(), nullptr);
    // A sub-window shares the parent's cells.
    inner->Print(0, 0, "ab");
    EXPECT_EQ(static_cast<char>(mvwinch(top.GetHandle(), 4, 3) & A_CHARTEXT), 'a');
}

TEST(Window, OwnsChildrenInCreationOrder)
{
    int deaths = 0;
    {
        Window top(0, 0, 20, 10, ColorBlack, ColorWhite);
        auto* first = new CountedWindow(&top, &deaths);
        auto* second = new CountedWindow(&top, &deaths);
        new CountedWindow(first, &deaths);
        ASSERT_EQ(top.GetChildren().size(), 2u);
        EXPECT_EQ(top.GetChildren()[0].get(), first);
        EXPECT_EQ(top.GetChildren()[1].get(), second);
    }
    EXPECT_EQ(deaths, 3);
}

TEST(Window, DeletingAChildFromOutsideLeavesTheParentConsistent)
{
    int deaths = 0;
    Window top(0, 0, 20, 10, ColorBlack, ColorWhite);
    auto* first = new CountedWindow(&top, &deaths);
    auto* second = new CountedWindow(&top, &deaths);
    delete first;
    EXPECT_EQ(deaths, 1);
    ASSERT_EQ(top.GetChildren().size(), 1u);
    EXPECT_EQ(top.GetChildren()[0].get(), second);
    top.DeleteChildren();
    EXPECT_EQ(deaths, 2);
    EXPECT_TRUE(top.GetChildren().empty());
    // The window itself is still usable.
    top.CreateChild(0, 0, 1, 1, -1, -1);
    EXPECT_EQ(top.GetChildren().size(), 1u);
}

TEST(Window, TooLargeForTheScreenIsSafeToUse)
{
    Window top(-5, 0, 200, 100, ColorBlack, ColorWhite);
    EXPECT_EQ(top.GetHandle(), nullptr);
    Window* child = top.CreateChild(1, 1, 4, 4, -1, -1);
    EXPECT_EQ(child->GetHandle(), nullptr);
    top.Print(1, 1, "invisible");
    top.SetColors(ColorAmber, -1);
    top.RedrawTree();
    top.SetActive(false);
    top.SetActive(true);
    top.Update();
    EXPECT_EQ(child->GetBackground(), ColorBlack);
}

TEST(Window, SetColorsMinusOneTakesTheParents)
{
    Window top(0, 0, 20, 10, ColorAmber, ColorWhite);
    Window* child = top.CreateChild(0, 0, 5, 5, ColorBlack, ColorRed);
    child->SetColors(-1, ColorLightGrey);
    EXPECT_EQ(child->GetBackground(), ColorAmber);
    EXPECT_EQ(child->GetForeground(), ColorLightGrey);
    top.SetColors(-1, ColorBlack);
    EXPECT_EQ(top.GetBackground(), ColorAmber) << "a top-level window keeps its own";
}

TEST(Window, DimmingTopLevelSavesAndRestoresTheCursor)
{
    Window top(4, 2, 30, 10, ColorBlack, ColorWhite);
    Window* field = top.CreateChild(3, 3, 10, 1, -1, -1);
    field->MoveCursor(2, 0);
    EXPECT_EQ(Window::cursorX, 4 + 3 + 2);
    EXPECT_EQ(Window::cursorY, 2 + 3);
    Window::ShowCursor(true);

    top.SetActive(false);
    EXPECT_FALSE(top.IsActive());
    EXPECT_FALSE(field->IsActive());
    EXPECT_FALSE(Window::cursorVisible);
    // Something else moves the shared cursor meanwhile.
    Window::cursorX = 0;
    Window::cursorY = 0;

    top.SetActive(true);
    EXPECT_TRUE(field->IsActive());
    EXPECT_TRUE(Window::cursorVisible);
    EXPECT_EQ(Window::cursorX, 9);
    EXPECT_EQ(Window::cursorY, 5);
    Window::ShowCursor(false);
}

// A frame whose loop only records what the modal protocol set up around it.
class ProbeFrame : public Frame {
public:
    explicit ProbeFrame(Frame* owner, bool result = true) : Frame(owner, 0, 0, 10, 5, 3, 7),
                                                           result(result)
    {
    }
    bool Execute() override
    {
        activeDuringRun = activeFrame;
        ownerActiveDuringRun = owner ? owner->IsActive() : true;
        if (child)
            return child->RunModal();
        if (timeOut)
            throw LanyxTimeout();
        return result;
    }

    Frame* activeDuringRun = nullptr;
    bool ownerActiveDuringRun = true;
    ProbeFrame* child = nullptr;
    bool timeOut = false;
    bool result;
};

TEST(Frame, RunModalWithoutOwnerEndsWithNoActiveFrame)
{
    ProbeFrame first(nullptr, false);
    EXPECT_EQ(first.GetStrings(), nullptr) << "no catalogue registered in this test";
    EXPECT_FALSE(first.RunModal());
    EXPECT_EQ(first.activeDuringRun, &first);
    EXPECT_EQ(activeFrame, nullptr);
}

TEST(Frame, RunModalDimsTheOwnerAndHandsTheInputBack)
{
    ProbeFrame owner(nullptr);
    ProbeFrame dialog(&owner, true);
    activeFrame = &owner;
    EXPECT_TRUE(dialog.RunModal());
    EXPECT_EQ(dialog.activeDuringRun, &dialog);
    EXPECT_FALSE(dialog.ownerActiveDuringRun);
    EXPECT_TRUE(owner.IsActive());
    EXPECT_EQ(activeFrame, &owner);
    activeFrame = nullptr;
}

TEST(Frame, TimeoutTravelsThroughLeavingOwnersDimmed)
{
    ProbeFrame first(nullptr);
    ProbeFrame menu(&first);
    ProbeFrame dialog(&menu);
    first.child = &menu;
    menu.child = &dialog;
    dialog.timeOut = true;
    EXPECT_THROW(first.RunModal(), LanyxTimeout);
    EXPECT_EQ(activeFrame, nullptr);
    EXPECT_FALSE(first.IsActive());
    EXPECT_FALSE(menu.IsActive());
}

TEST(Frame, OtherExceptionsPassUntouched)
{
    struct Throwing : ProbeFrame {
        using ProbeFrame::ProbeFrame;
        bool Execute() override { throw std::runtime_error("host gone"); }
    };
    ProbeFrame owner(nullptr);
    Throwing dialog(&owner);
    activeFrame = &owner;
    EXPECT_THROW(dialog.RunModal(), std::runtime_error);
    EXPECT_EQ(activeFrame, &dialog) << "nothing is restored on the way";
    EXPECT_FALSE(owner.IsActive());
    activeFrame = nullptr;
}

} // namespace
} // namespace Lanyx
