#include "host/Accounts.hpp"

namespace Lanyx {

std::string lanyxUser = "lanyx";
std::string loginUser;

} // namespace Lanyx
