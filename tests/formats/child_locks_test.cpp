// SPDX-License-Identifier: GPL-3.0-or-later
// Forked children lock themselves in and then try to get out.
#include "formats/exchange/child_locks.h"

#include "tests/support/temp_folder.h"

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace polyfab {
namespace {

/// Whether `attempt` succeeds in a process of its own that is locked in.
bool succeeds(const Reach& reach, const std::function<bool()>& attempt) {
    const pid_t child = ::fork();
    if (child == 0) {
        limitProcess(1 << 20);
        lockIn(reach);
        ::_exit(attempt() ? 17 : 0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    return WEXITSTATUS(status) == 17;
}

bool opens(const std::string& path, int flags) { return ::open(path.c_str(), flags, 0600) >= 0; }

bool runsProgram() {
    const char* const words[] = {"/bin/sh", "-c", "exit 17", nullptr};
    ::execv(words[0], const_cast<char* const*>(words));
    return false;
}

bool raisesLimit(__rlimit_resource resource) {
    const rlimit both = {RLIM_INFINITY, RLIM_INFINITY};
    return ::setrlimit(resource, &both) == 0;
}

TEST(ChildLocks, NothingIsReachedButTheOwnFolder) {
    const test::TempFolder folder;
    for (const char* const name : {"own", "own/below", "scratch"}) {
        ::mkdir(folder.path(name).c_str(), 0700);
    }
    const std::string named = folder.write("named", "x");
    for (const char* const name : {"outside", "own/file", "own/below/file", "own/others"})
        folder.write(name, "x");
    const std::string others = folder.path("own/others");
    const bool isOthers = ::chown(others.c_str(), 1, 1) == 0;
    ASSERT_EQ(::symlink("../outside", folder.path("own/link").c_str()), 0);
    const Reach reach = {{folder.path("own"), named}, folder.path("scratch")};
    const struct {
        const char* name;
        int flags;
        bool allowed;
    } files[] = {{"own/file", O_RDONLY, true},
                 {"own/below/file", O_RDONLY, true},
                 {"own/others", O_RDONLY, true},
                 {"named", O_RDONLY, true},
                 {"scratch/new", O_RDWR | O_CREAT, true},
                 {"outside", O_RDONLY, false},
                 {"own/../outside", O_RDONLY, false},
                 {"own/link", O_RDONLY, false},
                 {"own/file", O_WRONLY, false},
                 {"own/new", O_WRONLY | O_CREAT, false},
                 {"named", O_WRONLY | O_TRUNC, false}};
    const bool lock = locksHere().find("Landlock, version") != std::string::npos;
    for (const auto& row : files) {
        const auto attempt = [&] { return opens(folder.path(row.name), row.flags); };
        EXPECT_EQ(succeeds(reach, attempt), row.allowed || !lock) << row.name << ' ' << row.flags;
    }
    // Root reads it all the same, but has no rights of its owner.
    EXPECT_EQ(succeeds(reach, [&] { return opens(others, O_RDONLY | O_NOATIME); }), !isOthers);
    if (locksHere().find("seccomp") == std::string::npos) return;
    bool (*const attempts[])() = {runsProgram,
                                  [] { return ::socket(AF_INET, SOCK_STREAM, 0) >= 0; },
                                  [] { return ::socket(AF_UNIX, SOCK_DGRAM, 0) >= 0; },
                                  [] { return ::fork() >= 0; },
                                  [] { return ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0; },
                                  [] { return ::kill(::getppid(), 0) == 0; },
                                  [] { return ::fcntl(0, F_SETOWN, ::getppid()) == 0; },
                                  [] { return ::chdir("/") == 0; },
                                  [] { return raisesLimit(RLIMIT_FSIZE); },
                                  [] { return ::memfd_create("code", 0) >= 0; },
                                  [] {
                                      void* const page =
                                          ::mmap(nullptr, 4096, PROT_READ | PROT_EXEC,
                                                 MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
                                      return page != MAP_FAILED;
                                  }};
    for (const auto& attempt : attempts) {
        EXPECT_FALSE(succeeds(reach, attempt)) << &attempt - attempts;
    }
}

} // namespace
} // namespace polyfab
