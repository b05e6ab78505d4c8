#include "welcome/SessionHooks.hpp"

namespace Lanyx {

SessionHooks DefaultSessionHooks()
{
    SessionHooks hooks;
    // No login screen yet: F2 and F12 only end the round, as a cancelled login does.
    hooks.createLoginDialog = [](Frame*) { return std::unique_ptr<Frame>(); };
    hooks.runSystemCustomization = [](Frame*) {};
    hooks.runShutdown = [](Frame*) {};
    return hooks;
}

} // namespace Lanyx
