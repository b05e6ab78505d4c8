#include "text/TextArea.hpp"

#include <cstdlib>

#include "core/Colors.hpp"

namespace Lanyx {

TextArea::TextArea(Window* parent, int x, int y, int width, int height, int foreground)
    : Window(parent, x, y, width, height, -1, -1), colorNames(MakeColorNames()),
      tagSources(MakeTagSources()) {
    SetColors(-1, foreground);
}

void TextArea::SetText(const char* newText) {
    text = newText ? newText : "";
    Redraw();
}

void TextArea::SetText(const std::string& newText) {
    text = newText;
    Redraw();
}

void TextArea::AppendText(const char* more) {
    if (more)
        text += more;
    Redraw();
}

void TextArea::AppendText(const std::string& more) {
    text += more;
    Redraw();
}

void TextArea::SetActive(bool newActive) {
    active = newActive;
    Window::SetActive(newActive);
    Redraw();
}

void TextArea::Redraw() {
    if (handle)
        werase(handle.get());
    Render(Format());
}

std::string TextArea::Format() const {
    return Lanyx::Format(text, width, tagSources);
}

void TextArea::Render(const std::string& formatted) {
    RenderWindow window;
    window.width = width;
    window.height = height;
    window.background = background;
    window.foreground = foreground;
    window.active = active;
    // Multi-byte characters are passed on only when curses reads them as such.
    const bool utf8 = MB_CUR_MAX > 1;
    for (const RenderStep& step : PlanRender(formatted, window, colorNames)) {
        if (step.kind == RenderStep::Kind::Print) {
            Print(step.x, step.y, PrintableCells(step.text, utf8));
        } else if (handle) {
            wattr_off(handle.get(), ColorAttr(step.offBg, step.offFg), nullptr);
            wattr_on(handle.get(), ColorAttr(step.onBg, step.onFg), nullptr);
        }
    }
    Update();
}

} // namespace Lanyx
