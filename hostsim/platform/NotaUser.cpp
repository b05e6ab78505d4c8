// The event library: each event is one line of <root>/var/log/notad.log.
#include "zephora/notauser.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "platform/HostState.hpp"
#include "platform/Records.hpp"

extern "C" {

int NotaUserLib_Init(void) {
    try {
        const auto document = HostSim::Platform::ReadState();
        const nlohmann::json& state = *document;
        if (!HostSim::Platform::FaultText(state, "NotaUserLib_Init").empty())
            return 5;
        return 0;
    } catch (const std::exception&) {
        return 2; // no host to talk to
    }
}

int NotaUserLib_AddNota(const char* format, ...) {
    if (format == nullptr)
        return -1;
    va_list args;
    va_start(args, format);
    std::string text = HostSim::Platform::VFormat(format, args);
    va_end(args);
    HostSim::Platform::AppendRecord("/var/log/notad.log",
                                    HostSim::Platform::Timestamp() + " " + text);
    return 0;
}

void NotaUserLib_Close(void) {}

} // extern "C"
