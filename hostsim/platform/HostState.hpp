// How the platform library reaches the simulated host: its root, its state and its faults.
#pragma once
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

namespace HostSim::Platform {

// The state document as the file holds it now, shared and never changed in place: a library
// call reads a big host's state without parsing or copying it again while the file is unchanged.
using StateDocument = std::shared_ptr<const nlohmann::json>;

// The state document now; a StateError becomes a KeelsonException with the same text.
StateDocument ReadState();

// Read-modify-write of the state, with the same error conversion.
void UpdateState(const std::function<void(nlohmann::json&)>& change);

// Throws KeelsonException(text) when a lib fault is set for any of the operations.
void CheckFault(const nlohmann::json& state, std::initializer_list<const char*> operations);

// ReadState + CheckFault, the first thing most operations do.
StateDocument StateFor(std::initializer_list<const char*> operations);

// The text of a lib fault set for the operation, or empty.
std::string FaultText(const nlohmann::json& state, const char* operation);

// Appends { "operation", "target" } to the state's libRecords (newest 500 kept), so that tests
// can see calls that leave no other trace, and their order.
void RecordCall(nlohmann::json& state, const std::string& operation, const std::string& target);

// <root><hostPath> for the current LANYX_HOST_ROOT.
std::string HostFile(const std::string& hostPath);

} // namespace HostSim::Platform
