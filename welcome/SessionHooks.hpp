// What the welcome screen runs behind F2 and F12: the login (or the refusal box of a console
// closed for login), then the System Customization menu or the shutdown dialog. The welcome
// screen does not link those screens: the program plugs them in (core/SessionWiring.hpp) and
// tests pass their own.
#pragma once
#include <functional>
#include <memory>

#include "core/Frame.hpp"

namespace Lanyx {

struct SessionHooks {
    // The login dialog for the current state of the console (open for login or closed), owned
    // by `owner`; null when there is no login to run. A true modal run means a user logged in.
    std::function<std::unique_ptr<Frame>(Frame* owner)> createLoginDialog;
    // The System Customization menu of a session, run modally over `owner`.
    std::function<void(Frame* owner)> runSystemCustomization;
    // The shutdown dialog after a login by F12, run modally over `owner`.
    std::function<void(Frame* owner)> runShutdown;
};

} // namespace Lanyx
