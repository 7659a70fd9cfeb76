// SPDX-License-Identifier: GPL-3.0-or-later
// What belongs to a file besides its bytes.
#pragma once

struct stat;

namespace polyfab {

/// Gives a new file the owner and permissions of an old one, and its extended attributes and access
/// list, as far as the system and we can: nobody gets a right by that which the old file did not
/// give. `from` is the descriptor of the old file, open for reading, or -1: attributes stay behind.
/// False when the permissions can't be set.
[[nodiscard]] bool copyRights(int to, int from, const struct stat& old);

} // namespace polyfab
