// The accounts the console acts for. Both belong to the main thread.
#pragma once
#include <string>

namespace Lanyx {

// The service account for host-agent queries ("lanyx").
extern std::string lanyxUser;
// The operator logged in; empty outside a session. Set through SetLoginUser (core/InputLoop.hpp).
extern std::string loginUser;

} // namespace Lanyx
