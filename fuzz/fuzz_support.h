// SPDX-License-Identifier: GPL-3.0-or-later
// What the fuzz targets share.
#pragma once

#include "tests/support/small_meshes.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace polyfab::fuzz {

/// A file in memory with these bytes, which has a path as long as it lives.
class MemoryFile {
  public:
    MemoryFile(const std::uint8_t* data, std::size_t size) : file(memfd_create("fuzz", 0)) {
        if (write(file, data, size) != static_cast<ssize_t>(size)) std::abort();
    }
    ~MemoryFile() { close(file); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(file); }

  private:
    int file;
};

/// A path for a file to write. It is in memory: on a disk each save would wait for it.
inline std::string scratchPath(const std::string& suffix) {
    return "/dev/shm/polyfab_fuzz_" + std::to_string(getpid()) + suffix;
}

inline void demand(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "fuzz: %s\n", what);
    std::abort();
}

using test::emptyMesh;

} // namespace polyfab::fuzz
