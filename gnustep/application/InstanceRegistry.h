// Which processes of one program are running, and a way to tell another one to come forward. Every
// process keeps a locked file and beside it a socket in a folder of the program's own: the lock,
// which dies with its process however that ends, says whether a file is alive, never its pid.
// One object per process and program, used on the main thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace veltrix::gnustep {

class InstanceRegistry {
  public:
    struct Instance {
        pid_t pid;
        std::string name;  // of the file
    };

    // Keeps the files in `folder`, in a folder of their own that bears the (encoded) identifier.
    InstanceRegistry(std::string folder, const std::string& identifier);
    // Leaves.
    ~InstanceRegistry();
    InstanceRegistry(const InstanceRegistry&) = delete;
    InstanceRegistry& operator=(const InstanceRegistry&) = delete;

    // $XDG_RUNTIME_DIR, else a folder of this user's in the folder for temporary files ($TMPDIR);
    // nothing if neither is private to this user.
    static std::optional<std::string> runtimeFolder();

    // From now on this process is among those running. False if the folder cannot be written.
    bool enter();

    // All that are running, this process included, in the order in which they entered. Clears away
    // what crashed processes have left.
    [[nodiscard]] std::vector<Instance> running() const;

    // True if the message was handed over.
    [[nodiscard]] bool sendActivation(const Instance& instance) const;

    // Readable when somebody has asked this process to come forward; -1 before enter().
    [[nodiscard]] int activationSocket() const { return socket_; }
    // Takes what is waiting; true if there was anything.
    [[nodiscard]] bool takeActivations() const;

  private:
    bool openFolder();
    bool makeLockedFile();
    bool makeSocket();

    std::string path_;
    std::string name_;
    pid_t pid_ = 0;  // that entered
    int folder_ = -1;
    int lock_ = -1;
    int socket_ = -1;
};

}  // namespace veltrix::gnustep
