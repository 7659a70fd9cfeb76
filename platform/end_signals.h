// SPDX-License-Identifier: GPL-3.0-or-later
// The signals by which somebody ends the process politely, turned into bytes of a pipe, so that a
// backend gets to them when it is ready.
#pragma once

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace polyfab {

namespace endsignals {

inline int pipeEnds[2] = {-1, -1};

inline void note(int signal) {
    const int before = errno;
    const auto byte = static_cast<unsigned char>(signal);
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
    errno = before;
}

} // namespace endsignals

/// Catches SIGTERM, SIGHUP and SIGINT from now on; the last one once: who presses it again means
/// it. (A terminal that is closed may send SIGHUP twice.) A signal that is ignored stays so. Gives
/// the descriptor that becomes readable then; -1 without one.
inline int catchEndSignals() {
    int* const ends = endsignals::pipeEnds;
    if (ends[0] < 0 && ::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return -1;
    for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
        struct sigaction action {};
        ::sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_IGN) continue;
        action = {};
        action.sa_handler = endsignals::note;
        action.sa_flags = static_cast<int>(SA_RESTART | (signal == SIGINT ? SA_RESETHAND : 0));
        ::sigaction(signal, &action, nullptr);
    }
    return ends[0];
}

/// The signal that came, 0 for none.
inline int takeEndSignal() {
    unsigned char signal = 0;
    return ::read(endsignals::pipeEnds[0], &signal, 1) == 1 ? signal : 0;
}

/// The exit status that tells of the signal.
inline int statusOfSignal(int signal) { return 128 + signal; }

} // namespace polyfab
