// Renders the console's screens into SVG images: the welcome screen of every simulated host
// profile, the login box, and every menu and dialog reached by walking the menus after a login
// (each entry selected, then opened with Enter and left with Esc). The screens are read through
// the end-to-end tests' terminal emulator, so the images show what the program draws today.
//
//     lanyx_gallery <output folder>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "harness/Session.hpp"

using namespace LanyxE2E;

namespace {

constexpr int kCellWidth = 9, kCellHeight = 18;

std::string Hex(const Rgb& c) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", c.red, c.green, c.blue);
    return text;
}

std::string Escaped(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

// The screen as an SVG: one rectangle per run of a background colour, one text element per run
// of cells drawn alike.
std::string Svg(const Console& console) {
    const Rgb defaultFg{170, 170, 170}, defaultBg{0, 0, 0};
    const auto colours = [&](const Cell& cell) {
        Rgb fg = cell.fg.kind == Color::Kind::Default ? defaultFg : cell.fg.rgb;
        Rgb bg = cell.bg.kind == Color::Kind::Default ? defaultBg : cell.bg.rgb;
        if (cell.reverse)
            std::swap(fg, bg);
        return std::pair{fg, bg};
    };
    std::ostringstream out;
    const int width = console.Cols() * kCellWidth, height = console.Rows() * kCellHeight;
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << "\" height=\"" << height
        << "\" font-family=\"DejaVu Sans Mono,monospace\" font-size=\"15\">\n";
    for (int row = 0; row < console.Rows(); ++row) {
        for (int col = 0; col < console.Cols();) {
            const Rgb bg = colours(console.CellAt(row, col)).second;
            int end = col + 1;
            while (end < console.Cols() && colours(console.CellAt(row, end)).second == bg)
                ++end;
            out << "<rect x=\"" << col * kCellWidth << "\" y=\"" << row * kCellHeight
                << "\" width=\"" << (end - col) * kCellWidth << "\" height=\"" << kCellHeight
                << "\" fill=\"" << Hex(bg) << "\"/>\n";
            col = end;
        }
        for (int col = 0; col < console.Cols();) {
            const Cell first = console.CellAt(row, col);
            const Rgb fg = colours(first).first;
            std::string text = first.text;
            int end = col + 1;
            for (; end < console.Cols(); ++end) {
                const Cell cell = console.CellAt(row, end);
                if (colours(cell).first != fg || cell.bold != first.bold)
                    break;
                text += cell.text;
            }
            if (text.find_first_not_of(' ') != std::string::npos)
                out << "<text x=\"" << col * kCellWidth << "\" y=\"" << row * kCellHeight + 14
                    << "\" fill=\"" << Hex(fg) << "\" xml:space=\"preserve\" textLength=\""
                    << (end - col) * kCellWidth << "\""
                    << (first.bold ? " font-weight=\"bold\"" : "") << ">" << Escaped(text)
                    << "</text>\n";
            col = end;
        }
    }
    out << "</svg>\n";
    return out.str();
}

std::string Slug(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (std::isalnum(static_cast<unsigned char>(c)))
            out += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        else if (!out.empty() && out.back() != '-')
            out += '-';
    }
    while (!out.empty() && out.back() == '-')
        out.pop_back();
    return out;
}

class Gallery {
public:
    explicit Gallery(std::string folder) : folder_(std::move(folder)) {}

    void Save(const Console& console, const std::string& name, const std::string& caption) {
        std::ofstream(folder_ + "/" + name + ".svg") << Svg(console);
        index_.push_back({name, caption});
        std::cout << name << "\n";
    }

    // Every entry of the menu on the screen: selected, then opened; menus behind an entry are
    // walked in turn.
    void WalkMenu(Session& s, const std::string& prefix, int depth) {
        std::set<std::string> seen;
        for (std::string title = s.RightTitle(); !title.empty() && seen.insert(title).second;
             title = s.RightTitle()) {
            const std::string name = prefix + "-" + Slug(title);
            Save(s.Screen(), name, "menu entry \"" + title + "\" selected");
            const std::string before = s.Screen().ScreenText(), menu = LeftTitle(s);
            const Cell lit = s.Screen().CellAt(1, 3);
            const auto covered = [&] {
                const Cell now = s.Screen().CellAt(1, 3);
                return LeftTitle(s) == menu && (now.fg != lit.fg || now.bg != lit.bg);
            };
            if (!s.Press({Keys::Enter}))
                return;
            if (LeftTitle(s) != menu) {
                Save(s.Screen(), name + "-open", "\"" + title + "\" opened");
                if (depth < 2)
                    WalkMenu(s, name, depth + 1);
                for (int tries = 0; tries < 3 && LeftTitle(s) != menu; ++tries)
                    s.Press({Keys::Escape});
            } else if (covered()) {
                Save(s.Screen(), name + "-open", "\"" + title + "\" opened");
                for (int tries = 0; tries < 3 && covered(); ++tries)
                    s.Press({Keys::Escape});
            } else if (s.Screen().ScreenText() != before) {
                Save(s.Screen(), name + "-enter", "\"" + title + "\" after Enter");
                s.Press({Keys::Enter}); // a toggle: put back, so later entries stay reachable
            }
            if (!s.Press({Keys::Down}))
                return;
        }
    }

    void WriteIndex() const {
        std::ofstream out(folder_ + "/README.md");
        out << "# Screens\n\nEvery screen below is drawn by `scripts/gallery.sh` from the running "
               "console on a simulated host, read through the terminal emulator of the "
               "end-to-end tests.\n\n| screen | image |\n|---|---|\n";
        for (const auto& [name, caption] : index_)
            out << "| " << caption << " | [" << name << ".svg](" << name << ".svg) |\n";
    }

private:
    static std::string LeftTitle(Session& s) { return s.Screen().Text(1, 3, 30); }

    std::string folder_;
    std::vector<std::pair<std::string, std::string>> index_;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: lanyx_gallery <output folder>\n";
        return 2;
    }
    Gallery gallery(argv[1]);
    const std::vector<std::string> profiles = {
        "default", "dhcp",       "dhcp-no-server", "fabric",         "fabric-broken",
        "no-nics", "audit-mode", "pxe-boot",       "custom-welcome", "smartcard",
        "ipv6",    "lockdown",   "no-login"};
    for (const std::string& profile : profiles) {
        Session s(profile);
        if (s.Settle())
            gallery.Save(s.Screen(), "welcome-" + profile,
                         "welcome screen, host \"" + profile + "\"");
    }
    {
        Session s;
        if (s.OpenLogin())
            gallery.Save(s.Screen(), "login", "login box");
        if (s.Press({Keys::F(3)}))
            gallery.Save(s.Screen(), "login-pin", "login box in PIN mode");
        if (s.Press({Keys::Escape, Keys::F(12)}))
            gallery.Save(s.Screen(), "login-f12", "login box behind F12");
        if (s.Type(kRootPassword) && s.Press({Keys::Enter}))
            gallery.Save(s.Screen(), "shutdown", "shut down and restart");
    }
    {
        Session s;
        if (s.LogIn())
            gallery.WalkMenu(s, "menu", 0);
        // A pending change asks before the network menu closes.
        if (s.OpenEntry("Configure Management Network") && s.OpenEntry("VLAN (optional)") &&
            s.Type("5") && s.Press({Keys::Enter, Keys::Escape}))
            gallery.Save(s.Screen(), "network-apply-question", "network changes to apply");
    }
    {
        // A plain xterm counts as the machine's own screen: the keyboard entry appears.
        Session s("default", {.term = "xterm"});
        if (s.LogIn() && s.OpenEntry("Configure Keyboard"))
            gallery.Save(s.Screen(), "keyboard", "keyboard layout, on the machine's own screen");
    }
    gallery.WriteIndex();
    return 0;
}
