// Footers that several screens share, word for word. A footer used by one screen only stays
// with that screen.
#pragma once

namespace Lanyx::Footers {

// Boxes that show a text and wait for Enter.
inline constexpr const char* kOk =
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}{/align}";
// Forms: Enter accepts, Esc leaves without a change.
inline constexpr const char* kOkCancel =
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  "
    "{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
// Questions whose yes disturbs the host: F11 only.
inline constexpr const char* kF11OkCancel =
    "{align:right}{color:black}<F11>{/color} {color:dark-grey}OK{/color}  "
    "{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
inline constexpr const char* kConfirmCancel =
    "{color:black}<Enter>{/color} {color:dark-grey}Confirm{/color}{align:right}"
    "{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
inline constexpr const char* kYesNoCancel =
    "{color:black}<Y>{/color} {color:dark-grey}Yes{/color}  {color:black}<N>{/color} "
    "{color:dark-grey}No{/color}"
    "{align:right}{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
// Forms with radio buttons or check boxes.
inline constexpr const char* kSelectMarkOkCancel =
    "{color:black}<Up/Down>{/color} {color:dark-grey}Select{/color}  "
    "{color:black}<Space>{/color} {color:dark-grey}Mark Selected{/color}{align:right}"
    "{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  "
    "{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
inline constexpr const char* kToggleOkCancel =
    "{color:black}<Space>{/color} {color:dark-grey}Toggle Selected{/color}{align:right}"
    "{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  "
    "{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
inline constexpr const char* kDetailsToggleOkCancel =
    "{color:black}<D>{/color} {color:dark-grey}View Details{/color}  "
    "{color:black}<Space>{/color} {color:dark-grey}Toggle Selected{/color}{align:right}"
    "{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  "
    "{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";

// Left footer of the menus.
inline constexpr const char* kMenuSelect =
    "{color:black}<Up/Down>{/color} {color:dark-grey}Select{/color}";
// Right footers of the second-level menus, where Esc goes back.
inline constexpr const char* kChangeExit =
    "{color:white}<Enter>{/color}{color:light-grey} Change{/color}{align:right}"
    "{color:white}<Esc> {/color}{color:light-grey}Exit{/color}{/align}";

} // namespace Lanyx::Footers
