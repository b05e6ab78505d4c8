#include "host/Records.hpp"

#include "host/Log.hpp"

#include <zephora/notauser.h>
#include <zephora/support.h>

namespace Lanyx {

int OpenEvents() {
    Log(LOG_INFO, "%s", "Initializing notauser library");
    const int result = NotaUserLib_Init();
    if (result != 0)
        Log(LOG_ERR, "Unable to initialize notauser library from LANYX. Error code: %d", result);
    return result;
}

std::string EventFormat(const EventKind& kind) {
    return std::string(Events::marker) + kind.id + ")" + kind.message;
}

void PostEvent(const EventKind& kind, const char* argument) {
    if (OpenEvents() != 0)
        return;
    // The library takes the whole text as its format; the messages hold at most one "%s", and
    // the argument is passed even when a message has none, which printf ignores.
    const std::string format = EventFormat(kind);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
    NotaUserLib_AddNota(format.c_str(), argument ? argument : "");
#pragma GCC diagnostic pop
    NotaUserLib_Close();
}

void Audit(const char* action, const std::string& user, bool success,
           std::initializer_list<AuditPair> pairs) {
    const char* text[8] = {};
    int count = 0;
    for (const AuditPair& pair : pairs) {
        if (count == 8) {
            Log(LOG_ERR, "Audit record %s: pairs beyond the fourth dropped", action);
            break;
        }
        text[count++] = pair.first;
        text[count++] = pair.second ? pair.second : "";
    }
    const char* service = AuditRecord::service;
    const int flag = success ? 1 : 0;
    // The call ends its list at the first null, so the unused slots close it.
    ZephAudit_VLog(action, user.c_str(), service, flag, text[0], text[1], text[2], text[3], text[4],
                   text[5], text[6], text[7], static_cast<const char*>(nullptr));
}

} // namespace Lanyx
