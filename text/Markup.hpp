// The markup language of every text on the screens, as pure functions: layout for a width
// (`Format`) and the drawing steps for a window (`PlanRender`). `TextArea` puts both on curses.
#pragma once
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Lanyx {

using ColorNameMap = std::map<std::string, int>;
using TagSource = std::function<std::string()>;
using TagSourceMap = std::map<std::string, TagSource>;

// The colour names of the language and their colour numbers.
ColorNameMap MakeColorNames();

// Substitution tags. The host-fact readers live in higher layers; they plug themselves in
// here by tag name. A tag whose source is not plugged gives its fallback text.
void RegisterTagSource(const std::string& tag, TagSource source); // empty source: unplug
bool IsSubstitutionTag(const std::string& tag);
const std::vector<std::string>& SubstitutionTags();
std::string TagFallback(const std::string& tag);

// One map per text area: each known tag calls whatever is plugged at the time of the call.
TagSourceMap MakeTagSources();

// Breaks, aligns and pads `text` for lines of `width` cells and inserts substitution values.
// Only colour tags (and tags this pass does not know) remain in the result. Any byte sequence
// is accepted; no line of the result holds more than `width` cells (bytes outside tags).
std::string Format(std::string_view text, int width, const TagSourceMap& sources);

// Visible cells of each line of a formatted text, tags not counted (tags parsed as Render
// does). Used to check the width promise of `Format`.
std::vector<int> LineCells(std::string_view formatted);

// One drawing step of a formatted text in a window.
struct RenderStep {
    enum class Kind { Print, Attributes };
    Kind kind = Kind::Print;
    // Print: window-relative cell and the bytes to write there, at most width - x of them.
    int x = 0;
    int y = 0;
    std::string text;
    // Attributes: switch off ColorAttr(offBg, offFg), then switch on ColorAttr(onBg, onFg).
    int offBg = 0, offFg = 0, onBg = 0, onFg = 0;

    bool operator==(const RenderStep&) const = default;
};

struct RenderWindow {
    int width = 0;
    int height = 0;
    int background = 0;
    int foreground = 7;
    bool active = true;
};

// The steps that draw `formatted` into a window; nothing lands outside width x height.
std::vector<RenderStep> PlanRender(std::string_view formatted, const RenderWindow& window,
                                   const ColorNameMap& colorNames);

// Makes a run of bytes safe to hand to curses: control bytes become blanks, and bytes that
// curses would spell out in several cells become '?' (with `utf8`, only those that are not
// valid UTF-8 or encode a control character; without it, every byte above 0x7f).
std::string PrintableCells(std::string_view bytes, bool utf8);

} // namespace Lanyx
