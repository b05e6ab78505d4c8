// The simulated host's state: one JSON document inside the host root, shared by the
// console's host libraries, the host tools, the PAM module and the hostsim tool.
#pragma once
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

namespace HostSim {

// A state file that is missing, unreadable or damaged. The text names the file and the fault.
class StateError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// LANYX_HOST_ROOT, or "/" when unset or empty.
std::string HostRoot();

// root + path, path being absolute on the host ("/var/log/x" -> "<root>/var/log/x").
std::string RootPath(const std::string& root, const std::string& hostPath);

// The call trace: with "faults.trace" set in `state`, `line` is appended to TracePath(root), so a
// test can learn which library operations and tools a screen reaches. One write per line: the
// lines of concurrent callers do not mix. A trace that cannot be written is skipped.
std::string TracePath(const std::string& root);
void TraceCall(const std::string& root, const nlohmann::json& state, const std::string& line);

class StateStore {
public:
    explicit StateStore(std::string root = HostRoot());

    const std::string& Root() const { return root_; }
    // <root>/var/lib/hostsim/state.json
    std::string StatePath() const;

    // A fresh read of the whole document, under a shared lock. Throws StateError.
    nlohmann::json Read() const;

    // The whole document as the file holds it now, for a process that reads it often. The parsed
    // document of the last read is shared until the file changes; it is never changed in place.
    // Throws StateError.
    std::shared_ptr<const nlohmann::json> Snapshot() const;

    // Read-modify-write under an exclusive lock; written to a temporary file in the same
    // folder, flushed and renamed over the state, so no reader ever sees a torn document.
    // Throws StateError; what `change` throws passes through and nothing is written.
    void Update(const std::function<void(nlohmann::json&)>& change) const;

    // Replaces the whole document (used when a root is created).
    void Write(const nlohmann::json& document) const;

private:
    std::string root_;
};

} // namespace HostSim
