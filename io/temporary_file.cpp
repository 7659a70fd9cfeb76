// SPDX-License-Identifier: GPL-3.0-or-later
// Paths that a signal's handler is to remove stand in a fixed table, which it can read at any
// moment.
#include "io/temporary_file.h"

#include "io/names_in.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace polyfab {
namespace {

constexpr std::string_view prefix = ".polyfab-", letters = "abcdefghijklmnopqrstuvwxyz012345";
constexpr std::size_t randomLetters = 6;

/// Short whatever the target's name is: the longest names have no room for more.
std::string randomName() {
    unsigned char bytes[randomLetters] = {};
    [[maybe_unused]] const ssize_t got = ::getrandom(bytes, sizeof bytes, 0);
    std::string name;
    for (const unsigned char byte : bytes) name += letters[byte % letters.size()];
    return name;
}

bool isOurName(std::string_view name) {
    return name.size() == prefix.size() + randomLetters && name.starts_with(prefix)
           && name.find_first_not_of(letters, prefix.size()) == std::string_view::npos;
}

enum class State { free, changing, used };

struct Slot {
    std::atomic<State> state{State::free};
    std::array<char, 4096> path;
};

/// More than are ever written at once; further ones are just not removed by a signal.
std::array<Slot, 16> slots;

/// Makes something under a random name, which the handler knows before it is there; -1 with errno
/// set when that fails.
template <typename Make>
int makeNew(const std::string& start, std::string& path, Make make) {
    constexpr int tries = 100;
    int made = -1;
    for (int i = 0; i < tries && made < 0; ++i) {
        path = start + randomName();
        rememberTemporary(path);
        made = make(path.c_str());
        const int reason = errno;
        if (made < 0) forgetTemporary(path);
        errno = reason;
        if (made < 0 && reason != EEXIST) break;
    }
    if (made < 0) path.clear();
    return made;
}

void removeFilesIn(const char* path) {
    alignas(dirent64) char entries[4096];
    const int folder = ::open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    for (;;) {
        const ssize_t got = ::getdents64(folder, entries, sizeof entries);
        if (got <= 0) break;
        for (ssize_t at = 0; at < got;) {
            const auto* const entry = reinterpret_cast<const dirent64*>(entries + at);
            ::unlinkat(folder, entry->d_name, 0);
            at += entry->d_reclen;
        }
    }
    ::close(folder);
}

/// Again where another process goes on making files in it.
void removeFolder(const char* path) {
    constexpr int tries = 100;
    for (int i = 0; i < tries && ::rmdir(path) != 0 && errno == ENOTEMPTY; ++i) removeFilesIn(path);
}

std::atomic<int> holds = 0, waiting = 0;

void removeAndEnd(int signal) {
    if (holds > 0) {
        waiting = signal;
        return;
    }
    removeTemporaries();
    std::signal(signal, SIG_DFL);
    std::raise(signal); // comes when this handler returns
}

} // namespace

int makeTemporary(const std::string& folder, mode_t mode, std::string& path) {
    return makeNew(folder + "/" + std::string(prefix), path, [&](const char* name) {
        return ::open(name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    });
}

bool makeTemporaryFolder(const std::string& start, std::string& path) {
    return makeNew(start, path, [](const char* name) { return ::mkdir(name, 0700); }) == 0;
}

void rememberTemporary(const std::string& path) {
    for (Slot& slot : slots) {
        State wanted = State::free;
        if (path.size() >= slot.path.size()
            || !slot.state.compare_exchange_strong(wanted, State::changing)) {
            continue;
        }
        *std::copy(path.begin(), path.end(), slot.path.begin()) = '\0';
        slot.state = State::used;
        return;
    }
}

void forgetTemporary(const std::string& path) {
    for (Slot& slot : slots) {
        if (slot.state == State::used && path == slot.path.data()) slot.state = State::free;
    }
}

void removeTemporaries() {
    for (const Slot& slot : slots) {
        const char* const path = slot.path.data();
        if (slot.state == State::used && ::unlink(path) != 0 && errno == EISDIR) removeFolder(path);
    }
}

void removeTemporariesOnSignals() {
    for (const int signal :
         {SIGTERM, SIGHUP, SIGINT, SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2, SIGXCPU}) {
        struct sigaction action {};
        ::sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_DFL) std::signal(signal, removeAndEnd);
    }
}

HeldSignals::HeldSignals() { ++holds; }

HeldSignals::~HeldSignals() {
    const int signal = --holds == 0 ? waiting.exchange(0) : 0;
    if (signal != 0) std::raise(signal);
}

void removeOldTemporaries(const std::string& folder) {
    constexpr std::time_t day = 24 * 60 * 60;
    for (const std::string& name : namesIn(folder)) {
        std::string path = folder;
        path.append("/").append(name);
        struct stat status {};
        if (!isOurName(name) || ::lstat(path.c_str(), &status) != 0) continue;
        const bool old = S_ISREG(status.st_mode) && status.st_mtime < std::time(nullptr) - day;
        if (old && status.st_uid == ::geteuid()) ::unlink(path.c_str());
    }
}

} // namespace polyfab
