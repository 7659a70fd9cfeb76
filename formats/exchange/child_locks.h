// SPDX-License-Identifier: GPL-3.0-or-later
// Locks the process in that a foreign importer or exporter runs in: whatever that does, it reaches
// neither the user's other files nor the network nor other programs.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace polyfab {

/// What is left to the process.
struct Reach {
    std::vector<std::string> readable; ///< files, and folders with all that lies below
    std::string writable;              ///< a folder where files may be made and removed; "": none
};

/// From here on the process opens no other file, makes no socket, starts no program, traces and
/// signals no other process and gains no privilege, as far as the system has such locks. What is
/// refused fails with an error. For a process with one thread; nothing undoes it.
void lockIn(const Reach& reach);

/// Limits the address space to what the process has now and so many bytes more, up to half of the
/// memory of the machine and 8 GiB. May be called again, also when it is locked in, to set another
/// limit. Returns the bytes that the process gets.
std::uint64_t limitMemory(std::uint64_t bytes);

/// The other limits: processor time, core files, size and number of open files.
void limitProcess(std::uint64_t fileSize);

/// Which of the locks this system has, a line each.
[[nodiscard]] std::string locksHere();

} // namespace polyfab
