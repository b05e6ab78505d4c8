// The six colours of the console and the one place that turns them into curses attributes.
#pragma once
#include <array>
#include <curses.h>

namespace Lanyx {

// Colour numbers are the curses numbers; green, cyan and yellow are redefined at start.
enum Color : int {
    ColorBlack = 0,     // black
    ColorRed = 1,       // red
    ColorLightGrey = 2, // curses green, redefined
    ColorAmber = 3,     // curses yellow, redefined (markup name "yellow")
    ColorDarkGrey = 6,  // curses cyan, redefined
    ColorWhite = 7,     // white
};

// The curses attribute for a background and foreground colour, under the current `monochrome`
// flag and the terminal's `COLORS`.
attr_t ColorAttr(int background, int foreground);

// What a window of these colours is drawn in while dimmed: dark grey on black, through a twin
// of the window's own pair where the terminal has the pairs for it.
attr_t DimAttr(int background, int foreground);
// How far above a pair its dimmed twin is numbered: the highest pair number of the six.
int DimPairOffset(int colors);

// The same as a pure function of the mode and the number of colours.
attr_t ColorAttrFor(int background, int foreground, bool isMonochrome, int colors);

// Pair number of foreground f on background b.
int PairNumber(int foreground, int background, int colors);

struct ColorDefinition {
    int color;
    short red, green, blue; // 0..1000
};

// The colours that are redefined, in the order they are redefined.
const std::array<ColorDefinition, 5>& ColorRedefinitions();

struct PairDefinition {
    int pair;
    int foreground;
    int background;
};

// All 36 pairs in the order they are initialised: the foreground runs inside the background.
std::array<PairDefinition, 36> PairDefinitions(int colors);

// Default colours, then either the redefined palette with all pairs, or `monochrome` on a
// terminal that cannot redefine colours. Needs curses to be started.
void InitPalette();

} // namespace Lanyx
