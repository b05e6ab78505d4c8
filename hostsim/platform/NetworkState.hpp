// Helpers shared by the network parts of the simulated library: tolerant access to the state.
#pragma once
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "keelson/Address.hpp"
#include "keelson/Network.hpp"

namespace HostSim::Platform::Net {

// The string at key, or empty.
std::string Text(const nlohmann::json& object, const char* key);
// The array / object at key, made one when it is missing or of another type.
nlohmann::json& Array(nlohmann::json& object, const char* key);
nlohmann::json& Object(nlohmann::json& object, const char* key);
// A copy of the array at key, or an empty array.
nlohmann::json ArrayOf(const nlohmann::json& object, const char* key);
std::vector<std::string> Strings(const nlohmann::json& object, const char* key);
// The entry of the array whose "name" is name, or null.
nlohmann::json* Named(nlohmann::json& array, const std::string& name);
const nlohmann::json* Named(const nlohmann::json& array, const std::string& name);
// The named entry of state[section], or null.
const nlohmann::json* Find(const nlohmann::json& state, const char* section,
                           const std::string& name);
// The named entry of state[section]; throws KeelsonException("<what> <name> not found").
nlohmann::json& Require(nlohmann::json& state, const char* section, const std::string& name,
                        const char* what);
const nlohmann::json& Require(const nlohmann::json& state, const char* section,
                              const std::string& name, const char* what);
void RemoveString(nlohmann::json& array, const std::string& text);
bool HasString(const nlohmann::json& array, const std::string& text);
// Addresses from the state's text; empty text is the zero address.
Keelson::Network::Ipv4Address V4(const std::string& text);
Keelson::Network::Ipv6Address V6(const std::string& text);
Keelson::Network::NicTeamingPolicy TeamingFrom(const nlohmann::json& teaming);
void TeamingInto(nlohmann::json& teaming, const Keelson::Network::NicTeamingPolicy& policy);
// Teaming of a new switch: follows the uplink order, no uplinks yet.
nlohmann::json NewTeaming();

} // namespace HostSim::Platform::Net
