// The network test itself: three pings through the management interface and a lookup of the
// name, one after the other, each on a detached worker so that Esc closes the screen at once.
// A worker outlives an interrupted screen: it finishes on its own and stores into a status that
// nobody reads any more, and a resolve still puts "/etc/hosts" back.
#pragma once
#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "keelson/Address.hpp"
#include "text/Dialog.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

// One step's outcome, shared by the screen and its worker: -1 while running, then 0 for success,
// anything else for failure. Stored once, by the worker.
using TestStatus = std::shared_ptr<std::atomic<int32_t>>;
inline constexpr int32_t kTestRunning = -1;

class RunTestDialog : public Dialog {
public:
    // Null targets are skipped; an empty name skips the lookup. Nothing is owned.
    RunTestDialog(Frame* owner, const Keelson::Network::IpAddress* target1,
                  const Keelson::Network::IpAddress* target2,
                  const Keelson::Network::IpAddress* target3, std::string hostname);

    // False when the operator interrupted the test.
    bool Execute() override;

    TextArea* GetResultText() const { return resultText; }

private:
    // True when the ping ran to its end; false on Esc.
    bool PingTarget(const Keelson::Network::IpAddress& address, int number);
    // Reads keys, dropping all but Esc, until the worker has stored; false on Esc.
    bool AwaitStatus(const TestStatus& status);
    void ShowResult(int32_t status);

    TextArea* resultText = nullptr;
    std::array<const Keelson::Network::IpAddress*, 3> targets;
    std::string hostname;
};

// The workers' bodies. PingWorker runs "tesselping -c 3" through the interface when it is named;
// ResolveWorker looks the name up with its hosts-file entry taken out for the time of the lookup.
void PingWorker(std::string interfaceName, std::string address, TestStatus status);
void ResolveWorker(std::string hostname, TestStatus status);

} // namespace Lanyx
