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
    std::string name(prefix);
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

void remember(const std::string& path) {
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

void removeAndEnd(int signal) {
    removeTemporaries();
    std::signal(signal, SIG_DFL);
    std::raise(signal); // comes when this handler returns
}

} // namespace

int makeTemporary(const std::string& folder, mode_t mode, std::string& path) {
    constexpr int tries = 100;
    int file = -1;
    for (int i = 0; i < tries && file < 0; ++i) {
        path = folder + "/" + randomName();
        remember(path);
        file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        const int reason = errno;
        if (file < 0) forgetTemporary(path);
        errno = reason;
        if (file < 0 && reason != EEXIST) break;
    }
    if (file < 0) path.clear();
    return file;
}

void forgetTemporary(const std::string& path) {
    for (Slot& slot : slots) {
        if (slot.state == State::used && path == slot.path.data()) slot.state = State::free;
    }
}

void removeTemporaries() {
    for (const Slot& slot : slots) {
        if (slot.state == State::used) ::unlink(slot.path.data());
    }
}

void removeTemporariesOnSignals() {
    for (const int signal : {SIGTERM, SIGHUP, SIGINT, SIGQUIT}) {
        struct sigaction action {};
        ::sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_DFL) std::signal(signal, removeAndEnd);
    }
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
