// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/memory_left.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <string>
#include <sys/resource.h>

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

} // namespace

std::uint64_t memoryLeft() {
    rlimit space{};
    const bool limited = ::getrlimit(RLIMIT_AS, &space) == 0 && space.rlim_cur != RLIM_INFINITY;
    return std::min(
        {limited ? std::uint64_t{space.rlim_cur} : unlimited, availableHere(), limitOfGroup()});
}

} // namespace polyfab
