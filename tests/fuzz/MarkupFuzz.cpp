// Layout and drawing of arbitrary markup: whatever the bytes, no crash, no hang, no line wider
// than the window, nothing drawn outside it.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "text/Markup.hpp"

namespace {

void Check(bool condition) {
    if (!condition) {
        std::abort();
    }
}

const Lanyx::TagSourceMap& Sources() {
    // Values that wrap, hold blanks, newlines and braces, or are empty.
    static const Lanyx::TagSourceMap sources = {
        {"ip", [] { return std::string("192.168.100.200"); }},
        {"hostname", [] { return std::string("a b\nc{d}e"); }},
        {"memory", [] { return std::string(); }},
        {"serial-number", [] { return std::string(70, 'S'); }},
    };
    return sources;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 3) {
        return 0;
    }
    // Sizes up to a little over a wide terminal, and the degenerate ones.
    const int width = static_cast<int>(data[0] % 140) - 2;
    const int height = static_cast<int>(data[1] % 40) - 1;
    const bool active = (data[2] & 1) != 0;
    const std::string_view text(reinterpret_cast<const char*>(data + 3), size - 3);

    const std::string formatted = Lanyx::Format(text, width, Sources());
    for (int cells : Lanyx::LineCells(formatted)) {
        Check(cells <= std::max(width, 0));
    }

    Lanyx::RenderWindow window;
    window.width = width;
    window.height = height;
    window.background = 3;
    window.foreground = 6;
    window.active = active;
    const auto colorNames = Lanyx::MakeColorNames();
    for (const auto& step : Lanyx::PlanRender(formatted, window, colorNames)) {
        if (step.kind == Lanyx::RenderStep::Kind::Print) {
            Check(step.y >= 0 && step.y < height && step.x >= 0);
            Check(step.x + static_cast<long>(step.text.size()) <= width);
            const std::string cells = Lanyx::PrintableCells(step.text, (data[2] & 2) != 0);
            Check(cells.size() <= step.text.size());
        } else {
            Check(active);
        }
    }
    // Raw text straight to the drawing pass, as a caller that skips layout would do.
    for (const auto& step : Lanyx::PlanRender(text, window, colorNames)) {
        if (step.kind == Lanyx::RenderStep::Kind::Print) {
            Check(step.x + static_cast<long>(step.text.size()) <= width && step.y < height);
        }
    }
    return 0;
}
