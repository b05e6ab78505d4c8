// Host control library: the host's login accounts.
#pragma once

namespace Keelson::Authentication {

// Puts the account data (password hashes included) into the host's configuration store, so that
// a change survives a reboot. Throws KeelsonException on failure.
void StoreUserAccountsToCs();

} // namespace Keelson::Authentication
