#include "text/Markup.hpp"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <optional>

namespace Lanyx {

namespace {

// No terminal is wider; keeps a nonsense width from asking for gigabytes of blanks.
constexpr int64_t kMaxWidth = 0xffff;

struct TagInfo {
    const char* tag;
    const char* fallback;
};

// Fallbacks are what the host-fact readers give on failure, so an unplugged tag looks like a
// host that could not answer.
constexpr TagInfo kTags[] = {
    {"ip", "0.0.0.0"},
    {"ssl-thumbprint-sha-1", ""},
    {"ssl-thumbprint-sha-256", ""},
    {"ssl-thumbprint-sha-512", ""},
    {"ssh-dsa-fingerprint", ""},
    {"ssh-rsa-fingerprint", ""},
    {"serial-number", ""},
    {"hostname", ""},
    {"ostraproduct", ""},
    {"ostraversion", ""},
    {"supportstart", "N/A"},
    {"supportperiod", "N/A"},
    {"memory", ""},
    {"servicetag", "N/A"},
    {"assettag", "N/A"},
    {"BIOSversion", "N/A"},
    {"BMCversion", "N/A"},
    {"PLSAversion", "N/A"},
    {"CPLDversion", "N/A"},
};

std::map<std::string, TagSource>& PluggedSources() {
    static std::map<std::string, TagSource> sources;
    return sources;
}

bool IsSpace(unsigned char c) {
    return std::isspace(c) != 0;
}

// Name is what stands before the first colon, value what stands after it; without a colon
// the whole tag is both.
void SplitTag(std::string_view tag, std::string_view& name, std::string_view& value) {
    const size_t colon = tag.find(':');
    if (colon == std::string_view::npos) {
        name = tag;
        value = tag;
    } else {
        name = tag.substr(0, colon);
        value = tag.substr(colon + 1);
    }
}

enum class AlignMode { None, Right, Centre, Padding };

class Formatter {
public:
    Formatter(int width, const TagSourceMap& sources)
        : width_(std::min<int64_t>(width, kMaxWidth)), sources_(sources), left_(width_) {}

    std::string Run(std::string_view text) {
        if (width_ <= 0) {
            return {}; // not one cell to put anything in
        }
        size_t i = 0;
        while (i < text.size()) {
            const char c = text[i];
            if (c != '{') {
                Character(c);
                ++i;
                continue;
            }
            const size_t close = text.find('}', i + 1);
            if (close == std::string_view::npos) {
                break; // an unclosed tag swallows the rest
            }
            Tag(text.substr(i + 1, close - i - 1));
            i = close + 1;
        }
        return std::move(out_);
    }

private:
    bool ColumnFull() const { return align_ == AlignMode::Padding && padLeft_ == 0; }

    void NewLine() {
        out_.push_back('\n');
        left_ = width_;
        breakPos_.reset();
        wordLen_ = 0;
        lineStart_ = out_.size();
    }

    // Inserts blanks into the text already laid out, keeping the positions that point past
    // the insertion in step.
    void InsertBlanks(size_t pos, int64_t count) {
        if (count <= 0) {
            return;
        }
        out_.insert(pos, static_cast<size_t>(count), ' ');
        if (breakPos_ && *breakPos_ >= pos) {
            *breakPos_ += static_cast<size_t>(count);
        } else if (breakPos_) {
            wordLen_ += count;
        }
        if (lineStart_ > pos) {
            lineStart_ += static_cast<size_t>(count);
        }
    }

    // A region that began on an earlier line can only shift the current one.
    size_t AlignInsertPos() const { return std::max(alignStart_, lineStart_); }

    // Appends one cell that belongs to the current line.
    void AppendCell(char c) {
        out_.push_back(c);
        --left_;
        if (breakPos_) {
            ++wordLen_;
        }
        if (align_ == AlignMode::Padding) {
            --padLeft_;
        }
    }

    void Character(char c) {
        const bool space = IsSpace(static_cast<unsigned char>(c));
        if (!space && left_ == 0) {
            // The line is full: move the word that has begun to the next line, or cut it.
            if (breakPos_ && *breakPos_ < out_.size()) {
                const size_t brk = *breakPos_;
                out_[brk] = '\n';
                size_t shift = 0;
                // wordLen_ counts the cells from the blank on, so the line left behind lost
                // exactly that many; a right or centred region on it is shifted to match.
                if ((align_ == AlignMode::Right || align_ == AlignMode::Centre) &&
                    alignStart_ <= brk) {
                    shift =
                        static_cast<size_t>(align_ == AlignMode::Right ? wordLen_ : wordLen_ / 2);
                    out_.insert(AlignInsertPos(), shift, ' ');
                }
                lineStart_ = brk + 1 + shift;
                left_ = width_ + 1 - wordLen_;
                breakPos_.reset();
                wordLen_ = 0;
            } else {
                NewLine();
            }
        } else if (space && left_ == 0) {
            // The blank or newline that meets a full line becomes the line break itself.
            NewLine();
            return;
        }
        if (ColumnFull()) {
            return;
        }
        if (space) {
            wordLen_ = 0;
            breakPos_ = out_.size();
        }
        AppendCell(c);
        if (c == '\n') {
            left_ = width_;
            breakPos_.reset();
            wordLen_ = 0;
            lineStart_ = out_.size();
        }
    }

    void Tag(std::string_view tag) {
        if (tag.empty()) {
            return;
        }
        std::string_view name;
        std::string_view value;
        SplitTag(tag, name, value);
        if (name == "align") {
            if (align_ == AlignMode::None) {
                OpenRegion(value);
            }
            return;
        }
        if (name == "/align") {
            CloseRegion();
            return;
        }
        const auto source = sources_.find(std::string(tag));
        if (source != sources_.end()) {
            Substitute(source->second ? source->second() : std::string());
            return;
        }
        out_.push_back('{');
        out_.append(tag);
        out_.push_back('}');
    }

    void OpenRegion(std::string_view value) {
        alignStart_ = out_.size();
        if (value == "right") {
            align_ = AlignMode::Right;
        } else if (value == "center") {
            align_ = AlignMode::Centre;
        } else if (value.starts_with("padding:")) {
            align_ = AlignMode::Padding;
            const std::string number(value.substr(8));
            const long n = std::strtol(number.c_str(), nullptr, 10);
            // A negative column holds nothing.
            padLeft_ = std::max<long>(n, 0);
        }
    }

    void CloseRegion() {
        switch (align_) {
        case AlignMode::Right:
        case AlignMode::Centre: {
            const int64_t blanks = align_ == AlignMode::Right ? left_ : left_ / 2;
            InsertBlanks(AlignInsertPos(), blanks);
            left_ = 0;
            // The region now ends at the right edge; a later word must not pull it apart.
            breakPos_.reset();
            wordLen_ = 0;
            break;
        }
        case AlignMode::Padding:
            if (padLeft_ != 0) {
                const int64_t blanks = std::min(left_, padLeft_);
                for (int64_t n = 0; n < blanks; ++n) {
                    out_.push_back(' ');
                    if (breakPos_) {
                        ++wordLen_;
                    }
                }
                left_ = std::max<int64_t>(left_ - padLeft_, 0);
            }
            break;
        case AlignMode::None:
            break;
        }
        align_ = AlignMode::None;
    }

    void Substitute(const std::string& text) {
        for (const char c : text) {
            if (ColumnFull()) {
                return;
            }
            if (left_ == 0) {
                NewLine();
            }
            AppendCell(c);
            if (c == '\n') {
                // A line break inside a value still ends the line it is on.
                left_ = width_;
                breakPos_.reset();
                wordLen_ = 0;
                lineStart_ = out_.size();
            }
        }
    }

    const int64_t width_;
    const TagSourceMap& sources_;
    std::string out_;
    int64_t left_;
    // Cells from breakPos_ (the blank included) to the end of out_, when there is a break point.
    int64_t wordLen_ = 0;
    std::optional<size_t> breakPos_;
    size_t lineStart_ = 0;
    AlignMode align_ = AlignMode::None;
    size_t alignStart_ = 0;
    int64_t padLeft_ = 0;
};

// Decodes the UTF-8 sequence at bytes[i]; gives its length, or 0 when it is not valid.
size_t Utf8SequenceLength(std::string_view bytes, size_t i, uint32_t& codePoint) {
    const auto b0 = static_cast<unsigned char>(bytes[i]);
    size_t length = 0;
    uint32_t cp = 0;
    uint32_t minimum = 0;
    if (b0 >= 0xc2 && b0 <= 0xdf) {
        length = 2;
        cp = b0 & 0x1fu;
        minimum = 0x80;
    } else if (b0 >= 0xe0 && b0 <= 0xef) {
        length = 3;
        cp = b0 & 0x0fu;
        minimum = 0x800;
    } else if (b0 >= 0xf0 && b0 <= 0xf4) {
        length = 4;
        cp = b0 & 0x07u;
        minimum = 0x10000;
    } else {
        return 0;
    }
    if (i + length > bytes.size()) {
        return 0;
    }
    for (size_t k = 1; k < length; ++k) {
        const auto b = static_cast<unsigned char>(bytes[i + k]);
        if ((b & 0xc0u) != 0x80u) {
            return 0;
        }
        cp = (cp << 6) | (b & 0x3fu);
    }
    if (cp < minimum || cp > 0x10ffff || (cp >= 0xd800 && cp <= 0xdfff)) {
        return 0;
    }
    codePoint = cp;
    return length;
}

} // namespace

ColorNameMap MakeColorNames() {
    return {{"white", 7},      {"black", 0},  {"dark-grey", 6},
            {"light-grey", 2}, {"yellow", 3}, {"red", 1}};
}

void RegisterTagSource(const std::string& tag, TagSource source) {
    if (source) {
        PluggedSources()[tag] = std::move(source);
    } else {
        PluggedSources().erase(tag);
    }
}

const std::vector<std::string>& SubstitutionTags() {
    static const std::vector<std::string> tags = [] {
        std::vector<std::string> all;
        for (const TagInfo& info : kTags) {
            all.emplace_back(info.tag);
        }
        return all;
    }();
    return tags;
}

bool IsSubstitutionTag(const std::string& tag) {
    const auto& tags = SubstitutionTags();
    return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

std::string TagFallback(const std::string& tag) {
    for (const TagInfo& info : kTags) {
        if (tag == info.tag) {
            return info.fallback;
        }
    }
    return {};
}

TagSourceMap MakeTagSources() {
    TagSourceMap map;
    for (const TagInfo& info : kTags) {
        const std::string tag = info.tag;
        const std::string fallback = info.fallback;
        map.emplace(tag, [tag, fallback]() -> std::string {
            const auto& plugged = PluggedSources();
            const auto it = plugged.find(tag);
            return it == plugged.end() ? fallback : it->second();
        });
    }
    return map;
}

std::string Format(std::string_view text, int width, const TagSourceMap& sources) {
    return Formatter(width, sources).Run(text);
}

std::vector<int> LineCells(std::string_view formatted) {
    std::vector<int> lines{0};
    size_t i = 0;
    while (i < formatted.size()) {
        const char c = formatted[i];
        if (c == '{') {
            const size_t close = formatted.find('}', i + 1);
            if (close == std::string_view::npos) {
                break;
            }
            i = close + 1;
            continue;
        }
        if (c == '\n') {
            lines.push_back(0);
        } else {
            ++lines.back();
        }
        ++i;
    }
    return lines;
}

std::string PrintableCells(std::string_view bytes, bool utf8) {
    std::string cells;
    cells.reserve(bytes.size());
    size_t i = 0;
    while (i < bytes.size()) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        if (b < 0x20 || b == 0x7f) {
            cells.push_back(' ');
            ++i;
        } else if (b < 0x80) {
            cells.push_back(static_cast<char>(b));
            ++i;
        } else {
            uint32_t cp = 0;
            const size_t length = utf8 ? Utf8SequenceLength(bytes, i, cp) : 0;
            if (length == 0 || cp < 0xa0) {
                cells.push_back('?');
                i += length == 0 ? 1 : length;
            } else {
                cells.append(bytes.substr(i, length));
                i += length;
            }
        }
    }
    return cells;
}

std::vector<RenderStep> PlanRender(std::string_view formatted, const RenderWindow& window,
                                   const ColorNameMap& colorNames) {
    std::vector<RenderStep> steps;
    if (window.width <= 0 || window.height <= 0) {
        return steps;
    }
    int x = 0;
    int y = 0;
    std::string pending;
    int currentFg = window.foreground;
    int currentBg = window.background;
    bool colorOpen = false;
    bool bgOpen = false;

    // Format keeps every line inside the width, so the cut only matters for text that did
    // not come through it.
    auto print = [&](bool last) {
        const int room = window.width - x;
        if (!pending.empty() && room > 0) {
            RenderStep step;
            step.kind = RenderStep::Kind::Print;
            step.x = x;
            step.y = y;
            step.text = pending.substr(0, static_cast<size_t>(room));
            steps.push_back(std::move(step));
        }
        if (!last) {
            x += static_cast<int>(std::min<size_t>(pending.size(), INT_MAX - x));
        }
        pending.clear();
    };
    auto attributes = [&](int offBg, int offFg, int onBg, int onFg) {
        if (!window.active) {
            return; // dimmed text keeps the inactive background's colours
        }
        RenderStep step;
        step.kind = RenderStep::Kind::Attributes;
        step.offBg = offBg;
        step.offFg = offFg;
        step.onBg = onBg;
        step.onFg = onFg;
        steps.push_back(std::move(step));
    };

    size_t i = 0;
    while (i < formatted.size()) {
        const char c = formatted[i];
        if (c == '\n') {
            print(false);
            x = 0;
            if (++y >= window.height) {
                return steps; // below the window nothing is drawn
            }
            ++i;
            continue;
        }
        if (c != '{') {
            pending.push_back(c);
            ++i;
            continue;
        }
        const size_t close = formatted.find('}', i + 1);
        if (close == std::string_view::npos) {
            break;
        }
        const std::string_view tag = formatted.substr(i + 1, close - i - 1);
        i = close + 1;
        if (tag.empty()) {
            continue;
        }
        std::string_view name;
        std::string_view value;
        SplitTag(tag, name, value);
        if (name == "/color" && colorOpen) {
            print(false);
            colorOpen = false;
            attributes(window.background, currentFg, window.background, window.foreground);
        } else if (name == "color") {
            print(false);
            colorOpen = true;
            const auto known = colorNames.find(std::string(value));
            if (known != colorNames.end()) {
                currentFg = known->second;
                attributes(currentBg, window.foreground, currentBg, currentFg);
            }
        } else if (name == "/bgcolor" && bgOpen) {
            print(false);
            bgOpen = false;
            attributes(currentBg, window.foreground, window.background, window.foreground);
        } else if (name == "bgcolor") {
            print(false);
            bgOpen = true;
            const auto known = colorNames.find(std::string(value));
            if (known != colorNames.end()) {
                currentBg = known->second;
                attributes(window.background, currentFg, currentBg, currentFg);
            }
        }
    }
    if (!pending.empty() && y < window.height) {
        print(true);
    }
    return steps;
}

} // namespace Lanyx
