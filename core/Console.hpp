// The console's start-up sequence and its one top-level handler.
#pragma once
#include <functional>
#include <memory>

#include "core/Frame.hpp"

namespace Lanyx {

// Builds the first frame (the resting screen) once curses and the palette are ready.
using FirstFrameFactory = std::function<std::unique_ptr<Frame>()>;

// Prepares the process and the terminal, runs the first frame modally and takes the terminal
// back. Returns the process status; most ways out end the process from inside the input loop.
int RunConsole(int argc, char** argv, const FirstFrameFactory& createFirstFrame);

} // namespace Lanyx
