// A bare first frame that shows the key codes it reads: it stands in for the resting screen
// until that exists, and lets the input loop, signals, idle limit and exit paths be driven
// from outside.
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
