#include "core/Window.hpp"

#include <algorithm>

#include "core/Colors.hpp"

namespace Lanyx {

bool Window::cursorVisible = false;
int32_t Window::cursorX = 0;
int32_t Window::cursorY = 0;

Window::Window(int x, int y, int width, int height, int background, int foreground)
    : handle(newwin(height, width, y, x)), x(x), y(y), width(width), height(height),
      background(background), foreground(foreground) {
    if (handle)
        wbkgd(handle.get(), ColorAttr(background, foreground));
}

Window::Window(Window* parent, int x, int y, int width, int height, int background, int foreground)
    : parent(parent), x(parent->x + x), y(parent->y + y), width(width), height(height),
      background(background == -1 ? parent->background : background),
      foreground(foreground == -1 ? parent->foreground : foreground) {
    // subwin of a missing parent window gives null as well, which every operation tolerates.
    if (parent->handle)
        handle.reset(subwin(parent->handle.get(), height, width, this->y, this->x));
    if (handle)
        wbkgd(handle.get(), ColorAttr(this->background, this->foreground));
    parent->children.emplace_back(this);
}

Window::~Window() {
    // Sub-windows go before the window whose cells they share.
    DeleteChildren();
    if (parent)
        parent->ReleaseChild(this);
}

void Window::ReleaseChild(Window* child) {
    auto it = std::find_if(children.begin(), children.end(),
                           [child](const std::unique_ptr<Window>& c) { return c.get() == child; });
    if (it != children.end()) {
        (void)it->release();
        children.erase(it);
    }
}

Window* Window::CreateChild(int x, int y, int width, int height, int background, int foreground) {
    // The child registers itself with this window, which owns it from then on.
    return new Window(this, x, y, width, height, background, foreground);
}

void Window::DeleteChildren() {
    while (!children.empty()) {
        // Taken out of the list first, so that its destructor finds nothing to release here.
        std::unique_ptr<Window> child = std::move(children.front());
        children.erase(children.begin());
        child.reset();
    }
}

void Window::SetActive(bool newActive) {
    {
        // The tree's colours go out in one pass, before the cursor comes back.
        const UpdateBatch batch;
        active = newActive;
        if (!active && !parent) {
            savedCursorVisible = cursorVisible;
            savedCursorX = cursorX;
            savedCursorY = cursorY;
            ShowCursor(false);
        }
        // Dimmed through the twin of the window's pair: wbkgd recolours only the cells that carry
        // the old background, and a parent shares its cells with its children.
        if (handle)
            wbkgd(handle.get(),
                  active ? ColorAttr(background, foreground) : DimAttr(background, foreground));
        for (const auto& child : children)
            child->SetActive(newActive);
        Update();
    }
    if (active && !parent) {
        cursorX = savedCursorX;
        cursorY = savedCursorY;
        ShowCursor(savedCursorVisible != 0);
        if (cursorVisible)
            move(cursorY, cursorX);
    }
    // Keys typed while a screen opens or closes are dropped.
    flushinp();
}

Window::UpdateBatch::~UpdateBatch() {
    if (--depth == 0)
        doupdate();
}

void Window::Update() {
    if (!handle)
        return;
    wtouchln(handle.get(), 0, height, 1);
    if (UpdateBatch::Open())
        wnoutrefresh(handle.get());
    else
        wrefresh(handle.get());
}

void Window::Print(int px, int py, std::string_view text) {
    if (!handle)
        return;
    if (wmove(handle.get(), py, px) == OK)
        waddnstr(handle.get(), text.data(), static_cast<int>(text.size()));
}

void Window::RedrawTree() {
    if (handle)
        wredrawln(handle.get(), 0, height);
    for (const auto& child : children)
        child->RedrawTree();
}

void Window::ApplyBackground(attr_t attribute) {
    if (handle)
        wbkgd(handle.get(), attribute);
    for (const auto& child : children)
        child->ApplyBackground(attribute);
}

void Window::SetColors(int newBackground, int newForeground) {
    // A top-level window has no parent to take a colour from and keeps its own.
    if (newBackground != -1)
        background = newBackground;
    else if (parent)
        background = parent->background;
    if (newForeground != -1)
        foreground = newForeground;
    else if (parent)
        foreground = parent->foreground;
    if (active)
        ApplyBackground(ColorAttr(background, foreground));
}

void Window::MoveCursor(int cx, int cy) {
    cursorX = x + cx;
    cursorY = y + cy;
    move(cursorY, cursorX);
}

void Window::ShowCursor(bool visible) {
    cursorVisible = visible;
    curs_set(visible ? 1 : 0);
}

} // namespace Lanyx
