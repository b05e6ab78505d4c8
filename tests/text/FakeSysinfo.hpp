// A kernel version node under the test's control, in place of the host library.
#pragma once
#include <cstddef>

namespace Lanyx::Testing {

struct FakeSysinfo {
    bool fail = false;
    int reads = 0;
    unsigned char record[344] = {};
};

FakeSysinfo& Sysinfo();

} // namespace Lanyx::Testing
