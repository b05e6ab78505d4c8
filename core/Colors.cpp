#include "core/Colors.hpp"

#include "core/Globals.hpp"

namespace Lanyx {

namespace {

constexpr std::array<int, 6> pairOrder = {ColorWhite,     ColorBlack,    ColorAmber,
                                          ColorLightGrey, ColorDarkGrey, ColorRed};

// An attribute carries 8 bits of pair number. On a terminal with so many colours that the
// pairs of the six would not fit, they are numbered as on an eight-colour terminal.
int PairColors(int colors) {
    return ColorWhite + ColorWhite * colors + 1 <= 255 ? colors : 8;
}

} // namespace

int PairNumber(int foreground, int background, int colors) {
    return foreground + background * PairColors(colors) + 1;
}

attr_t ColorAttrFor(int background, int foreground, bool isMonochrome, int colors) {
    if (isMonochrome)
        return (background == ColorBlack || background == ColorDarkGrey) ? A_STANDOUT : A_NORMAL;
    // Shifted as COLOR_PAIR does, without its masking, so that the pair number is kept whole.
    return static_cast<attr_t>(PairNumber(foreground, background, colors)) << NCURSES_ATTR_SHIFT;
}

attr_t ColorAttr(int background, int foreground) {
    return ColorAttrFor(background, foreground, monochrome, COLORS);
}

int DimPairOffset(int colors) {
    return PairNumber(ColorWhite, ColorWhite, colors);
}

namespace {

// The twins fit when the terminal has the pairs and their numbers fit an attribute.
bool HasDimTwins() {
    const int last = 2 * DimPairOffset(COLORS);
    return last < COLOR_PAIRS && last <= 255;
}

} // namespace

attr_t DimAttr(int background, int foreground) {
    if (monochrome || !HasDimTwins())
        return ColorAttr(ColorBlack, ColorDarkGrey);
    const int pair = PairNumber(foreground, background, COLORS) + DimPairOffset(COLORS);
    return static_cast<attr_t>(pair) << NCURSES_ATTR_SHIFT;
}

const std::array<ColorDefinition, 5>& ColorRedefinitions() {
    static const std::array<ColorDefinition, 5> table = {{
        {ColorAmber, 1000, 800, 0},
        {ColorDarkGrey, 334, 334, 334},
        {ColorLightGrey, 667, 667, 667},
        {ColorWhite, 1000, 1000, 1000},
        {ColorRed, 1000, 0, 0},
    }};
    return table;
}

std::array<PairDefinition, 36> PairDefinitions(int colors) {
    std::array<PairDefinition, 36> pairs{};
    size_t next = 0;
    for (int background : pairOrder)
        for (int foreground : pairOrder)
            pairs[next++] = {PairNumber(foreground, background, colors), foreground, background};
    return pairs;
}

void InitPalette() {
    use_default_colors();
    if (!can_change_color()) {
        monochrome = true;
        return;
    }
    for (const ColorDefinition& c : ColorRedefinitions())
        init_color(static_cast<short>(c.color), c.red, c.green, c.blue);
    for (const PairDefinition& p : PairDefinitions(COLORS))
        init_pair(static_cast<short>(p.pair), static_cast<short>(p.foreground),
                  static_cast<short>(p.background));
    // Each pair has a dimmed twin, drawn alike, so that a dimmed cell still tells which window
    // background it had and lighting gives every cell its own colours back.
    if (HasDimTwins()) {
        for (const PairDefinition& p : PairDefinitions(COLORS))
            init_pair(static_cast<short>(p.pair + DimPairOffset(COLORS)), ColorDarkGrey,
                      ColorBlack);
    }
}

} // namespace Lanyx
