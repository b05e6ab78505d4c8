#include "core/EscapeTable.hpp"

#include <curses.h>

#include "core/Keys.hpp"

namespace Lanyx {

static_assert(Keys::Down == KEY_DOWN && Keys::Up == KEY_UP && Keys::Left == KEY_LEFT &&
              Keys::Right == KEY_RIGHT && Keys::Home == KEY_HOME);
static_assert(Keys::CursesBackspace == KEY_BACKSPACE && Keys::F1 == KEY_F(1) &&
              Keys::F12 == KEY_F(12));
static_assert(Keys::DeleteChar == KEY_DC && Keys::InsertChar == KEY_IC &&
              Keys::PageDown == KEY_NPAGE && Keys::PageUp == KEY_PPAGE && Keys::End == KEY_END &&
              Keys::Resize == KEY_RESIZE);

namespace {

std::vector<EscapeBinding> BuildTable() {
    std::vector<EscapeBinding> table;
    auto add = [&table](const char* afterEscape, int code) {
        table.push_back({std::string("\x1b") + afterEscape, code});
    };
    auto addFunctionKeys = [&add](std::initializer_list<const char*> sequences) {
        int n = 1;
        for (const char* s : sequences)
            add(s, Keys::F(n++));
    };

    // Alt+R takes the resize path.
    add("R", Keys::Resize);
    addFunctionKeys({"[11~", "[12~", "[13~", "[14~", "[15~", "[17~", "[18~", "[19~", "[20~", "[21~",
                     "[23~", "[24~"});
    addFunctionKeys({"1", "2", "3", "4", "5", "6", "7", "8", "9", "0", "!", "@"});
    add("h", Keys::Home);
    add("k", Keys::End);
    add("+", Keys::InsertChar);
    add("-", Keys::DeleteChar);
    add("?", Keys::PageUp);
    add("/", Keys::PageDown);
    addFunctionKeys({"[M", "[N", "[O", "[P", "[Q", "[R", "[S", "[T", "[U", "[V", "[W", "[X"});
    addFunctionKeys({"OP", "OQ", "OR", "OS", "OT", "OU", "OV", "OW", "OX"});
    // This family has no F10 and F11.
    add("OY", Keys::F12);
    add("OA", Keys::Up);
    add("OB", Keys::Down);
    add("OC", Keys::Right);
    add("OD", Keys::Left);
    add("[A", Keys::Up);
    add("[B", Keys::Down);
    add("[C", Keys::Right);
    add("[D", Keys::Left);
    add("[2~", Keys::InsertChar);
    add("[3~", Keys::DeleteChar);
    add("[1~", Keys::Home);
    add("[4~", Keys::End);
    add("[5~", Keys::PageUp);
    add("[6~", Keys::PageDown);
    table.push_back({std::string(1, '\x7f'), Keys::CursesBackspace});
    return table;
}

} // namespace

const std::vector<EscapeBinding>& EscapeTable() {
    static const std::vector<EscapeBinding> table = BuildTable();
    return table;
}

void InstallEscapeTable() {
    for (const EscapeBinding& binding : EscapeTable())
        define_key(binding.sequence.c_str(), binding.code);
}

} // namespace Lanyx
