// Whether the console is open for login, and what a login leaves for the screens after it.
#pragma once
#include <string>

namespace Lanyx {

// The operator's password is the empty string; set at each successful login and when the
// password is changed. Main thread only, like the other process-wide values of a session.
extern bool passwordIsEmpty;

// The host opens the console for login by the existence of its marker file.
bool LoginMarkerPresent();

// `lead` followed by "<host name>.<domain>." as the login boxes name the host. Host library
// failures pass through.
std::string HostGreeting(const std::string& lead);

} // namespace Lanyx
