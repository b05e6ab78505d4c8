#include "core/SessionWiring.hpp"

#include "auth/LoginAccess.hpp"
#include "auth/LoginDialog.hpp"
#include "auth/LoginDisabledDialog.hpp"
#include "system/ShutdownDialog.hpp"
#include "system/menu/GeneralWindow.hpp"

namespace Lanyx {

SessionHooks DefaultSessionHooks() {
    SessionHooks hooks;
    // Asked at each key: the host may open or close the console at any time.
    hooks.createLoginDialog = [](Frame* owner) -> std::unique_ptr<Frame> {
        if (LoginMarkerPresent())
            return std::make_unique<LoginDialog>(owner);
        return std::make_unique<LoginDisabledDialog>(owner);
    };
    hooks.runSystemCustomization = [](Frame* owner) {
        GeneralWindow menu(owner);
        menu.RunModal();
    };
    hooks.runShutdown = [](Frame* owner) {
        ShutdownDialog shutdown(owner);
        shutdown.RunModal();
    };
    return hooks;
}

} // namespace Lanyx
