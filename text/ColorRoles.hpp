// The colours of the two layouts by role, so that a screen names what a part is rather than
// which numbers it is drawn in. Colour numbers are those of core/Colors.hpp.
#pragma once
#include "core/Colors.hpp"

namespace Lanyx::Roles {

struct Role {
    int background;
    int foreground;
};

// The frame around both layouts.
inline constexpr Role Frame{ColorBlack, ColorWhite};
// Dialog: the dark pane with title and message, the amber body, the content inside the body.
inline constexpr Role TitlePane{ColorDarkGrey, ColorWhite};
inline constexpr Role Body{ColorAmber, ColorWhite};
inline constexpr Role Content{ColorAmber, ColorDarkGrey};
// Two-pane window: the area behind both panes, the list pane, the detail pane, the version line.
inline constexpr Role MainArea{ColorLightGrey, ColorWhite};
inline constexpr Role ListPane{ColorAmber, ColorWhite};
inline constexpr Role DetailPane{ColorDarkGrey, ColorWhite};
inline constexpr Role StatusLine{ColorBlack, ColorLightGrey};
// Rows of a list: the selected row, any other row, and a greyed (disabled) one.
inline constexpr Role Selection{ColorBlack, ColorWhite};
inline constexpr Role Row{ColorAmber, ColorBlack};
inline constexpr Role Dimmed{ColorAmber, ColorDarkGrey};

// Text colours on those panes.
inline constexpr int TitleText = ColorWhite;
inline constexpr int MessageText = ColorLightGrey;
inline constexpr int FooterText = ColorBlack;

} // namespace Lanyx::Roles
