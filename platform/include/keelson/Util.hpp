// Host control library: kernel information nodes and whole-line command execution.
#pragma once
#include <cstddef>
#include <string>

#include "zephora/probe.h"

namespace TesselCtl::Util {

class SysinfoUtil {
public:
    // Reads a kernel information node into the caller's record; throws KeelsonException.
    static void SysinfoGet(ProbeNode node, void* record, size_t size);
};

// Runs one command line; returns its exit status; throws KeelsonException on failure.
int TesselCtl_Exec(const std::string& commandLine, bool background, bool wait, bool useShell);

} // namespace TesselCtl::Util
