// SPDX-License-Identifier: GPL-3.0-or-later
// The threads that draw large pictures together with the one that asks for them.
#pragma once

#include <cstddef>
#include <functional>

namespace polyfab {

/// Calls part(i) for each i from 0 below `count` and returns when all are done. Which thread calls
/// which, and in what order, is open: no result may depend on it. The parts must neither throw nor
/// call this themselves.
void inParallel(int count, const std::function<void(int)>& part);

/// The same for the pieces of at most `size` that cut 0 up to `count`: piece(from, to).
void inPieces(std::size_t count, std::size_t size,
              const std::function<void(std::size_t, std::size_t)>& piece);

/// Parts that are worth having: one for each thread there is.
[[nodiscard]] int workers();

/// As many from now on, 1 to 16; 0: one for each processor. Not while parts run.
void setWorkers(int count);

} // namespace polyfab
