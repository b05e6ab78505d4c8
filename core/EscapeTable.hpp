// The fixed table of escape sequences bound to key codes, whatever the terminal type.
#pragma once
#include <string>
#include <vector>

namespace Lanyx {

struct EscapeBinding {
    std::string sequence; // complete, Escape included
    int code;
};

// The bindings in the order they are installed; the lone byte 127 comes last.
const std::vector<EscapeBinding>& EscapeTable();

// define_key for every binding, in order. Needs curses to be started.
void InstallEscapeTable();

} // namespace Lanyx
