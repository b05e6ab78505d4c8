// Thrown by value by Frame::ReadKey at the idle limit of a session; caught only by the first
// frame, which ends the session. Deliberately not a std::exception, so that no handler for
// those swallows it on the way.
#pragma once

namespace Lanyx {

class LanyxTimeout {};

} // namespace Lanyx
