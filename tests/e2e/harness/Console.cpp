#include "harness/Console.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vterm.h>

#include <cctype>
#include <cstdio>
#include <filesystem>

extern char** environ;

namespace LanyxE2E {

std::string LanyxBinary() {
    return LANYX_E2E_LANYX;
}

namespace {

#if !defined(__x86_64__)
#error "the wait for a reading program knows the system call numbers of x86_64 only"
#endif
enum SystemCall : long {
    Read = 0,
    Write = 1,
    Poll = 7,
    Writev = 20,
    Wait4 = 61,
    Ppoll = 271,
    Waitid = 247
};

std::string ProcFile(const std::string& path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// What /proc tells of a process's main thread.
struct Task {
    char state = '?';
    long call = -1; // -1 while running
    unsigned long args[6] = {};
    std::string switches; // voluntary context switches: unchanged while it stays blocked
};

std::optional<Task> ReadTask(pid_t pid) {
    const std::string base = "/proc/" + std::to_string(pid) + "/task/" + std::to_string(pid) + "/";
    const std::string stat = ProcFile(base + "stat");
    const size_t close = stat.rfind(')');
    if (close == std::string::npos || close + 2 >= stat.size())
        return std::nullopt;
    Task task;
    task.state = stat[close + 2];
    std::istringstream call(ProcFile(base + "syscall"));
    std::string word;
    if (call >> word && !word.empty() && std::isdigit(static_cast<unsigned char>(word[0]))) {
        task.call = std::stol(word);
        for (unsigned long& arg : task.args)
            if (call >> word)
                arg = std::stoul(word, nullptr, 16);
    }
    const std::string status = ProcFile(base + "status");
    const size_t at = status.find("voluntary_ctxt_switches:");
    if (at != std::string::npos)
        task.switches = status.substr(at, status.find('\n', at) - at);
    return task;
}

bool IsTerminal(pid_t pid, long fd, const std::string& terminal) {
    std::error_code error;
    const auto target = std::filesystem::read_symlink(
        "/proc/" + std::to_string(pid) + "/fd/" + std::to_string(fd), error);
    return !error && (target == terminal || target == "/dev/tty");
}

// Whether the poll of `pid` at `address` waits for input on the terminal among `count` entries.
bool PollsTerminal(pid_t pid, unsigned long address, unsigned long count,
                   const std::string& terminal) {
    if (count == 0 || count > 64)
        return false;
    std::vector<pollfd> fds(count);
    const int mem = open(("/proc/" + std::to_string(pid) + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
    if (mem < 0)
        return false;
    const size_t size = count * sizeof(pollfd);
    const bool read =
        pread(mem, fds.data(), size, static_cast<off_t>(address)) == static_cast<ssize_t>(size);
    close(mem);
    for (const pollfd& fd : fds)
        if (read && (fd.events & POLLIN) && IsTerminal(pid, fd.fd, terminal))
            return true;
    return false;
}

std::vector<pid_t> Children(pid_t pid) {
    std::istringstream list(
        ProcFile("/proc/" + std::to_string(pid) + "/task/" + std::to_string(pid) + "/children"));
    return {std::istream_iterator<pid_t>(list), std::istream_iterator<pid_t>()};
}

// The process, the console or a child it waits for, that is blocked reading the terminal. The
// console's own key wait polls the keyboard and its signal pipe; a poll of the keyboard alone is
// curses waiting for the rest of an escape sequence, and a key sent then would join it.
// A tracer above the console waits for it as for any child.
std::optional<std::pair<pid_t, std::string>> FindReader(pid_t pid, const std::string& terminal,
                                                        bool console, bool tracer = false,
                                                        int depth = 0) {
    const auto task = ReadTask(pid);
    if (!task || task->state != 'S' || depth > 4)
        return std::nullopt;
    const std::pair<pid_t, std::string> found{pid, task->switches};
    switch (task->call) {
    case Read:
        if (IsTerminal(pid, static_cast<long>(task->args[0]), terminal))
            return found;
        break;
    case Poll:
    case Ppoll:
        if ((!console || task->args[1] >= 2) &&
            PollsTerminal(pid, task->args[0], task->args[1], terminal))
            return found;
        break;
    case Wait4:
    case Waitid: {
        for (pid_t child : Children(pid))
            if (auto reader = FindReader(child, terminal, console && tracer, false, depth + 1))
                return reader;
        break;
    }
    default:
        break;
    }
    return std::nullopt;
}

constexpr const char* kFaketimeLibrary = "/usr/lib/x86_64-linux-gnu/faketime/libfaketime.so.1";

using Clock = std::chrono::steady_clock;

int MillisLeft(Clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<Duration>(deadline - Clock::now()).count();
    return static_cast<int>(std::max<long>(0, left));
}

void AppendUtf8(std::string& out, uint32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

// "rgb:RR/GG/BB" with 1 to 4 hex digits per component.
std::optional<Rgb> ParseColorText(std::string_view colorText) {
    if (colorText.substr(0, 4) != "rgb:")
        return std::nullopt;
    colorText.remove_prefix(4);
    int parts[3];
    for (int i = 0; i < 3; ++i) {
        const size_t slash = colorText.find('/');
        const std::string digits(colorText.substr(0, slash));
        if (digits.empty() || digits.size() > 4)
            return std::nullopt;
        char* end = nullptr;
        const long value = std::strtol(digits.c_str(), &end, 16);
        if (*end != '\0')
            return std::nullopt;
        const long max = (1L << (4 * digits.size())) - 1;
        parts[i] = static_cast<int>((value * 255 + max / 2) / max);
        colorText =
            slash == std::string_view::npos ? std::string_view() : colorText.substr(slash + 1);
    }
    return Rgb{parts[0], parts[1], parts[2]};
}

} // namespace

namespace Keys {
std::string_view F(int n) {
    static constexpr std::string_view table[] = {"\x1bOP",   "\x1bOQ",   "\x1bOR",   "\x1bOS",
                                                 "\x1b[15~", "\x1b[17~", "\x1b[18~", "\x1b[19~",
                                                 "\x1b[20~", "\x1b[21~", "\x1b[23~", "\x1b[24~"};
    if (n < 1 || n > 12)
        throw std::out_of_range("no function key F" + std::to_string(n));
    return table[n - 1];
}
} // namespace Keys

std::ostream& operator<<(std::ostream& out, const Color& color) {
    switch (color.kind) {
    case Color::Kind::Default:
        out << "default";
        break;
    case Color::Kind::Indexed:
        out << "index " << color.index;
        break;
    case Color::Kind::Direct:
        out << "direct";
        break;
    }
    return out << " rgb(" << color.rgb.red << "," << color.rgb.green << "," << color.rgb.blue
               << ")";
}

std::ostream& operator<<(std::ostream& out, const Cell& cell) {
    out << "'" << cell.text << "' fg " << cell.fg << " bg " << cell.bg;
    if (cell.bold)
        out << " bold";
    if (cell.reverse)
        out << " reverse";
    if (cell.underline)
        out << " underline";
    if (cell.blink)
        out << " blink";
    return out;
}

// The terminal emulator with the state that libvterm does not keep for us: the palette as
// redefined by the program (OSC 4) and the terminal properties.
struct Console::Emulator {
    Console* owner = nullptr;
    VTerm* vt = nullptr;
    VTermScreen* screen = nullptr;
    std::map<int, Rgb> palette;
    VTermScreenCallbacks callbacks{};
    VTermParserCallbacks fallbacks{};

    Emulator(Console* console, int rows, int cols) : owner(console) {
        vt = vterm_new(rows, cols);
        vterm_set_utf8(vt, 1);
        screen = vterm_obtain_screen(vt);
        callbacks.settermprop = &Emulator::OnTermProp;
        vterm_screen_set_callbacks(screen, &callbacks, this);
        fallbacks.osc = &Emulator::OnOsc;
        vterm_screen_set_unrecognised_fallbacks(screen, &fallbacks, this);
        vterm_screen_enable_altscreen(screen, 1);
        vterm_screen_reset(screen, 1);
        // Answers of the terminal (cursor reports and the like) go back to the program.
        vterm_output_set_callback(vt, &Emulator::OnOutput, this);
    }
    ~Emulator() { vterm_free(vt); }
    Emulator(const Emulator&) = delete;
    Emulator& operator=(const Emulator&) = delete;

    static int OnTermProp(VTermProp prop, VTermValue* value, void* user) {
        auto* self = static_cast<Emulator*>(user);
        if (prop == VTERM_PROP_CURSORVISIBLE)
            self->owner->cursorVisible_ = value->boolean != 0;
        else if (prop == VTERM_PROP_ALTSCREEN)
            self->owner->altScreen_ = value->boolean != 0;
        return 1;
    }

    // "4;index;colorText[;index;colorText...]" redefines palette entries.
    static int OnOsc(const char* command, size_t length, void* user) {
        auto* self = static_cast<Emulator*>(user);
        std::vector<std::string> fields;
        std::string field;
        for (size_t i = 0; i < length; ++i) {
            if (command[i] == ';') {
                fields.push_back(field);
                field.clear();
            } else {
                field += command[i];
            }
        }
        fields.push_back(field);
        if (fields.empty() || fields[0] != "4")
            return 0;
        for (size_t i = 1; i + 1 < fields.size(); i += 2) {
            const int index = std::atoi(fields[i].c_str());
            if (auto rgb = ParseColorText(fields[i + 1]))
                self->palette[index] = *rgb;
        }
        return 1;
    }

    static void OnOutput(const char* bytes, size_t length, void* user) {
        auto* self = static_cast<Emulator*>(user);
        if (self->owner->master_ >= 0 && !self->owner->exit_) {
            [[maybe_unused]] auto n = write(self->owner->master_, bytes, length);
        }
    }

    Color Convert(VTermColor color, bool isForeground) const {
        Color out;
        const bool isDefault =
            isForeground ? VTERM_COLOR_IS_DEFAULT_FG(&color) : VTERM_COLOR_IS_DEFAULT_BG(&color);
        if (isDefault) {
            out.kind = Color::Kind::Default;
        } else if (VTERM_COLOR_IS_INDEXED(&color)) {
            out.kind = Color::Kind::Indexed;
            out.index = color.indexed.idx;
            if (auto it = palette.find(out.index); it != palette.end()) {
                out.rgb = it->second;
                return out;
            }
        } else {
            out.kind = Color::Kind::Direct;
        }
        vterm_screen_convert_color_to_rgb(screen, &color);
        out.rgb = Rgb{color.rgb.red, color.rgb.green, color.rgb.blue};
        return out;
    }
};

ConsoleOptions LanyxOptions(const std::string& root, std::vector<std::string> args) {
    ConsoleOptions options;
    options.argv.push_back(LanyxBinary());
    options.argv.insert(options.argv.end(), args.begin(), args.end());
    options.hostRoot = root;
    return options;
}

Console::Console(ConsoleOptions options)
    : rows_(options.rows > 0 ? options.rows : 24), cols_(options.cols > 0 ? options.cols : 80) {
    if (options.argv.empty())
        options.argv.push_back(LanyxBinary());
    command_ = JoinCommand(options.argv);
    tracer_ = options.tracer;
    vt_ = std::make_unique<Emulator>(this, rows_, cols_);

    // The environment is built completely here, so the machine's own settings do not leak in.
    std::map<std::string, std::string> env;
    env["PATH"] = "/usr/local/bin:/usr/bin:/bin";
    env["HOME"] = std::getenv("HOME") ? std::getenv("HOME") : "/tmp";
    for (const char* keep : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TMPDIR"})
        if (const char* value = std::getenv(keep))
            env[keep] = value;
    if (!options.term.empty())
        env["TERM"] = options.term;
    if (!options.hostRoot.empty())
        env["LANYX_HOST_ROOT"] = options.hostRoot;
    if (!options.faketime.empty()) {
        env["LD_PRELOAD"] = kFaketimeLibrary;
        env["FAKETIME"] = options.faketime;
        env["FAKETIME_NO_CACHE"] = "1";
        // The sanitizer runtime wants to come first among the libraries; the preload moves it.
        std::string asan = env.count("ASAN_OPTIONS") ? env["ASAN_OPTIONS"] : "";
        env["ASAN_OPTIONS"] = (asan.empty() ? "" : asan + ":") + "verify_asan_link_order=0";
    }
    // The console sends its standard error to /dev/null: sanitizer reports go to files instead.
    char folder[] = "/tmp/lanyx-sanitizer-XXXXXX";
    if (mkdtemp(folder)) {
        reportFolder_ = folder;
        for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS"}) {
            const std::string kept = env.count(name) ? env[name] + ":" : "";
            env[name] = kept + "log_path=" + reportFolder_ + "/report";
        }
        // LeakSanitizer cannot run under ptrace.
        if (options.tracer)
            env["ASAN_OPTIONS"] += ":detect_leaks=0";
    }
    std::vector<std::string> envStrings;
    for (const auto& [name, value] : env)
        envStrings.push_back(name + "=" + value);

    winsize size{};
    size.ws_row = static_cast<unsigned short>(std::max(0, options.rows));
    size.ws_col = static_cast<unsigned short>(std::max(0, options.cols));

    // Prepared before the fork: the child only execs.
    std::vector<char*> argv, envp;
    for (auto& arg : options.argv)
        argv.push_back(arg.data());
    argv.push_back(nullptr);
    for (auto& entry : envStrings)
        envp.push_back(entry.data());
    envp.push_back(nullptr);

    pid_ = forkpty(&master_, nullptr, nullptr, &size);
    if (pid_ < 0)
        throw std::runtime_error(std::string("forkpty failed: ") + strerror(errno));
    if (pid_ == 0) {
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        for (int sig :
             {SIGPIPE, SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGWINCH, SIGUSR1, SIGUSR2, SIGCHLD})
            signal(sig, SIG_DFL);
        execve(argv[0], argv.data(), envp.data());
        const std::string msg = "exec " + std::string(argv[0]) + ": " + strerror(errno) + "\r\n";
        [[maybe_unused]] auto n = write(1, msg.data(), msg.size());
        _exit(127);
    }
    fcntl(master_, F_SETFD, FD_CLOEXEC);
    fcntl(master_, F_SETFL, fcntl(master_, F_GETFL) | O_NONBLOCK);
    if (const char* name = ptsname(master_)) {
        terminal_ = name;
        slave_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
}

Console::~Console() {
    if (!exit_ && pid_ > 0) {
        kill(-pid_, SIGKILL);
        kill(pid_, SIGKILL);
        int status = 0;
        while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
        }
    }
    if (slave_ >= 0)
        close(slave_);
    if (master_ >= 0)
        close(master_);
    if (const std::string reports = SanitizerReports(); !reports.empty())
        ADD_FAILURE() << "sanitizer report of " << command_ << ":\n" << reports;
    if (!reportFolder_.empty())
        std::filesystem::remove_all(reportFolder_);
}

std::string Console::SanitizerReports() const {
    std::string reports;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(reportFolder_, error)) {
        std::ifstream in(entry.path());
        reports += std::string(std::istreambuf_iterator<char>(in), {});
    }
    return reports;
}

void Console::Send(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t n = write(master_, bytes.data(), bytes.size());
        if (n > 0) {
            bytes.remove_prefix(static_cast<size_t>(n));
        } else if (n < 0 && (errno == EAGAIN || errno == EINTR)) {
            // The program is not reading; take its output so it can go on.
            Pump(Duration(10));
        } else {
            ADD_FAILURE() << "cannot write to the terminal: " << strerror(errno);
            return;
        }
    }
}

::testing::AssertionResult Console::WaitUntilReading(Duration timeout) {
    const auto deadline = Clock::now() + timeout;
    for (;;) {
        Pump();
        if (exit_)
            return ::testing::AssertionFailure() << "the process ended instead of reading\n"
                                                 << Describe();
        const auto before = FindReader(pid_, terminal_, true, tracer_);
        // A reader still blocked as it was when a key or signal went out has not had it yet: the
        // terminal hands input over a little later. A line-buffered reader wakes only at the line's
        // end.
        if (before && (!wakeFrom_ || before != wakeFrom_ || (Modes().c_lflag & ICANON))) {
            // Output written just before the block reaches this side a little later.
            const size_t received = received_;
            Pump(Duration(5));
            if (received_ == received && FindReader(pid_, terminal_, true, tracer_) == before) {
                wakeFrom_.reset();
                return ::testing::AssertionSuccess();
            }
        }
        if (Clock::now() >= deadline)
            return ::testing::AssertionFailure()
                   << "no read of the terminal within " << timeout.count() << " ms\n"
                   << Describe();
        Pump(Duration(2));
    }
}

bool Console::SendKey(std::string_view key) {
    if (auto reading = WaitUntilReading(); !reading) {
        std::string shown;
        for (const unsigned char c : key) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, std::isprint(c) ? "%c" : "\\x%02x", c);
            shown += escaped;
        }
        ADD_FAILURE() << "key \"" << shown << "\" not sent: " << reading.message();
        return false;
    }
    wakeFrom_ = FindReader(pid_, terminal_, true, tracer_);
    Send(key);
    return true;
}

bool Console::Type(std::string_view text) {
    for (size_t i = 0; i < text.size(); ++i)
        if (!SendKey(text.substr(i, 1)))
            return false;
    return true;
}

void Console::Signal(int sig) {
    if (exit_)
        return;
    wakeFrom_ = FindReader(pid_, terminal_, true, tracer_);
    pid_t target = pid_;
    // A tracer does not pass signals on: the program under it gets them.
    if (const auto children = Children(pid_); tracer_ && !children.empty())
        target = children.front();
    kill(target, sig);
}

void Console::SignalChildren(int sig) {
    if (!exit_)
        for (pid_t child : Children(pid_))
            kill(child, sig);
}

bool Console::OutputStopped() {
    Pump();
    std::vector<pid_t> tree{pid_};
    for (size_t i = 0; i < tree.size() && i < 16; ++i) {
        const auto task = ReadTask(tree[i]);
        if (task && task->state == 'S' && (task->call == Write || task->call == Writev) &&
            IsTerminal(tree[i], static_cast<long>(task->args[0]), terminal_))
            return true;
        for (pid_t child : Children(tree[i]))
            tree.push_back(child);
    }
    return false;
}

void Console::Resize(int rows, int cols) {
    rows_ = rows;
    cols_ = cols;
    vterm_set_size(vt_->vt, rows, cols);
    winsize size{};
    size.ws_row = static_cast<unsigned short>(rows);
    size.ws_col = static_cast<unsigned short>(cols);
    ioctl(master_, TIOCSWINSZ, &size);
}

// The emulator repeats one character too many for "CSI n b" (repeat the preceding character),
// which curses uses for long runs such as box lines; such a run ending in the last column then
// scrolls the whole screen. The harness expands the repeat itself.
void Console::Feed(const char* bytes, size_t length) {
    received_ += length;
    transcript_.append(bytes, length);
    std::string data = std::move(pendingEscape_);
    pendingEscape_.clear();
    data.append(bytes, length);
    std::string out;
    size_t i = 0;
    while (i < data.size()) {
        if (data[i] == '\x1b') {
            size_t k = i + 1;
            if (k < data.size() && data[k] == '[') {
                ++k;
                while (k < data.size() && data[k] >= '0' && data[k] <= '9')
                    ++k;
            }
            if (k >= data.size() && data.size() - i < 32) {
                pendingEscape_ = data.substr(i); // completed by the next read
                break;
            }
            if (k < data.size() && k > i + 1 && data[k] == 'b') {
                const std::string digits = data.substr(i + 2, k - i - 2);
                const int count = digits.empty() ? 1 : std::atoi(digits.c_str());
                // The character to repeat: the last one written, UTF-8 sequences whole.
                const std::string written = lastWritten_ + out;
                size_t start = written.size();
                while (start > 0 && (static_cast<unsigned char>(written[start - 1]) & 0xC0) == 0x80)
                    --start;
                if (start > 0)
                    --start;
                const std::string character = written.substr(start);
                for (int n = 0; n < count && n < 10000; ++n)
                    out += character;
                i = k + 1;
                continue;
            }
        }
        out += data[i++];
    }
    lastWritten_ += out;
    if (lastWritten_.size() > 8)
        lastWritten_.erase(0, lastWritten_.size() - 8);
    vterm_input_write(vt_->vt, out.data(), out.size());
}

void Console::Pump(Duration wait) {
    const auto deadline = Clock::now() + wait;
    bool first = true;
    for (;;) {
        pollfd pfd{master_, POLLIN, 0};
        const int ready = poll(&pfd, 1, first ? MillisLeft(deadline) : 0);
        first = false;
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0 || !(pfd.revents & POLLIN))
            break;
        char buffer[16384];
        const ssize_t n = read(master_, buffer, sizeof buffer);
        if (n <= 0)
            break;
        Feed(buffer, static_cast<size_t>(n));
    }
    Reap();
}

void Console::Reap() {
    if (exit_ || pid_ <= 0)
        return;
    int status = 0;
    if (waitpid(pid_, &status, WNOHANG) == pid_) {
        exit_ = ExitInfo{status};
        Drain();
    }
}

// The kernel hands written bytes to the reading side a little later; after the end, read until
// the terminal has been quiet for a moment.
void Console::Drain() {
    for (size_t before = received_ + 1; received_ != before;) {
        before = received_;
        Pump(Duration(50));
    }
}

bool Console::Running() {
    Pump();
    return !exit_;
}

::testing::AssertionResult Console::WaitFor(const std::function<bool()>& condition,
                                            Duration timeout, std::string_view what) {
    return Await(condition, timeout, what, false);
}

// Wakes on output, and in any case soon, since the condition may look at files. A wait for the
// screen alone ends with the process once its output is drained.
::testing::AssertionResult Console::Await(const std::function<bool()>& condition, Duration timeout,
                                          std::string_view what, bool screenOnly) {
    const auto deadline = Clock::now() + timeout;
    for (;;) {
        Pump();
        if (condition())
            return ::testing::AssertionSuccess();
        if ((screenOnly && exit_) || Clock::now() >= deadline)
            break;
        Pump(Duration(std::min(20, MillisLeft(deadline))));
    }
    return ::testing::AssertionFailure()
           << what
           << (exit_ ? " not met before the process ended"
                     : " not met within " + std::to_string(timeout.count()) + " ms")
           << "\n"
           << Describe();
}

::testing::AssertionResult Console::WaitForText(std::string_view text, Duration timeout) {
    return Await([&] { return Find(text).has_value(); }, timeout,
                 "\"" + std::string(text) + "\" shown", true);
}

::testing::AssertionResult Console::WaitForFullScreen(std::string_view text,
                                                      std::string_view absent, Duration timeout) {
    return Await(
        [&] {
            return CellAt(rows_ - 1, cols_ - 1).text == "┘" && Find(text) &&
                   (absent.empty() || !Find(absent));
        },
        timeout, "the whole screen with \"" + std::string(text) + "\"", true);
}

::testing::AssertionResult Console::WaitForTextGone(std::string_view text, Duration timeout) {
    return Await([&] { return !Find(text); }, timeout, "\"" + std::string(text) + "\" gone", true);
}

::testing::AssertionResult Console::ExitsWith(int code, Duration timeout) {
    if (auto ended = Await([&] { return exit_.has_value(); }, timeout, "the end", false); !ended)
        return ended;
    if (exit_->Exited() && exit_->Code() == code)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "expected exit status " << code << ", " << exit_->Describe() << "\n"
           << Describe();
}

Cell Console::CellAt(int row, int col) const {
    Cell cell;
    VTermScreenCell raw{};
    if (row < 0 || col < 0 || row >= rows_ || col >= cols_ ||
        !vterm_screen_get_cell(vt_->screen, VTermPos{row, col}, &raw)) {
        cell.text = " ";
        return cell;
    }
    for (int i = 0; i < VTERM_MAX_CHARS_PER_CELL && raw.chars[i] != 0; ++i) {
        if (raw.chars[i] == static_cast<uint32_t>(-1))
            break;
        AppendUtf8(cell.text, raw.chars[i]);
    }
    if (cell.text.empty())
        cell.text = " ";
    cell.fg = vt_->Convert(raw.fg, true);
    cell.bg = vt_->Convert(raw.bg, false);
    cell.bold = raw.attrs.bold;
    cell.underline = raw.attrs.underline != 0;
    cell.blink = raw.attrs.blink;
    cell.reverse = raw.attrs.reverse;
    return cell;
}

std::string Console::Text(int row, int col, int length) const {
    return Trimmed(Cells(row, col, length));
}

std::string Console::Cells(int row, int col, int length) const {
    std::string text;
    for (int c = col; c < col + length && c < cols_; ++c) {
        VTermScreenCell raw{};
        if (vterm_screen_get_cell(vt_->screen, VTermPos{row, c}, &raw) &&
            raw.chars[0] == static_cast<uint32_t>(-1))
            continue; // right half of a wide character
        text += CellAt(row, c).text;
    }
    return text;
}

std::string Console::Row(int row) const {
    return Text(row, 0, cols_);
}

std::string Console::ScreenText() const {
    std::string text;
    for (int r = 0; r < rows_; ++r) {
        if (r)
            text += '\n';
        text += Row(r);
    }
    return text;
}

std::optional<std::pair<int, int>> Console::Find(std::string_view text) const {
    for (int r = 0; r < rows_; ++r) {
        // Column positions count cells, so search cell by cell.
        std::vector<std::pair<size_t, int>> starts; // byte offset -> column
        std::string line;
        for (int c = 0; c < cols_; ++c) {
            starts.emplace_back(line.size(), c);
            line += CellAt(r, c).text;
        }
        const size_t at = line.find(text);
        if (at == std::string::npos)
            continue;
        int col = 0;
        for (const auto& [offset, column] : starts)
            if (offset <= at)
                col = column;
        return std::make_pair(r, col);
    }
    return std::nullopt;
}

std::optional<Rgb> Console::Redefined(int index) const {
    if (auto it = vt_->palette.find(index); it != vt_->palette.end())
        return it->second;
    return std::nullopt;
}

termios Console::Modes() const {
    termios modes{};
    tcgetattr(slave_ >= 0 ? slave_ : master_, &modes);
    return modes;
}

std::string Console::Describe() const {
    std::ostringstream out;
    out << "command: " << command_ << "\n";
    out << "process: " << (exit_ ? exit_->Describe() : "running, pid " + std::to_string(pid_))
        << "\n";
    out << "screen (" << cols_ << "x" << rows_ << "):\n";
    out << "+" << std::string(static_cast<size_t>(cols_), '-') << "+\n";
    for (int r = 0; r < rows_; ++r) {
        out << "|" << Cells(r, 0, cols_) << "|\n";
    }
    out << "+" << std::string(static_cast<size_t>(cols_), '-') << "+\n";
    return out.str();
}

} // namespace LanyxE2E
