// A top-level window that runs modally: every screen of the console is one.
#pragma once
#include "core/LanyxTimeout.hpp"
#include "core/StringFactory.hpp"
#include "core/Window.hpp"

namespace Lanyx {

class Frame : public Window {
public:
    // `owner` is the frame underneath (null for the first frame); it is not owned.
    Frame(Frame* owner, int x, int y, int width, int height, int background, int foreground);

    // Dims the owner, runs Execute, lights the owner again; gives Execute's result. A
    // LanyxTimeout travels on with the owner left dimmed.
    bool RunModal();

    // Blocks until a key arrives and returns its code. Acts on signals in between, dims the
    // frame after a minute without a key, and with `enforceIdleLimit` in a session with a limit
    // throws LanyxTimeout when the limit passes. May end the process.
    int ReadKey(bool enforceIdleLimit);

    // The frame's own event loop, run once per RunModal.
    virtual bool Execute() = 0;
    // Called by the input loop on the reload signal while this frame has the input.
    virtual void Reload() {}

    Frame* GetOwner() const { return owner; }
    StringFactory* GetStrings() const { return strings; }
    // The catalogue's text for `id`; empty while no catalogue is plugged in.
    const char* CatalogueText(uint32_t id) const { return strings ? strings->GetString(id) : ""; }

protected:
    Frame* owner = nullptr;
    StringFactory* strings = nullptr;
};

} // namespace Lanyx
