// The few questions this program asks of the file system. Pure POSIX; any thread; no failure is
// reported beyond "no".
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace veltrix {

// Whether anything exists at the path, a symbolic link's target counting (access(2), F_OK).
[[nodiscard]] bool fileExists(const std::string& path);

// The same test as NSFileManager's isExecutableFileAtPath: (access(2), X_OK): a searchable folder
// passes too.
[[nodiscard]] bool isExecutableFile(const std::string& path);

// Whether the path names a folder, a symbolic link's target counting (stat(2)).
[[nodiscard]] bool isFolder(const std::string& path);

// The whole file, or nothing if it cannot be read or is longer than `limit` bytes. At most
// `limit` + 1 bytes are ever read; a FIFO or device is never opened for long, for only regular
// files are read.
[[nodiscard]] std::optional<std::string> readFile(const std::string& path, std::size_t limit);

}  // namespace veltrix
