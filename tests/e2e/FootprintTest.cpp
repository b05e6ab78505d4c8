// Everything the console and the programs it starts write during a session lands under the host
// root: the session runs under strace, and every file system change it made is checked.
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <csignal>

#include <gtest/gtest.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;

namespace {

// The calls that change the file system (an open counts when it may write), and execve to tell
// who made them.
constexpr const char* kCalls = "trace=open,openat,openat2,creat,mkdir,mkdirat,mknod,mknodat,rename,"
                               "renameat,renameat2,unlink,unlinkat,rmdir,link,linkat,symlink,"
                               "symlinkat,chmod,fchmodat,chown,lchown,fchownat,truncate,utimes,"
                               "utimensat,chdir,execve";

// The places outside the root that a session may write: its terminal, the null device, and the
// folder where the harness collects sanitizer reports.
bool Allowed(const std::string& path, const std::string& root) {
    return path.starts_with(root + "/") || path == root || path.starts_with("/dev/pts/") ||
           path == "/dev/null" || path == "/dev/tty" || path.starts_with("/tmp/lanyx-sanitizer-");
}

// The quoted arguments of a traced call.
std::vector<std::string> Quoted(const std::string& args) {
    std::vector<std::string> found;
    for (size_t open = args.find('"'); open != std::string::npos;) {
        const size_t close = args.find('"', open + 1);
        if (close == std::string::npos)
            break;
        found.push_back(args.substr(open + 1, close - open - 1));
        open = args.find('"', close + 1);
    }
    return found;
}

// The lines of the trace ("PID call(args) = result") that change something outside the allowed
// places. Relative paths are taken from the process's working directory, followed through chdir.
std::vector<std::string> WritesOutside(const std::string& log, const std::string& root) {
    std::vector<std::string> outside;
    std::map<std::string, std::string> cwd;
    // Processes start where the test runs unless they move (forks are not traced).
    const std::string start = std::filesystem::current_path();
    std::ifstream in(log);
    for (std::string line; std::getline(in, line);) {
        const size_t space = line.find(' '), paren = line.find('(');
        if (space == std::string::npos || paren == std::string::npos || paren < space)
            continue;
        const std::string pid = line.substr(0, space);
        const size_t name = line.find_first_not_of(' ', space);
        const std::string call = line.substr(name, paren - name);
        const std::string args = line.substr(paren);
        // A refused call wrote nothing (the sanitizer runtime tries to make "/tmp").
        if (call == "execve" || line.compare(line.rfind(" = ") + 3, 3, "-1 ") == 0)
            continue;
        if (call.starts_with("open") && args.find("O_WRONLY") == std::string::npos &&
            args.find("O_RDWR") == std::string::npos && args.find("O_CREAT") == std::string::npos)
            continue;
        for (std::string target : Quoted(args)) {
            if (!target.starts_with("/"))
                target = (cwd.count(pid) ? cwd[pid] : start) + "/" + target;
            if (call.starts_with("chdir"))
                cwd[pid] = target;
            else if (!Allowed(target, root))
                outside.push_back(line);
        }
    }
    return outside;
}

TEST(Footprint, ASessionWritesNothingOutsideTheHostRoot) {
    const std::string log = ::testing::TempDir() + "lanyx-footprint.trace";
    {
        Session s("default", {.launcher = {"/usr/bin/strace", "-f", "-qq", "-s", "512", "-e",
                                           kCalls, "-o", log}});
        Console& console = s.Screen();
        // A login, a password change through PAM, the log viewer, a time-out saved by the host's
        // settings tool, a log out and the end.
        ASSERT_TRUE(s.Walk({"@login", "Configure Password"}));
        for (const char* text : {kRootPassword, "Trace-Pass7", "Trace-Pass7"}) {
            ASSERT_TRUE(s.Type(text));
            ASSERT_TRUE(s.Key(Keys::Enter));
        }
        ASSERT_TRUE(console.WaitForText("System Customization"));
        ASSERT_TRUE(s.Walk({"View System Logs"}));
        ASSERT_TRUE(s.Key("1"));
        ASSERT_TRUE(console.WaitForText("<Q> Quit"));
        ASSERT_TRUE(s.Key("q"));
        ASSERT_TRUE(s.Walk({"Troubleshooting Options", "Modify LANYX idle timeout"}));
        ASSERT_TRUE(s.Type("25"));
        ASSERT_TRUE(s.Press({Keys::Enter, Keys::Escape, Keys::Escape}));
        ASSERT_TRUE(s.AwaitWelcome());
        console.Signal(SIGTERM);
        ASSERT_TRUE(console.ExitsWith(0));
        EXPECT_EQ(s.Host().Matching(Record::Syslog, "Modified Lanyx timeout to 25 minutes").size(),
                  1u)
            << "the walk changed nothing";

        const std::vector<std::string> outside = WritesOutside(log, s.Host().Path());
        std::string listed;
        for (const std::string& line : outside)
            listed += line + "\n";
        EXPECT_TRUE(outside.empty()) << listed << "(whole trace kept in " << log << ")";
        if (outside.empty())
            std::remove(log.c_str());
    }
}

} // namespace
