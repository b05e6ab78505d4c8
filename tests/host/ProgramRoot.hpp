// One bare host root for each host test program, with the host's shell: its own bin folder
// first, then the machine's, and a shell that knows "let".
#pragma once
#include "HostRoot.hpp"

namespace HostTest {

class ShellRoot : public LanyxTest::ProgramHost {
public:
    ShellRoot() : ProgramHost("") {}
    void SetUp() override {
        ProgramHost::SetUp();
        Host().WriteScript("/bin/sh", "PATH=" + Host().Path() +
                                          "/bin:/usr/bin:/bin\nexport PATH\nexec /bin/bash \"$@\"");
    }
};

inline ShellRoot* const program =
    static_cast<ShellRoot*>(::testing::AddGlobalTestEnvironment(new ShellRoot));

inline LanyxTest::HostRoot& Host() {
    return program->Host();
}

} // namespace HostTest
