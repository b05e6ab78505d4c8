// Profiles: complete starting states for a simulated host.
#pragma once
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace HostSim::Cli {

struct Profile {
    std::string name;
    std::string description;
    bool loginMarker = true; // /var/run/zephora/show-lanyx-login present
};

// All profiles, "default" first.
const std::vector<Profile>& Profiles();

// The profile of that name, or null.
const Profile* FindProfile(const std::string& name);

// The state document of a profile (the profile must exist).
nlohmann::json ProfileState(const std::string& name);

// "$6$..." hash of a password, for the accounts.
std::string HashPassword(const std::string& password, const std::string& salt);

} // namespace HostSim::Cli
