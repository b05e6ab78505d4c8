// One curses window and the windows inside it. A child shares its cells with the parent (it is
// a curses sub-window), so refreshing a top-level window shows the whole tree.
#pragma once
#include <cstdint>
#include <curses.h>
#include <memory>
#include <string_view>
#include <vector>

namespace Lanyx {

class Window {
public:
    // A top-level window at absolute screen coordinates.
    Window(int x, int y, int width, int height, int background, int foreground);
    // A child at coordinates relative to `parent`, which takes ownership of it. A colour of -1
    // takes the parent's.
    Window(Window* parent, int x, int y, int width, int height, int background, int foreground);
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    virtual ~Window();

    // Draws the window and its children active or dimmed.
    virtual void SetActive(bool active);

    // A plain child window, owned by this one.
    Window* CreateChild(int x, int y, int width, int height, int background, int foreground);
    void DeleteChildren();

    // Touches every line and refreshes, so the curses difference covers the whole tree.
    void Update();

    // While one is alive, Update only stages its window; the last one to go paints the screen
    // in one pass. A screen built of a dozen windows otherwise went out a dozen times over.
    class UpdateBatch {
    public:
        UpdateBatch() { ++depth; }
        ~UpdateBatch();
        UpdateBatch(const UpdateBatch&) = delete;
        UpdateBatch& operator=(const UpdateBatch&) = delete;
        static bool Open() { return depth > 0; }

    private:
        static inline int depth = 0;
    };
    // Window-relative; the text is skipped when the position is outside the window.
    void Print(int x, int y, std::string_view text);
    // Makes the next refresh write every cell of the tree, changed or not.
    void RedrawTree();
    // -1 keeps the parent's colour. Applied to the tree at once if the window is active.
    void SetColors(int background, int foreground);
    // Window-relative; the absolute position is what every input field shares.
    void MoveCursor(int x, int y);
    static void ShowCursor(bool visible);

    WINDOW* GetHandle() const { return handle.get(); }
    Window* GetParent() const { return parent; }
    int GetX() const { return x; }
    int GetY() const { return y; }
    int GetWidth() const { return width; }
    int GetHeight() const { return height; }
    int GetBackground() const { return background; }
    int GetForeground() const { return foreground; }
    bool IsActive() const { return active; }
    const std::vector<std::unique_ptr<Window>>& GetChildren() const { return children; }

    // The one text cursor of the screen, shared by all input fields.
    static bool cursorVisible;
    static int32_t cursorX;
    static int32_t cursorY;

protected:
    struct CursesWindowDeleter {
        void operator()(WINDOW* window) const { delwin(window); }
    };

    // Top-level windows only: the cursor as it was when the window went inactive.
    int32_t savedCursorVisible = 0;
    int32_t savedCursorX = 0;
    int32_t savedCursorY = 0;
    Window* parent = nullptr;
    std::unique_ptr<WINDOW, CursesWindowDeleter> handle;
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;
    int32_t background = 0;
    int32_t foreground = 0;
    std::vector<std::unique_ptr<Window>> children;
    bool active = true;

private:
    // Gives up ownership of a child that is being destroyed from outside.
    void ReleaseChild(Window* child);
    void ApplyBackground(attr_t attribute);
};

} // namespace Lanyx
