// The console's spine on simulated hosts.
#include <gtest/gtest.h>

#include "harness/Console.hpp"
#include "harness/HostRoot.hpp"

using namespace LanyxE2E;
