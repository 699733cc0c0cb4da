#include "gnustep/application/InstanceRegistry.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace veltrix::gnustep {
namespace {

constexpr std::string_view kSocketSuffix = ".socket";
constexpr mode_t kPrivate = 0700;
constexpr char kUnready = '.';       // before the name, until the file is locked
constexpr long long kEntering = 10;  // seconds that nobody takes to enter

bool isPrivateFolder(const std::string& path) {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid() && (status.st_mode & 077) == 0;
}

bool makePrivateFolder(const std::string& path) {
    return (mkdir(path.c_str(), kPrivate) == 0 || errno == EEXIST) && isPrivateFolder(path);
}

// A file name for any identifier: what is not a letter, a digit, a hyphen or an inner dot becomes
// its hexadecimal value after a percent sign.
std::string fileNameFor(const std::string& identifier) {
    std::string name;
    for (const char c : identifier) {
        const bool plain = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
                           (c >= 'A' && c <= 'Z') || c == '-' || (c == '.' && !name.empty());
        char encoded[4];
        std::snprintf(encoded, sizeof encoded, "%%%02x", static_cast<unsigned char>(c));
        name += plain ? std::string(1, c) : std::string(encoded);
    }
    return name;
}

// Sorts by the time of entering: the clock of the machine since its start, then the pid.
std::string makeName(pid_t pid) {
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    char name[64];
    std::snprintf(name, sizeof name, "%012lld.%09ld-%lld", static_cast<long long>(now.tv_sec),
                  now.tv_nsec, static_cast<long long>(pid));
    return name;
}

std::optional<pid_t> pidInName(const std::string& name) {
    const std::size_t hyphen = name.find('-');
    if (hyphen == std::string::npos || hyphen + 1 == name.size())
        return std::nullopt;
    char* end = nullptr;
    const long long pid = std::strtoll(name.c_str() + hyphen + 1, &end, 10);
    if (*end != '\0' || pid <= 0)
        return std::nullopt;
    return static_cast<pid_t>(pid);
}

// Ours is the machine's clock, so a time still to come is that of an earlier start of the machine.
bool isLongAgo(const std::string& name) {
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const long long entered = std::strtoll(name.c_str(), nullptr, 10);
    return entered > now.tv_sec || now.tv_sec - entered > kEntering;
}

// A socket address holds 107 bytes of path. By way of the open folder any path is short enough.
std::optional<sockaddr_un> addressIn(int folder, const std::string& name) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const int length = std::snprintf(address.sun_path, sizeof address.sun_path,
                                     "/proc/self/fd/%d/%s", folder, name.c_str());
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof address.sun_path)
        return std::nullopt;
    return address;
}

bool isLocked(int folder, const std::string& name) {
    const int file = openat(folder, name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (file < 0)
        return false;
    const bool free = flock(file, LOCK_SH | LOCK_NB) == 0;
    close(file);
    return !free;
}

void removeEntry(int folder, const std::string& name) {
    unlinkat(folder, (name + std::string(kSocketSuffix)).c_str(), 0);
    unlinkat(folder, name.c_str(), 0);
    unlinkat(folder, (kUnready + name).c_str(), 0);
}

// The name that a file would have been given in the end, of a process that was about to enter.
std::string nameOfUnfinished(std::string name) {
    if (name.ends_with(kSocketSuffix))
        name.resize(name.size() - kSocketSuffix.size());
    if (name.front() == kUnready)
        name.erase(0, 1);
    return name;
}

void removeIfNeverFinished(int folder, const std::string& unfinished) {
    const std::string name = nameOfUnfinished(unfinished);
    if (pidInName(name) && isLongAgo(name) && !isLocked(folder, name) &&
        !isLocked(folder, kUnready + name))
        removeEntry(folder, name);
}

std::vector<std::string> namesIn(int folder) {
    std::vector<std::string> names;
    const int listed = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* const entries = listed < 0 ? nullptr : fdopendir(listed);
    if (!entries) {
        if (listed >= 0)
            close(listed);
        return names;
    }
    while (const dirent* entry = readdir(entries))
        names.emplace_back(entry->d_name);
    closedir(entries);
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

InstanceRegistry::InstanceRegistry(std::string folder, const std::string& identifier)
    : path_(std::move(folder) + "/" + fileNameFor(identifier)) {}

InstanceRegistry::~InstanceRegistry() {
    // A forked child has the object too, but has not entered.
    if (lock_ >= 0 && pid_ == getpid())
        removeEntry(folder_, name_);
    for (const int descriptor : {socket_, lock_, folder_})
        if (descriptor >= 0)
            close(descriptor);
}

std::optional<std::string> InstanceRegistry::runtimeFolder() {
    constexpr const char* kOurs = "/appkit-instances";
    if (const char* const given = std::getenv("XDG_RUNTIME_DIR"))
        if (given[0] == '/' && isPrivateFolder(given) &&
            makePrivateFolder(given + std::string(kOurs)))
            return given + std::string(kOurs);
    const char* const temporary = std::getenv("TMPDIR");
    const std::string base = temporary && temporary[0] == '/' ? temporary : "/tmp";
    const std::string ours = base + kOurs + "-" + std::to_string(geteuid());
    if (makePrivateFolder(ours))
        return ours;
    return std::nullopt;
}

bool InstanceRegistry::enter() {
    if (lock_ >= 0)
        return true;
    pid_ = getpid();
    name_ = makeName(pid_);
    return openFolder() && makeSocket() && makeLockedFile();
}

bool InstanceRegistry::openFolder() {
    if (folder_ < 0 && makePrivateFolder(path_))
        folder_ = open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return folder_ >= 0;
}

bool InstanceRegistry::makeSocket() {
    const auto address = addressIn(folder_, name_ + std::string(kSocketSuffix));
    socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    return socket_ >= 0 && address &&
           bind(socket_, reinterpret_cast<const sockaddr*>(&*address), sizeof *address) == 0;
}

// Locked under another name first: under its own it must never be seen unlocked, or somebody would
// clear it away.
bool InstanceRegistry::makeLockedFile() {
    const std::string unready = kUnready + name_;
    lock_ = openat(folder_, unready.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    return lock_ >= 0 && flock(lock_, LOCK_EX | LOCK_NB) == 0 &&
           renameat(folder_, unready.c_str(), folder_, name_.c_str()) == 0;
}

std::vector<InstanceRegistry::Instance> InstanceRegistry::running() const {
    std::vector<Instance> instances;
    for (const std::string& name : namesIn(folder_)) {
        const std::optional<pid_t> pid = pidInName(name);
        if (!pid || name.front() == kUnready)
            removeIfNeverFinished(folder_, name);
        else if (isLocked(folder_, name))
            instances.push_back({*pid, name});
        else
            removeEntry(folder_, name);
    }
    return instances;
}

bool InstanceRegistry::sendActivation(const Instance& instance) const {
    const auto address = addressIn(folder_, instance.name + std::string(kSocketSuffix));
    const int sender = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (sender < 0)
        return false;
    const char message = 'a';
    const bool sent = address && sendto(sender, &message, sizeof message, 0,
                                        reinterpret_cast<const sockaddr*>(&*address),
                                        sizeof *address) == sizeof message;
    close(sender);
    return sent;
}

bool InstanceRegistry::takeActivations() const {
    bool any = false;
    char message = 0;
    while (recv(socket_, &message, sizeof message, 0) > 0)
        any = true;
    return any;
}

}  // namespace veltrix::gnustep
