// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/last_resort.h"

#include "io/temporary_file.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

namespace polyfab {
namespace {

bool memoryRanOut = false;

void noteNoMemory() {
    memoryRanOut = true;
    throw std::bad_alloc();
}

/// Comes for an exception inside of what may throw none, as libraries have it in their destructors.
void endWithMessage() {
    constexpr int status = 2;
    if (!memoryRanOut) std::abort();
    removeTemporaries();
    std::fflush(stdout);
    std::fputs("polyfab: I can't get enough memory\n", stderr);
    std::_Exit(status);
}

} // namespace

void makeFaultsErrors() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    std::set_new_handler(noteNoMemory);
    std::set_terminate(endWithMessage);
}

} // namespace polyfab
