#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "text/Markup.hpp"

namespace Lanyx {

// Readable failures; found by the framework through the namespace of the step.
std::ostream& operator<<(std::ostream& os, const RenderStep& step) {
    if (step.kind == RenderStep::Kind::Print) {
        return os << "Print(" << step.x << "," << step.y << ",\"" << step.text << "\")";
    }
    return os << "Attr(" << step.offBg << "," << step.offFg << " -> " << step.onBg << ","
              << step.onFg << ")";
}

namespace {

RenderStep Print(int x, int y, const std::string& text) {
    RenderStep step;
    step.kind = RenderStep::Kind::Print;
    step.x = x;
    step.y = y;
    step.text = text;
    return step;
}

RenderStep Attr(int offBg, int offFg, int onBg, int onFg) {
    RenderStep step;
    step.kind = RenderStep::Kind::Attributes;
    step.offBg = offBg;
    step.offFg = offFg;
    step.onBg = onBg;
    step.onFg = onFg;
    return step;
}

class RenderTest : public ::testing::Test {
protected:
    std::vector<RenderStep> Plan(const std::string& formatted) {
        return PlanRender(formatted, window, MakeColorNames());
    }

    // Amber window with dark-grey text, as the dialogs' footers have.
    RenderWindow window{20, 3, 3, 6, true};
};

using Steps = std::vector<RenderStep>;

TEST_F(RenderTest, LinesGoToTheirRows) {
    EXPECT_EQ(Plan("ab\ncd"), (Steps{Print(0, 0, "ab"), Print(0, 1, "cd")}));
    EXPECT_EQ(Plan("\n\nx"), (Steps{Print(0, 2, "x")}));
}

TEST_F(RenderTest, WhatLiesBelowTheWindowIsNotDrawn) {
    window.height = 2;
    EXPECT_EQ(Plan("one\ntwo\nthree"), (Steps{Print(0, 0, "one"), Print(0, 1, "two")}));
    window.height = 1;
    const std::string footer =
        Format("<Esc> Cancel{align:right}<Enter> Accept changes{/align}", window.width, {});
    ASSERT_NE(footer.find('\n'), std::string::npos);
    for (const RenderStep& step : Plan(footer)) {
        EXPECT_EQ(step.y, 0) << step;
    }
}

TEST_F(RenderTest, ColourRunsSwitchAttributes) {
    EXPECT_EQ(Plan("a{color:black}<Esc>{/color}b"),
              (Steps{Print(0, 0, "a"), Attr(3, 6, 3, 0), Print(1, 0, "<Esc>"), Attr(3, 0, 3, 6),
                     Print(6, 0, "b")}));
    EXPECT_EQ(Plan("{bgcolor:red}x{/bgcolor}y"),
              (Steps{Attr(3, 6, 1, 6), Print(0, 0, "x"), Attr(1, 6, 3, 6), Print(1, 0, "y")}));
}

TEST_F(RenderTest, ColourTagsDoNotNest) {
    // The inner close returns to the window's colours; the outer one then does nothing, so
    // "cd" is one piece.
    EXPECT_EQ(Plan("{color:red}a{color:white}b{/color}c{/color}d"),
              (Steps{Attr(3, 6, 3, 1), Print(0, 0, "a"), Attr(3, 6, 3, 7), Print(1, 0, "b"),
                     Attr(3, 7, 3, 6), Print(2, 0, "cd")}));
}

TEST_F(RenderTest, UnknownColourKeepsTheWindowColour) {
    const Steps steps = Plan("{color:black>}x{/color}y");
    ASSERT_FALSE(steps.empty());
    EXPECT_EQ(steps[0], Print(0, 0, "x"));
    EXPECT_EQ(Plan("{color:Red}x"), (Steps{Print(0, 0, "x")}));
}

TEST_F(RenderTest, OtherTagsVanishWithoutSplittingText) {
    EXPECT_EQ(Plan("a{/foo}b{/color}{/bgcolor}{}c{ip:x}d"), (Steps{Print(0, 0, "abcd")}));
    EXPECT_EQ(Plan("ab{color:red"), (Steps{Print(0, 0, "ab")}));
}

TEST_F(RenderTest, DimmedTextChangesNoAttributes) {
    window.active = false;
    EXPECT_EQ(Plan("a{color:red}b{/color}{bgcolor:black}c{/bgcolor}"),
              (Steps{Print(0, 0, "a"), Print(1, 0, "b"), Print(2, 0, "c")}));
}

TEST_F(RenderTest, NothingIsPrintedBeyondTheRightEdge) {
    window.width = 5;
    EXPECT_EQ(Plan("abcdefgh"), (Steps{Print(0, 0, "abcde")}));
    EXPECT_EQ(Plan("abc{color:red}defgh{/color}ij"),
              (Steps{Print(0, 0, "abc"), Attr(3, 6, 3, 1), Print(3, 0, "de"), Attr(3, 1, 3, 6)}));
    window.width = 0;
    EXPECT_TRUE(Plan("abc").empty());
}

TEST(PrintableCellsTest, EveryByteStaysOneCellAtMost) {
    EXPECT_EQ(PrintableCells("a\tb\rc\x01\x7f", true), "a b c  ");
    EXPECT_EQ(PrintableCells("caf\xc3\xa9", true), "caf\xc3\xa9");
    EXPECT_EQ(PrintableCells("caf\xc3\xa9", false), "caf??");
    // Broken, overlong and cut sequences, and an encoded control character.
    EXPECT_EQ(PrintableCells("\xff\xc0\x80x\xe2\x82", true), "???x??");
    EXPECT_EQ(PrintableCells("\xc2\x85", true), "?");
    EXPECT_EQ(PrintableCells(std::string("a\0b", 3), true), "a b");
}

} // namespace
} // namespace Lanyx
