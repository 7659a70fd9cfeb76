// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace polyfab {

/// What would end the process by a signal is to be an error, or to end it with a message: writing
/// to a reader that has gone, or beyond the limit on file sizes, and running out of memory where
/// nothing may be thrown. To be called once, first of all.
void makeFaultsErrors();

} // namespace polyfab
