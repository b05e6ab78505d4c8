// Process-wide values of the console. All of them belong to the main thread; the signal
// thread only ever touches the signal pipe.
#pragma once
#include <cstdint>
#include <string>
#include <termios.h>

#include "host/Accounts.hpp"

namespace Lanyx {

class Frame;

// Shown on a screen at the machine rather than over a remote session.
extern bool consoleMode;
// Colour pairs are not used; ColorAttr gives plain attributes.
extern bool monochrome;
// Attributes of descriptor 1 as found at start (suspend character cleared after a VT switch).
extern termios savedTermios;

// The frame that now has the input; null while none does.
extern Frame* activeFrame;
// Idle limit of a session in seconds; 0 means no limit.
extern uint32_t idleTimeoutSeconds;
// An operator is logged in and the menu is open.
extern bool sessionActive;
// An exit request arrived during a session; honoured once the session is over.
extern bool exitPending;
// The session was opened for a user whose smart card is present.
extern bool cardLogin;
// User id found on a smart card while no session is open.
extern std::string cardUser;

} // namespace Lanyx
