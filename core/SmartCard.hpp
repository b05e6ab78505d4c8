// Who is on the smart cards in the host's readers.
#pragma once
#include <string>

namespace Lanyx {

// The first user id found on a card, slot by slot; empty when there is none or the readers
// cannot be asked.
std::string FindCardUser();

// Whether a card now in a reader carries `id`.
bool HasCardWithUser(const std::string& id);

} // namespace Lanyx
