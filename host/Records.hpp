// Records for the host's administrators besides the system log: events towards the observation
// daemon and audit records.
#pragma once
#include <initializer_list>
#include <string>
#include <utility>

#include <syslog.h>

namespace Lanyx {

// One kind of event: its id and its message, a printf format with at most one "%s".
struct EventKind {
    const char* id;
    const char* message;
};

namespace Events {
inline constexpr char marker[] = "@&!*@*@(";

inline constexpr EventKind loginFailed{"nota.user.lanyx.login.failed",
                                       "Authentication of user %s failed"};
inline constexpr EventKind loginDenied{"nota.user.lanyx.login.failed", "Access denied for user %s"};
inline constexpr EventKind passwordChanged{"nota.user.lanyx.login.passwd.changed",
                                           "Login password for user %s changed"};
inline constexpr EventKind networkRestart{"nota.user.lanyx.network.restart", "Restarting %s"};
inline constexpr EventKind restartingHostAgents{"nota.user.lanyx.restarting.hostagents",
                                                "Restarting host agents"};
inline constexpr EventKind restoreFactoryDefaults{"nota.user.lanyx.restore.factory.defaults",
                                                  "Restoring factory defaults"};
inline constexpr EventKind factoryNetworkRestored{"nota.user.lanyx.factory.network.restored",
                                                  "Restoring factory network settings"};
inline constexpr EventKind shutdownHost{"nota.user.lanyx.shutdown.host", "Shutting down host"};
inline constexpr EventKind rebootHost{"nota.user.lanyx.reboot.host", "Rebooting host"};
} // namespace Events

namespace AuditRecord {
inline constexpr char service[] = "lanyx";
inline constexpr char login[] = "lanyx.login";
inline constexpr char logout[] = "lanyx.logout";
inline constexpr char reasonKey[] = "reason";
inline constexpr char noPermission[] = "No permission";
inline constexpr char passwordExpired[] = "Password expired";
inline constexpr char invalidLogin[] = "Invalid login";
inline constexpr char sessionClosed[] = "Session closed";
inline constexpr char timeOut[] = "Time out";
} // namespace AuditRecord

// Priorities beyond the plain levels: failed logins, and the one line of a successful login.
inline constexpr int logAuthError = LOG_AUTH | LOG_ERR;
inline constexpr int logAuthSuccess = LOG_AUTH | LOG_EMERG;

// Opens the event library for one event; 0 means open.
int OpenEvents();

// The full text of an event as a printf format: marker, id in brackets, message.
std::string EventFormat(const EventKind& kind);

// Open, post, close. `argument` fills the message's "%s" (empty when none is given). A library
// that does not open drops the event; the caller's log line stands.
void PostEvent(const EventKind& kind, const char* argument = nullptr);
inline void PostEvent(const EventKind& kind, const std::string& argument) {
    PostEvent(kind, argument.c_str());
}

// One audit record for the service "lanyx" with key and value pairs (at most four).
using AuditPair = std::pair<const char*, const char*>;
void Audit(const char* action, const std::string& user, bool success,
           std::initializer_list<AuditPair> pairs = {});

} // namespace Lanyx
