#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "core/Colors.hpp"
#include "core/Window.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {
namespace {

// Curses on a screen that goes nowhere, with the eight colours of the console's terminal.
class OffscreenCurses : public ::testing::Environment {
public:
    void SetUp() override {
        setenv("LINES", "24", 1);
        setenv("COLUMNS", "80", 1);
        output = std::fopen("/dev/null", "w");
        input = std::fopen("/dev/null", "r");
        screen = newterm("xterm", output, input);
        ASSERT_NE(screen, nullptr);
        set_term(screen);
        start_color();
    }
    void TearDown() override {
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

const auto* const curses = ::testing::AddGlobalTestEnvironment(new OffscreenCurses);

int PairOf(attr_t attribute) {
    return static_cast<int>(PAIR_NUMBER(attribute));
}

class TextAreaTest : public ::testing::Test {
protected:
    // A dialog-like parent: amber background, dark-grey text.
    Window parent{0, 0, 30, 6, 3, 6};

    // Takes ownership through the parent, as every child window does.
    TextArea* MakeArea(int width, int height, int foreground = -1) {
        return new TextArea(&parent, 1, 1, width, height, foreground);
    }

    static std::string Row(Window* window, int y) {
        std::string row;
        for (int x = 0; x < window->GetWidth(); ++x) {
            row.push_back(static_cast<char>(mvwinch(window->GetHandle(), y, x) & A_CHARTEXT));
        }
        return row.substr(0, row.find_last_not_of(' ') + 1);
    }

    static int CellPair(Window* window, int x, int y) {
        return PairOf(static_cast<attr_t>(mvwinch(window->GetHandle(), y, x)));
    }
};

TEST_F(TextAreaTest, TakesTheParentsBackgroundAndItsOwnForeground) {
    TextArea* own = MakeArea(10, 1, 7);
    EXPECT_EQ(own->GetBackground(), 3);
    EXPECT_EQ(own->GetForeground(), 7);
    TextArea* inherited = MakeArea(10, 1);
    EXPECT_EQ(inherited->GetForeground(), 6);
    EXPECT_EQ(parent.GetChildren().size(), 2u);
}

TEST_F(TextAreaTest, LaysOutForItsOwnWidthAndCutsBelow) {
    TextArea* area = MakeArea(10, 2);
    area->SetText("aaa bbb ccc ddd eee");
    EXPECT_EQ(Row(area, 0), "aaa bbb");
    EXPECT_EQ(Row(area, 1), "ccc ddd");
    // The parent's row under the area stays untouched.
    EXPECT_EQ(Row(&parent, 3), "");
}

TEST_F(TextAreaTest, SetTextReplacesAndAppendTextAdds) {
    TextArea* area = MakeArea(12, 2);
    area->SetText("a much longer text");
    area->SetText(std::string("hi"));
    EXPECT_EQ(Row(area, 0), "hi");
    EXPECT_EQ(Row(area, 1), "");
    area->AppendText(" there");
    area->AppendText(std::string("{align:right}!{/align}"));
    EXPECT_EQ(area->GetText(), "hi there{align:right}!{/align}");
    EXPECT_EQ(Row(area, 0), "hi there   !");
    area->SetText(static_cast<const char*>(nullptr));
    EXPECT_EQ(Row(area, 0), "");
}

TEST_F(TextAreaTest, ColoursWhileActiveAndNoneWhileDimmed) {
    TextArea* area = MakeArea(10, 1);
    area->SetText("a{color:red}b{/color}c");
    EXPECT_EQ(Row(area, 0), "abc");
    EXPECT_EQ(CellPair(area, 0, 0), PairOf(ColorAttr(3, 6)));
    EXPECT_EQ(CellPair(area, 1, 0), PairOf(ColorAttr(3, 1)));
    EXPECT_EQ(CellPair(area, 2, 0), PairOf(ColorAttr(3, 6)));

    parent.SetActive(false);
    EXPECT_FALSE(area->IsActive());
    EXPECT_EQ(Row(area, 0), "abc");
    for (int x = 0; x < 3; ++x) {
        EXPECT_EQ(CellPair(area, x, 0), PairOf(ColorAttr(0, 6))) << "cell " << x;
    }

    parent.SetActive(true);
    EXPECT_EQ(CellPair(area, 1, 0), PairOf(ColorAttr(3, 1)));
}

TEST_F(TextAreaTest, SubstitutionsAreEvaluatedAtEveryLayout) {
    int calls = 0;
    RegisterTagSource("hostname", [&calls] {
        ++calls;
        return "host" + std::to_string(calls);
    });
    TextArea* area = MakeArea(20, 1);
    area->SetText("{hostname}");
    EXPECT_EQ(Row(area, 0), "host1");
    area->SetActive(false);
    area->SetActive(true);
    EXPECT_EQ(Row(area, 0), "host3");
    RegisterTagSource("hostname", nullptr);
    area->AppendText("");
    EXPECT_EQ(Row(area, 0), "");
}

TEST_F(TextAreaTest, EveryByteTakesOneCell) {
    TextArea* area = MakeArea(10, 1);
    area->SetText("a\tb\xff"
                  "c\x01");
    EXPECT_EQ(Row(area, 0), "a b?c");
}

} // namespace
} // namespace Lanyx
