// A bare first frame that shows the key codes it reads, so that the input loop, signals, idle
// limit and exit paths of the console can be driven from outside: F9 enters a session, F8 leaves
// it, F10 throws.
#pragma once
#include "core/Frame.hpp"

namespace Lanyx {

class KeyTestWindow : public Frame {
public:
    KeyTestWindow();

    bool Execute() override;
    void Reload() override;

private:
    void ShowLastKey(int key);
    void ShowSessionState(const char* text);
    void RunSession();

    int reloads = 0;
};

} // namespace Lanyx
