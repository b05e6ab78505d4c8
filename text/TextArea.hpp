// A window that shows a text in the markup language, laid out for its own size.
#pragma once
#include <string>
#include <string_view>

#include "core/Window.hpp"
#include "text/Markup.hpp"

namespace Lanyx {

class TextArea : public Window {
public:
    // A child of `parent` on the parent's background; a foreground of -1 keeps the parent's.
    TextArea(Window* parent, int x, int y, int width, int height, int foreground);
    ~TextArea() override = default;

    void SetText(const char* text);
    void SetText(const std::string& text);
    // For text that grows while a long operation runs.
    void AppendText(const char* text);
    void AppendText(const std::string& text);

    // Dimmed text loses its colours, so every change of state lays the text out again.
    void SetActive(bool active) override;

    const std::string& GetText() const { return text; }

    // The text laid out for this window: lines broken, aligned, padded, values inserted.
    std::string Format() const;
    // Draws a formatted text from the top-left cell, then shows the window.
    void Render(const std::string& formatted);

protected:
    std::string text;
    ColorNameMap colorNames;
    TagSourceMap tagSources;

private:
    void Redraw();
};

} // namespace Lanyx
