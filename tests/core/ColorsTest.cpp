#include <gtest/gtest.h>

#include <set>

#include "core/Colors.hpp"
#include "core/Globals.hpp"

namespace Lanyx {
namespace {

TEST(ColorAttr, ColourModeGivesPairShiftedBy8)
{
    // Eight colours: foreground + 1 + background x 8.
    EXPECT_EQ(ColorAttrFor(ColorBlack, ColorWhite, false, 8), attr_t{8} << 8);
    EXPECT_EQ(ColorAttrFor(ColorAmber, ColorWhite, false, 8), attr_t{7 + 1 + 3 * 8} << 8);
    EXPECT_EQ(ColorAttrFor(ColorBlack, ColorDarkGrey, false, 8), attr_t{7} << 8);
    EXPECT_EQ(ColorAttrFor(ColorWhite, ColorWhite, false, 8), attr_t{64} << 8);
    // The terminal's COLORS takes part: the same colours give another pair with 16 colours.
    EXPECT_EQ(ColorAttrFor(ColorAmber, ColorRed, false, 16), attr_t{1 + 1 + 3 * 16} << 8);
    // Beyond what the attribute's pair field holds, pairs are numbered as for eight colours
    // instead of spilling into the video attributes.
    EXPECT_EQ(ColorAttrFor(ColorAmber, ColorRed, false, 256), attr_t{1 + 1 + 3 * 8} << 8);
    EXPECT_EQ(ColorAttrFor(ColorWhite, ColorWhite, false, 256) & ~A_COLOR, attr_t{0});
    // The attribute is the pair COLOR_PAIR makes, as long as the pair fits its field.
    EXPECT_EQ(ColorAttrFor(ColorDarkGrey, ColorLightGrey, false, 8),
              static_cast<attr_t>(COLOR_PAIR(PairNumber(2, 6, 8))));
}

TEST(ColorAttr, MonochromeDependsOnBackgroundOnly)
{
    for (int foreground : {0, 1, 2, 3, 6, 7}) {
        EXPECT_EQ(ColorAttrFor(ColorBlack, foreground, true, 8), A_STANDOUT);
        EXPECT_EQ(ColorAttrFor(ColorDarkGrey, foreground, true, 8), A_STANDOUT);
        for (int background : {1, 2, 3, 7})
            EXPECT_EQ(ColorAttrFor(background, foreground, true, 8), A_NORMAL)
                << background << "/" << foreground;
    }
    EXPECT_EQ(A_STANDOUT, attr_t{1} << 16);
}

TEST(ColorAttr, FollowsTheProcessWideFlagAndColors)
{
    const int savedColors = COLORS;
    COLORS = 8;
    monochrome = false;
    EXPECT_EQ(ColorAttr(ColorAmber, ColorBlack), attr_t{0 + 1 + 24} << 8);
    monochrome = true;
    EXPECT_EQ(ColorAttr(ColorAmber, ColorBlack), A_NORMAL);
    EXPECT_EQ(ColorAttr(ColorDarkGrey, ColorWhite), A_STANDOUT);
    monochrome = false;
    COLORS = savedColors;
}

TEST(Palette, RedefinesFiveColoursInOrder)
{
    const auto& table = ColorRedefinitions();
    const int expected[5][4] = {
        {3, 1000, 800, 0}, {6, 334, 334, 334}, {2, 667, 667, 667}, {7, 1000, 1000, 1000},
        {1, 1000, 0, 0}};
    for (size_t i = 0; i < table.size(); ++i) {
        EXPECT_EQ(table[i].color, expected[i][0]);
        EXPECT_EQ(table[i].red, expected[i][1]);
        EXPECT_EQ(table[i].green, expected[i][2]);
        EXPECT_EQ(table[i].blue, expected[i][3]);
    }
}

TEST(Palette, ThirtySixPairsForegroundInsideBackground)
{
    const int order[6] = {7, 0, 3, 2, 6, 1};
    for (int colors : {8, 16, 35, 36, 88, 256}) {
        const auto pairs = PairDefinitions(colors);
        std::set<int> numbers;
        for (size_t i = 0; i < pairs.size(); ++i) {
            EXPECT_EQ(pairs[i].background, order[i / 6]);
            EXPECT_EQ(pairs[i].foreground, order[i % 6]);
            EXPECT_EQ(pairs[i].pair,
                      pairs[i].foreground + pairs[i].background * (colors > 35 ? 8 : colors) + 1);
            EXPECT_LE(pairs[i].pair, 255);
            // Every pair ColorAttr can ask for is one that was initialised.
            EXPECT_EQ(ColorAttrFor(pairs[i].background, pairs[i].foreground, false, colors) >> 8,
                      static_cast<attr_t>(pairs[i].pair));
            numbers.insert(pairs[i].pair);
        }
        EXPECT_EQ(numbers.size(), 36u) << colors;
        EXPECT_GT(*numbers.begin(), 0) << "pair 0 is the terminal's own and cannot be set";
    }
}

} // namespace
} // namespace Lanyx
