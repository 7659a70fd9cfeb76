// SPDX-License-Identifier: GPL-3.0-or-later
// What the user is asked when a file is to be saved whose folder takes no new files.
#pragma once

namespace polyfab {

/// From now on such a save asks whether the file may be written in place. A headless run, which
/// reckons with no such question, gets a note instead, and the save fails.
void offerSavingInPlace();

} // namespace polyfab
