// SPDX-License-Identifier: GPL-3.0-or-later
// Files are locked by Landlock, everything else by a filter of system calls: a list of those that
// reading and writing files and using memory need. Others fail with EPERM, which a library
// survives.
#include "formats/exchange/child_locks.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <linux/audit.h>
#include <linux/capability.h>
#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace polyfab {
namespace {

// Files.

using Rights = std::uint64_t;

/// All rights that each version of Landlock knows, the last one for all later ones. What is not
/// named is not locked; the headers may be older than the system.
constexpr Rights rightsOfVersion[] = {0, 0x1FFF, 0x3FFF, 0x7FFF, 0x7FFF, 0xFFFF};

constexpr Rights readFile = LANDLOCK_ACCESS_FS_READ_FILE;
constexpr Rights readFolder = readFile | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr Rights truncateFile = 1U << 14;
constexpr Rights writeFolder = readFolder | LANDLOCK_ACCESS_FS_WRITE_FILE | truncateFile
                               | LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_REMOVE_FILE;

/// 0 where the system has none.
long landlockVersion() {
    return std::max(
        0L, ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION));
}

Rights knownRights() {
    const auto version = static_cast<std::size_t>(landlockVersion());
    return rightsOfVersion[std::min(version, std::size(rightsOfVersion) - 1)];
}

void allow(int rules, const std::string& path, Rights rights) {
    const int place = ::open(path.c_str(), O_PATH | O_CLOEXEC);
    struct stat status {};
    if (place < 0 || ::fstat(place, &status) != 0) return;
    if (!S_ISDIR(status.st_mode)) rights &= readFile;
    const landlock_path_beneath_attr rule = {rights & knownRights(), place};
    ::syscall(SYS_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
    ::close(place);
}

void lockFiles(const Reach& reach) {
    landlock_ruleset_attr handled{};
    handled.handled_access_fs = knownRights();
    if (handled.handled_access_fs == 0) return;
    const long made =
        ::syscall(SYS_landlock_create_ruleset, &handled, sizeof handled.handled_access_fs, 0);
    if (made < 0) return;
    const int rules = static_cast<int>(made);
    for (const std::string& path : reach.readable) allow(rules, path, readFolder);
    if (!reach.writable.empty()) allow(rules, reach.writable, writeFolder);
    ::syscall(SYS_landlock_restrict_self, rules, 0);
    ::close(rules);
}

// System calls.

#if defined(__x86_64__)
constexpr unsigned machine = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr unsigned machine = AUDIT_ARCH_AARCH64;
#elif defined(__riscv) && __riscv_xlen == 64
constexpr unsigned machine = AUDIT_ARCH_RISCV64;
#else
constexpr unsigned machine = 0; // no filter there
#endif

constexpr unsigned freeCalls[] = {
    // open files
    SYS_read,
    SYS_readv,
    SYS_pread64,
    SYS_write,
    SYS_writev,
    SYS_pwrite64,
    SYS_lseek,
    SYS_close,
    SYS_fstat,
    SYS_fsync,
    SYS_fdatasync,
    SYS_ftruncate,
    SYS_fadvise64,
    SYS_dup,
    // files by their names
    SYS_openat,
    SYS_newfstatat,
    SYS_statx,
    SYS_faccessat,
    SYS_faccessat2,
    SYS_readlinkat,
    SYS_getcwd,
    SYS_unlinkat,
    // memory
    SYS_brk,
    SYS_munmap,
    SYS_mremap,
    SYS_madvise,
    SYS_membarrier,
    // time, waiting, the process itself
    SYS_clock_gettime,
    SYS_clock_getres,
    SYS_clock_nanosleep,
    SYS_nanosleep,
    SYS_gettimeofday,
    SYS_futex,
    SYS_sched_yield,
    SYS_sched_getaffinity,
    SYS_getpid,
    SYS_gettid,
    SYS_getuid,
    SYS_geteuid,
    SYS_getgid,
    SYS_getegid,
    SYS_uname,
    SYS_sysinfo,
    SYS_getrandom,
    SYS_rseq,
    SYS_set_robust_list,
    // signals to itself, and the end
    SYS_rt_sigaction,
    SYS_rt_sigprocmask,
    SYS_rt_sigreturn,
    SYS_sigaltstack,
    SYS_exit,
    SYS_exit_group,
#if defined(__x86_64__)
    SYS_open,
    SYS_stat,
    SYS_lstat,
    SYS_access,
    SYS_readlink,
    SYS_unlink,
    SYS_time,
#endif
};

/// Calls that are free when an argument is fit.
struct LimitedCall {
    unsigned call;
    unsigned argument;
    bool isFlags;   ///< the argument must have none of these bits; otherwise it must be this value
    unsigned value; ///< in its lower half
};

using Filter = std::vector<sock_filter>;

constexpr std::uint16_t loadWord = BPF_LD | BPF_W | BPF_ABS, answer = BPF_RET | BPF_K,
                        ifEqual = BPF_JMP | BPF_JEQ | BPF_K, ifAnyBit = BPF_JMP | BPF_JSET | BPF_K;
constexpr unsigned refused = SECCOMP_RET_ERRNO | 1; // EPERM

/// Where the lower half of an argument lies, on machines that store it first.
unsigned placeOf(unsigned argument) {
    return static_cast<unsigned>(offsetof(seccomp_data, args) + argument * sizeof(std::uint64_t));
}

void addLimited(Filter& filter, const LimitedCall& row) {
    filter.push_back(BPF_JUMP(ifEqual, row.call, 0, 4));
    filter.push_back(BPF_STMT(loadWord, placeOf(row.argument)));
    filter.push_back(row.isFlags ? sock_filter BPF_JUMP(ifAnyBit, row.value, 1, 0)
                                 : sock_filter BPF_JUMP(ifEqual, row.value, 0, 1));
    filter.push_back(BPF_STMT(answer, SECCOMP_RET_ALLOW));
    filter.push_back(BPF_STMT(answer, refused));
}

Filter makeFilter() {
    const auto self = static_cast<unsigned>(::getpid());
    // F_SETOWN and its kin, by which a file sends signals to other processes, are 8 to 31.
    constexpr unsigned signalsOfFiles = 8 | 16;
    const LimitedCall limitedCalls[] = {{SYS_mmap, 2, true, PROT_EXEC},
                                        {SYS_mprotect, 2, true, PROT_EXEC},
                                        {SYS_tgkill, 0, false, self},
                                        {SYS_fcntl, 1, true, signalsOfFiles},
                                        {SYS_prlimit64, 0, false, 0}};
    Filter filter = {BPF_STMT(loadWord, offsetof(seccomp_data, arch)),
                     BPF_JUMP(ifEqual, machine, 1, 0), BPF_STMT(answer, SECCOMP_RET_KILL_PROCESS),
                     BPF_STMT(loadWord, offsetof(seccomp_data, nr))};
    for (const unsigned call : freeCalls) {
        filter.push_back(BPF_JUMP(ifEqual, call, 0, 1));
        filter.push_back(BPF_STMT(answer, SECCOMP_RET_ALLOW));
    }
    for (const LimitedCall& row : limitedCalls) addLimited(filter, row);
    filter.push_back(BPF_STMT(answer, refused));
    return filter;
}

void lockCalls() {
    if (machine == 0) return;
    Filter filter = makeFilter();
    const sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
    ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program);
}

bool callsCanBeLocked() {
    const unsigned action = SECCOMP_RET_ERRNO;
    return machine != 0 && ::syscall(SYS_seccomp, SECCOMP_GET_ACTION_AVAIL, 0, &action) == 0;
}

// Privileges.

/// Root keeps what reads the files of all users, and loses what would lift limits, mount and trace.
void dropPrivileges() {
    constexpr unsigned kept = 1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH;
    __user_cap_header_struct head = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3] = {};
    if (::syscall(SYS_capget, &head, sets) != 0) return;
    sets[0] = {sets[0].effective & kept, sets[0].permitted & kept, 0};
    sets[1] = {};
    ::syscall(SYS_capset, &head, sets);
}

// Limits.

void limit(int resource, rlim_t value) {
    const rlimit both = {value, value};
    static_cast<void>(::setrlimit(static_cast<__rlimit_resource>(resource), &both));
}

/// Bytes of address space that the process has now.
std::uint64_t addressSpace() {
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

/// The most that any process here gets: half of the machine's memory, and 8 GiB.
std::uint64_t mostMemory() {
    const auto pages = static_cast<std::uint64_t>(::sysconf(_SC_PHYS_PAGES));
    const auto pageSize = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    return std::min(std::uint64_t{8} << 30, pages * pageSize / 2);
}

} // namespace

void lockIn(const Reach& reach) {
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    dropPrivileges();
    lockFiles(reach);
    lockCalls();
}

std::uint64_t limitMemory(std::uint64_t bytes) {
    // Before the lock, behind which the process can't ask any more.
    [[maybe_unused]] static const std::uint64_t present = addressSpace();
    static const std::uint64_t most = mostMemory();
    bytes = std::min(bytes, most);
#if !defined(POLYFAB_SANITIZE) // whose shadow memory is larger than any limit
    rlimit both{};
    static_cast<void>(::getrlimit(RLIMIT_AS, &both));
    both.rlim_max = std::min<rlim_t>(both.rlim_max, present + most);
    both.rlim_cur = std::min<rlim_t>(both.rlim_max, present + bytes);
    static_cast<void>(::setrlimit(RLIMIT_AS, &both));
#endif
    return bytes;
}

void limitProcess(std::uint64_t fileSize) {
    constexpr rlim_t maxSeconds = 600, maxFiles = 64;
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_CPU, maxSeconds);
    limit(RLIMIT_FSIZE, fileSize);
    limit(RLIMIT_NOFILE, maxFiles);
}

std::string locksHere() {
    const long version = landlockVersion();
    const std::string files = version > 0
                                  ? "Landlock, version " + std::to_string(version)
                                  : "by their names alone, since this system has no Landlock";
    return "locks of the process that imports and exports, on this system:\n"
           "  files: "
           + files + "\n  system calls: "
           + (callsCanBeLocked() ? "seccomp, with a list of those allowed" : "not locked")
           + "\n  no privileges; limits for memory, time, file size and open files\n";
}

} // namespace polyfab
