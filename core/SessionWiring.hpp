// The session as the program wires it: the screens behind the welcome screen's F2 and F12.
// Part of the program beside main, above every layer, so that no layer has to link upward.
#pragma once
#include "welcome/SessionHooks.hpp"

namespace Lanyx {

SessionHooks DefaultSessionHooks();

} // namespace Lanyx
