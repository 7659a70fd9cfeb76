// SPDX-License-Identifier: GPL-3.0-or-later
// A library to preload: lets one call of the program fail, or end in a kill.
//   POLYFAB_FAULT=CALL:N          the N-th (1 on) malloc, open, write, fsync, rename or close fails
//   POLYFAB_FAULT=CALL:N:kill     the process is killed before it
//   POLYFAB_FAULT_FILE=PATH       holds one byte: 1 when that has happened
//   POLYFAB_FAULT_IN=child        counts in the process that this one starts, not in this one
//   POLYFAB_FAULT_FROM=PATH       calls count from the moment when this file has been saved
// Otherwise they count from when main ignores SIGPIPE: what libraries do before that is not ours.
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

// The allocator under its other names.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

std::atomic<long> left{-1}; ///< calls until the one that fails; below 0: none will
char call[16];
bool kills = false;
char* mark = nullptr; ///< in memory, which a process that is locked in can still write
const char* from = nullptr;
long first = -1;

void openMark(const char* path) {
    const long file = ::syscall(SYS_openat, AT_FDCWD, path, O_CREAT | O_RDWR | O_CLOEXEC, 0600);
    const bool sized = ::ftruncate(static_cast<int>(file), 1) == 0;
    void* const page =
        ::mmap(nullptr, 1, PROT_READ | PROT_WRITE, MAP_SHARED, static_cast<int>(file), 0);
    if (sized && page != MAP_FAILED) mark = static_cast<char*>(page);
    ::syscall(SYS_close, file);
}

void begin() {
    const char* const in = std::getenv("POLYFAB_FAULT_IN");
    if (in != nullptr && std::strcmp(in, "child") == 0) {
        ::setenv("POLYFAB_FAULT_IN", "here", 1);
        return;
    }
    const char* const fault = std::getenv("POLYFAB_FAULT");
    const char* const colon = fault == nullptr ? nullptr : std::strchr(fault, ':');
    if (colon == nullptr || colon - fault >= static_cast<long>(sizeof call)) return;
    std::memcpy(call, fault, static_cast<std::size_t>(colon - fault));
    kills = std::strstr(colon, ":kill") != nullptr;
    if (const char* const path = std::getenv("POLYFAB_FAULT_FILE")) openMark(path);
    from = std::getenv("POLYFAB_FAULT_FROM");
    first = std::strtol(colon + 1, nullptr, 10) - 1;
    if (from == nullptr) left = first;
    ::unsetenv("POLYFAB_FAULT");
}

/// Whether this call is the one.
bool fails(const char* name, int error) {
    if (left < 0 || std::strcmp(call, name) != 0 || left-- != 0) return false;
    if (mark != nullptr) *mark = '1';
    if (kills) ::syscall(SYS_kill, ::getpid(), SIGKILL);
    errno = error;
    return true;
}

int openFile(int folder, const char* path, int flags, va_list rest) {
    const unsigned mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, unsigned) : 0;
    if (fails("open", EMFILE)) return -1;
    return static_cast<int>(::syscall(SYS_openat, folder, path, flags, mode));
}

} // namespace

extern "C" {

sighandler_t signal(int number, sighandler_t handler) noexcept {
    const auto next = reinterpret_cast<decltype(&signal)>(::dlsym(RTLD_NEXT, "signal"));
    if (number == SIGPIPE && handler == SIG_IGN && left < 0 && call[0] == '\0') begin();
    return next(number, handler);
}

void* malloc(std::size_t size) noexcept {
    return fails("malloc", ENOMEM) ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    return fails("malloc", ENOMEM) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) noexcept {
    return fails("malloc", ENOMEM) ? nullptr : __libc_realloc(block, size);
}

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const int file = openFile(AT_FDCWD, path, flags, rest);
    va_end(rest);
    return file;
}

int open64(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const int file = openFile(AT_FDCWD, path, flags, rest);
    va_end(rest);
    return file;
}

ssize_t write(int file, const void* bytes, std::size_t size) {
    return fails("write", ENOSPC) ? -1 : ::syscall(SYS_write, file, bytes, size);
}

int fsync(int file) { return fails("fsync", EIO) ? -1 : int(::syscall(SYS_fsync, file)); }

int rename(const char* old, const char* to) noexcept {
    if (fails("rename", EACCES)) return -1;
    const long renamed = ::syscall(SYS_renameat2, AT_FDCWD, old, AT_FDCWD, to, 0);
    if (from != nullptr && std::strcmp(to, from) == 0) left = first;
    return static_cast<int>(renamed);
}

/// Fails after it has closed, as the system does.
int close(int file) {
    const long closed = ::syscall(SYS_close, file);
    return fails("close", EIO) ? -1 : static_cast<int>(closed);
}

} // extern "C"
