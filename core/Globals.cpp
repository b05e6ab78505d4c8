#include "core/Globals.hpp"

namespace Lanyx {

bool consoleMode = false;
bool monochrome = false;
termios savedTermios{};

Frame* activeFrame = nullptr;
uint32_t idleTimeoutSeconds = 0;
bool sessionActive = false;
bool exitPending = false;
bool cardLogin = false;
std::string cardUser;

} // namespace Lanyx
