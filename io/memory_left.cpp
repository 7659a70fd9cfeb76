// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/memory_left.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace polyfab {
namespace {

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

std::uint64_t availableHere() {
    std::ifstream info("/proc/meminfo");
    std::uint64_t kibibytes = 0;
    for (std::string word; info >> word;) {
        if (word == "MemAvailable:" && info >> kibibytes) return kibibytes << 10;
    }
    return unlimited;
}

std::uint64_t limitOfGroup() {
    std::uint64_t bytes = 0;
    return std::ifstream("/sys/fs/cgroup/memory.max") >> bytes ? bytes : unlimited;
}

/// What the limit on the address space leaves to what the process has.
std::uint64_t leftOfSpace() {
    rlimit space{};
    if (::getrlimit(RLIMIT_AS, &space) != 0 || space.rlim_cur == RLIM_INFINITY) return unlimited;
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const std::uint64_t used = pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    return space.rlim_cur > used ? space.rlim_cur - used : 0;
}

} // namespace

std::uint64_t memoryLeft() { return std::min({leftOfSpace(), availableHere(), limitOfGroup()}); }

} // namespace polyfab
