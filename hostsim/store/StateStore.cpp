// The state document: shared-lock reads, exclusive-lock read-modify-write with an atomic rename.
#include "store/StateStore.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace HostSim {

namespace {

// A descriptor closed on every way out.
class Fd {
public:
    explicit Fd(int fd = -1) : fd_(fd) {}
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    ~Fd() {
        if (fd_ >= 0)
            ::close(fd_);
    }
    int Get() const { return fd_; }
    int Release() { return std::exchange(fd_, -1); }
    void Reset(int fd) {
        if (fd_ >= 0)
            ::close(fd_);
        fd_ = fd;
    }

private:
    int fd_;
};

std::string ErrnoText() {
    return std::strerror(errno);
}

std::string Folder(const std::string& path) {
    auto slash = path.rfind('/');
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash);
}

// Holds a flock on <root>/var/lib/hostsim/state.lock for its lifetime.
class Lock {
public:
    Lock(const std::string& lockPath, int operation)
        : fd_(::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644)) {
        if (fd_.Get() < 0)
            throw StateError("Cannot open state lock " + lockPath + ": " + ErrnoText());
        while (::flock(fd_.Get(), operation) != 0) {
            if (errno != EINTR)
                throw StateError("Cannot lock " + lockPath + ": " + ErrnoText());
        }
    }

private:
    Fd fd_;
};

int OpenState(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        if (errno == ENOENT)
            throw StateError("State file " + path + " is missing");
        throw StateError("Cannot read state file " + path + ": " + ErrnoText());
    }
    return fd;
}

std::string ReadAll(int fd, const std::string& path) {
    std::string text;
    char buffer[65536];
    for (;;) {
        ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            throw StateError("Cannot read state file " + path + ": " + ErrnoText());
        }
        if (n == 0)
            break;
        text.append(buffer, static_cast<size_t>(n));
    }
    return text;
}

std::string ReadWhole(const std::string& path) {
    Fd fd(OpenState(path));
    return ReadAll(fd.Get(), path);
}

// One version of the state file. Writers replace the file, so a new version is a new inode; the
// size and the times tell a file that was rewritten in place.
struct FileVersion {
    dev_t device;
    ino_t inode;
    off_t size;
    timespec modified;
    timespec changed;

    explicit FileVersion(const struct stat& st)
        : device(st.st_dev), inode(st.st_ino), size(st.st_size), modified(st.st_mtim),
          changed(st.st_ctim) {}
    bool operator==(const FileVersion& other) const {
        return device == other.device && inode == other.inode && size == other.size &&
               modified.tv_sec == other.modified.tv_sec &&
               modified.tv_nsec == other.modified.tv_nsec &&
               changed.tv_sec == other.changed.tv_sec && changed.tv_nsec == other.changed.tv_nsec;
    }
};

// The document of the last Snapshot in this process. Its file is kept open so that its inode
// cannot be given to a later version while the document is held.
struct CachedState {
    std::mutex mutex;
    std::string path;
    std::optional<FileVersion> version;
    Fd file;
    std::shared_ptr<const nlohmann::json> document;
};

// Never destroyed: a detached thread of the console may still read the state while it exits.
CachedState& Cache() {
    static CachedState* const cache = new CachedState;
    return *cache;
}

nlohmann::json Parse(const std::string& path, const std::string& text) {
    if (text.empty())
        throw StateError("State file " + path + " is empty");
    nlohmann::json document;
    try {
        document = nlohmann::json::parse(text);
    } catch (const nlohmann::json::parse_error& e) {
        throw StateError("State file " + path + " is damaged: " + e.what());
    }
    if (!document.is_object())
        throw StateError("State file " + path + " is damaged: not a JSON object");
    return document;
}

void WriteAll(int fd, const std::string& text, const std::string& path) {
    size_t done = 0;
    while (done < text.size()) {
        ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            throw StateError("Cannot write " + path + ": " + ErrnoText());
        }
        done += static_cast<size_t>(n);
    }
}

// Temporary file + fsync + rename + fsync of the folder: readers see the old or the new document.
void Replace(const std::string& path, const nlohmann::json& document) {
    const std::string folder = Folder(path);
    std::string tmpl = path + ".XXXXXX";
    Fd fd(::mkstemp(tmpl.data()));
    if (fd.Get() < 0)
        throw StateError("Cannot create a temporary file in " + folder + ": " + ErrnoText());
    try {
        WriteAll(fd.Get(), document.dump(2) + "\n", tmpl);
        if (::fchmod(fd.Get(), 0644) != 0 || ::fsync(fd.Get()) != 0)
            throw StateError("Cannot flush " + tmpl + ": " + ErrnoText());
        if (::close(fd.Release()) != 0)
            throw StateError("Cannot close " + tmpl + ": " + ErrnoText());
        if (::rename(tmpl.c_str(), path.c_str()) != 0)
            throw StateError("Cannot replace state file " + path + ": " + ErrnoText());
    } catch (...) {
        ::unlink(tmpl.c_str());
        throw;
    }
    Fd dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.Get() >= 0)
        ::fsync(dir.Get());
}

} // namespace

std::string HostRoot() {
    const char* root = std::getenv("LANYX_HOST_ROOT");
    return (root == nullptr || *root == '\0') ? std::string("/") : std::string(root);
}

std::string RootPath(const std::string& root, const std::string& hostPath) {
    std::string base = root;
    while (base.size() > 1 && base.back() == '/')
        base.pop_back();
    if (base.empty() || base == "/")
        return hostPath;
    if (hostPath.empty() || hostPath.front() != '/')
        return base + "/" + hostPath;
    return base + hostPath;
}

std::string TracePath(const std::string& root) {
    return RootPath(root, "/var/lib/hostsim/calls.log");
}

void TraceCall(const std::string& root, const nlohmann::json& state, const std::string& line) {
    const auto faults = state.find("faults");
    if (faults == state.end() || !faults->is_object() ||
        faults->value("trace", nlohmann::json()) != true)
        return;
    Fd fd(::open(TracePath(root).c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644));
    if (fd.Get() < 0)
        return;
    const std::string text = line + "\n";
    [[maybe_unused]] const ssize_t written = ::write(fd.Get(), text.data(), text.size());
}

StateStore::StateStore(std::string root) : root_(std::move(root)) {}

std::string StateStore::StatePath() const {
    return RootPath(root_, "/var/lib/hostsim/state.json");
}

nlohmann::json StateStore::Read() const {
    const std::string path = StatePath();
    // A missing folder means a missing state, not a lock we could create.
    struct stat st {};
    if (::stat(Folder(path).c_str(), &st) != 0)
        throw StateError("State file " + path + " is missing");
    Lock lock(RootPath(root_, "/var/lib/hostsim/state.lock"), LOCK_SH);
    return Parse(path, ReadWhole(path));
}

std::shared_ptr<const nlohmann::json> StateStore::Snapshot() const {
    const std::string path = StatePath();
    struct stat st {};
    CachedState& cache = Cache();
    if (::stat(path.c_str(), &st) == 0) {
        const std::lock_guard guard(cache.mutex);
        if (cache.document && cache.path == path && cache.version == FileVersion(st))
            return cache.document;
    }
    if (::stat(Folder(path).c_str(), &st) != 0)
        throw StateError("State file " + path + " is missing");
    Lock lock(RootPath(root_, "/var/lib/hostsim/state.lock"), LOCK_SH);
    Fd fd(OpenState(path));
    // The version of the descriptor read, not of the path: the path may be replaced meanwhile.
    if (::fstat(fd.Get(), &st) != 0)
        throw StateError("Cannot read state file " + path + ": " + ErrnoText());
    auto document = std::make_shared<const nlohmann::json>(Parse(path, ReadAll(fd.Get(), path)));
    const std::lock_guard guard(cache.mutex);
    cache.path = path;
    cache.version = FileVersion(st);
    cache.file.Reset(fd.Release());
    cache.document = document;
    return document;
}

void StateStore::Update(const std::function<void(nlohmann::json&)>& change) const {
    const std::string path = StatePath();
    struct stat st {};
    if (::stat(Folder(path).c_str(), &st) != 0)
        throw StateError("State file " + path + " is missing");
    Lock lock(RootPath(root_, "/var/lib/hostsim/state.lock"), LOCK_EX);
    nlohmann::json document = Parse(path, ReadWhole(path));
    change(document);
    Replace(path, document);
}

void StateStore::Write(const nlohmann::json& document) const {
    const std::string path = StatePath();
    const std::string folder = Folder(path);
    struct stat st {};
    if (::stat(folder.c_str(), &st) != 0)
        throw StateError("State folder " + folder + " is missing");
    Lock lock(RootPath(root_, "/var/lib/hostsim/state.lock"), LOCK_EX);
    Replace(path, document);
}

} // namespace HostSim
