// SPDX-License-Identifier: GPL-3.0-or-later
// How much memory a process may hope for.
#pragma once

#include <cstdint>

namespace polyfab {

/// Bytes that are free or can be freed for this process, by the limits on it and its group and by
/// what the machine has; huge where the system does not tell.
[[nodiscard]] std::uint64_t memoryLeft();

} // namespace polyfab
